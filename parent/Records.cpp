#include "parent/Records.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <optional>
#include <utility>

namespace Tarnex::Parent {
namespace {

/// Between the prefix and the tag.
constexpr std::string_view MARK = "] [";
/// Bytes. The source file's name and the widest numbers leave room.
constexpr std::size_t LONGEST_PREFIX = 120;
/// A record is cut at 30,000 bytes; what is this long with a module's own output in it isn't one.
constexpr std::size_t LONGEST_RECORD = 65536;

struct Prefix {
    std::size_t begin;
    long thread;
};

long ReadDigits(std::string_view text) {
    std::string digits;
    std::ranges::copy_if(text, std::back_inserter(digits),
                         [](unsigned char byte) { return std::isdigit(byte) != 0; });
    return digits.size() > 10 ? 0 : std::strtol(digits.c_str(), nullptr, 10);
}

/// The end of `text` as a prefix: "E20261123 07:45:31.922710 11142 Logging.cpp:19". A module's
/// locale may group the digits of each number.
std::optional<Prefix> FindPrefix(std::string_view text) {
    const std::size_t source = text.rfind(' ');
    if (source == text.npos || text.find(':', source) == text.npos) {
        return std::nullopt;
    }
    const std::size_t clock = text.rfind(':', source);
    const std::size_t date = clock == text.npos ? text.npos : text.rfind(' ', clock);
    const std::size_t begin = date == text.npos ? text.npos : text.find_last_of("IWEF", date);
    if (begin == text.npos || text.find(' ', begin) != date) {
        return std::nullopt;
    }
    const std::size_t number = text.find(' ', clock);
    const long thread = ReadDigits(text.substr(number, source - number));
    return thread == 0 ? std::nullopt : std::optional<Prefix>({begin, thread});
}

std::size_t LongestMark(const std::vector<std::string_view>& tags) {
    std::size_t longest = 0;
    for (const std::string_view tag : tags) {
        longest = std::max(longest, MARK.size() + tag.size() + 1);
    }
    return longest;
}

}  // namespace

struct RecordReader::Opening {
    std::size_t begin;    // of its prefix
    std::size_t message;  // where that begins
    std::string_view tag;
    long thread;
};

RecordReader::RecordReader(const std::vector<std::string_view>& tags, TakeRecord take,
                           TakeText takeText)
    : tags(tags),
      longestMark(LongestMark(tags)),
      take(std::move(take)),
      takeText(std::move(takeText)) {}

void RecordReader::Feed(std::string_view bytes) {
    buffer += bytes;
    while (Step()) {
    }
    if (tag.empty()) {
        Discard(seen - std::min(seen, LONGEST_PREFIX + MARK.size()));
    }
    if (begin > buffer.size() / 2) {
        buffer.erase(0, begin);
        seen -= begin;
        begin = 0;
    }
}

void RecordReader::Finish() {
    isLast = true;
    Feed({});
    if (tag.empty()) {
        Discard(buffer.size());
    } else {
        End(WholeLines(buffer.size()), buffer.size());
    }
}

/// Goes on to the next place where a record may begin or end. False if there is none yet.
bool RecordReader::Step() {
    const std::size_t at = std::min(buffer.find('[', seen), buffer.size());
    if (!tag.empty() && at > begin + LONGEST_RECORD) {
        End(WholeLines(begin + LONGEST_RECORD), begin + LONGEST_RECORD);
        return true;
    }
    if (at == buffer.size()) {
        seen = at;
        return false;
    }
    seen = at + 1;
    if (!tag.empty() && IsClosing(at)) {
        End(at, at + closing.size());
    } else if (const auto opening = FindOpening(at)) {
        Open(*opening);
    } else if (!isLast && buffer.size() - at <= longestMark) {
        seen = at;  // It may become one.
        return false;
    }
    return true;
}

bool RecordReader::IsClosing(std::size_t at) const {
    return std::string_view(buffer).substr(at).starts_with(closing);
}

/// Of a line of the open record.
bool RecordReader::IsLineBegin(std::size_t at) const {
    return at > begin && buffer[at - 1] == '\n';
}

/// What begins with the bracket there. A message may hold anything: a record with a prefix is ended
/// only by one with a prefix, at the beginning of a line or of the same thread.
std::optional<RecordReader::Opening> RecordReader::FindOpening(std::size_t at) const {
    const std::string_view text = buffer;
    if (at + 1 < begin + MARK.size()) {
        return std::nullopt;  // The first bracket of the mark is that of the tag before it.
    }
    const std::size_t mark = at + 1 - MARK.size();
    if (!text.substr(mark).starts_with(MARK)) {
        return std::nullopt;
    }
    const auto found = std::ranges::find_if(tags, [&](std::string_view candidate) {
        return text.substr(at + 1).starts_with(candidate) &&
               text.substr(at + 1 + candidate.size()).starts_with(']');
    });
    if (found == tags.end()) {
        return std::nullopt;
    }
    const std::size_t from = std::max(begin, mark - std::min(mark, LONGEST_PREFIX));
    const auto prefix = FindPrefix(text.substr(from, mark - from));
    if (!tag.empty() && thread != 0 &&
        !(prefix && (prefix->thread == thread || IsLineBegin(from + prefix->begin)))) {
        return std::nullopt;
    }
    return Opening{prefix ? from + prefix->begin : mark, at + found->size() + 2, *found,
                   prefix ? prefix->thread : 0};
}

void RecordReader::Open(const Opening& opening) {
    if (tag.empty()) {
        Discard(opening.begin);
    } else {
        End(WholeLines(opening.begin), opening.message);
    }
    begin = seen = opening.message;
    tag = opening.tag;
    thread = opening.thread;
    closing = "[/" + std::string(tag) + "]";
}

/// The record that is open; what follows it begins at `next`.
void RecordReader::End(std::size_t end, std::size_t next) {
    const Record record{tag, buffer.substr(begin, end - begin), thread};
    tag = {};
    begin = seen = next;
    take(record);
}

void RecordReader::Discard(std::size_t end) {
    if (end > begin) {
        takeText(std::string_view(buffer).substr(begin, end - begin));
        begin = end;
    }
}

/// Where the whole lines of a cut record end that is so long.
std::size_t RecordReader::WholeLines(std::size_t end) const {
    const std::string_view message = std::string_view(buffer).substr(begin, end - begin);
    const std::size_t line = message.rfind('\n');
    return begin + (line == message.npos ? 0 : line);
}

}  // namespace Tarnex::Parent

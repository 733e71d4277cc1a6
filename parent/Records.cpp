#include "parent/Records.h"

#include <algorithm>
#include <array>

#include "core/support/Constants.h"

namespace Tarnex::Parent {
namespace {

constexpr std::array<std::string_view, 9> TAGS = {
    Core::Utils::STATISTICS_TAG,    Core::Utils::CODECS_TAG,
    Core::Utils::ERROR_TAG,         Core::Utils::WARNING_TAG,
    Core::Utils::TEST_CODEC_TAG,    Core::Utils::TESTED_CODECS_TAG,
    Core::Utils::PLUGINS_TAG,       Core::Utils::LOAD_PLUGIN_NAME_TAG,
    Core::Utils::LOADED_PLUGINS_TAG};

constexpr std::string_view MARK = "] [";
/// "] [LOAD_PLUGIN_NAME]", "[/LOAD_PLUGIN_NAME]".
constexpr std::size_t LONGEST_MARK = 20;
/// A record is cut at 30,000 bytes; what is longer than that with a module's own output in it
/// isn't one.
constexpr std::size_t LONGEST_RECORD = 65536;

struct Opening {
    std::size_t at = std::string::npos;
    std::string_view tag;
    std::size_t MessageBegin() const { return at + MARK.size() + tag.size() + 1; }
};

std::string_view TagAt(std::string_view text) {
    for (const std::string_view tag : TAGS) {
        if (text.starts_with(tag) && text.substr(tag.size()).starts_with(']')) {
            return tag;
        }
    }
    return {};
}

Opening NextOpening(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find(MARK, from); at != text.npos; at = text.find(MARK, at + 1)) {
        if (const std::string_view tag = TagAt(text.substr(at + MARK.size())); !tag.empty()) {
            return {at, tag};
        }
    }
    return {};
}

}  // namespace

void RecordReader::Feed(std::string_view bytes) {
    text += bytes;
    while (tag.empty() ? FindOpening() : FindEnd()) {
    }
}

void RecordReader::Finish() {
    if (!tag.empty()) {
        EndCut(text.size());
    }
    text.clear();
    seen = 0;
}

/// True if there is more to look at.
bool RecordReader::FindOpening() {
    const Opening opening = NextOpening(text, 0);
    if (opening.at == std::string::npos) {
        text.erase(0, text.size() - std::min(text.size(), LONGEST_MARK - 1));
        return false;
    }
    tag = opening.tag;
    text.erase(0, opening.MessageBegin());
    seen = 0;
    return true;
}

bool RecordReader::FindEnd() {
    const std::string closing = "[/" + std::string(tag) + "]";
    const std::size_t end = text.find(closing, seen);
    const Opening next = NextOpening(std::string_view(text).substr(0, end), seen);
    const std::size_t first = std::min(end, next.at);
    if (first > LONGEST_RECORD && text.size() < LONGEST_RECORD + LONGEST_MARK) {
        seen = text.size() - std::min(text.size(), LONGEST_MARK - 1);
        return false;
    }
    if (first == end && first <= LONGEST_RECORD) {
        End(end, end + closing.size());
    } else {
        EndCut(std::min(first, LONGEST_RECORD));
    }
    return true;
}

void RecordReader::End(std::size_t length, std::size_t behind) {
    const Record record{tag, text.substr(0, length)};
    text.erase(0, behind);
    tag = {};
    take(record);
}

/// Ends with its last whole line. What it was cut by stays, because it opens the next record.
void RecordReader::EndCut(std::size_t length) {
    const std::size_t line = text.find_last_of('\n', length == 0 ? 0 : length - 1);
    End(line == std::string::npos ? 0 : std::min(line, length), length);
}

}  // namespace Tarnex::Parent

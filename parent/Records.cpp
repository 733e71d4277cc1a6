#include "parent/Records.h"

#include <algorithm>
#include <array>

#include "core/support/Constants.h"

namespace Tarnex::Parent {
namespace {

using namespace Core::Utils;  // NOLINT(google-build-using-namespace)

constexpr std::array<std::string_view, 9> TAGS = {
    STATISTICS_TAG, CODECS_TAG,           ERROR_TAG,
    WARNING_TAG,    TEST_CODEC_TAG,       TESTED_CODECS_TAG,
    PLUGINS_TAG,    LOAD_PLUGIN_NAME_TAG, LOADED_PLUGINS_TAG};

/// "] [LOAD_PLUGIN_NAME]"
constexpr std::size_t LONGEST_MARK = 20;
/// A record is cut at 30,000 bytes; what is this long with a module's own output in it isn't one.
constexpr std::size_t LONGEST_RECORD = 65536;

struct Opening {
    std::size_t begin = std::string::npos;
    std::size_t end = std::string::npos;
    std::string_view tag;
};

Opening FindOpening(std::string_view text, std::size_t from) {
    constexpr std::string_view MARK = "] [";
    for (auto at = text.find(MARK, from); at != text.npos; at = text.find(MARK, at + 1)) {
        for (const std::string_view tag : TAGS) {
            const std::size_t begin = at + MARK.size();
            if (text.substr(begin).starts_with(std::string(tag) + "]")) {
                return {at, begin + tag.size() + 1, tag};
            }
        }
    }
    return {};
}

}  // namespace

void RecordReader::Feed(std::string_view bytes) {
    text += bytes;
    while (Advance()) {
    }
}

void RecordReader::Finish() {
    End(WholeLines(text.size()), text.size(), {});
}

/// True if it found an end.
bool RecordReader::Advance() {
    const std::string closing = "[/" + std::string(tag) + "]";
    const std::size_t end = tag.empty() ? text.npos : text.find(closing, seen);
    const Opening next = FindOpening(std::string_view(text).substr(0, end), seen);
    const std::size_t first = std::min(end, next.begin);
    if (first > LONGEST_RECORD && text.size() < LONGEST_RECORD + LONGEST_MARK) {
        seen = text.size() - std::min(text.size(), LONGEST_MARK - 1);
        return false;
    }
    if (first > LONGEST_RECORD) {
        End(WholeLines(LONGEST_RECORD), LONGEST_RECORD, {});
    } else if (first == end) {
        End(end, end + closing.size(), {});
    } else {
        End(WholeLines(next.begin), next.end, next.tag);
    }
    return true;
}

void RecordReader::End(std::size_t length, std::size_t next, std::string_view nextTag) {
    const Record record{tag, text.substr(0, length)};
    text.erase(0, next);
    tag = nextTag;
    seen = 0;
    if (!record.tag.empty()) {
        take(record);
    }
}

/// What is left of a cut record.
std::size_t RecordReader::WholeLines(std::size_t length) const {
    const std::size_t line = std::string_view(text).substr(0, length).rfind('\n');
    return line == text.npos ? 0 : line;
}

}  // namespace Tarnex::Parent

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarnex::Parent {

/// What Assayer or a helper says between its tags.
struct Record {
    std::string_view tag;  ///< one of those that the reader was made with
    std::string message;
    long thread = 0;  ///< the number in its prefix; 0 if it has no prefix: somebody else wrote it
};

/// Finds the records in what a process writes, which comes in pieces of any size: a record may be
/// split between them, cut at its end, or stand among other text. Looks at each byte a bounded
/// number of times.
class RecordReader {
public:
    using TakeRecord = std::function<void(const Record&)>;
    using TakeText = std::function<void(std::string_view)>;

    /// `tags` must outlive the reader. `takeText` gets what is neither a record nor its prefix.
    RecordReader(
        const std::vector<std::string_view>& tags, TakeRecord take,
        TakeText takeText = [](std::string_view) {});

    void Feed(std::string_view bytes);

    /// Nothing follows: a record that is open was cut.
    void Finish();

private:
    struct Opening;

    bool Step();
    bool IsClosing(std::size_t at) const;
    bool IsLineBegin(std::size_t at) const;
    std::optional<Opening> FindOpening(std::size_t at) const;
    void Open(const Opening& opening);
    void End(std::size_t end, std::size_t next);
    void Discard(std::size_t end);
    std::size_t WholeLines(std::size_t end) const;

    const std::vector<std::string_view>& tags;
    const std::size_t longestMark;
    TakeRecord take;
    TakeText takeText;
    std::string buffer;
    std::size_t begin = 0;  // of the open record's message, or of text that wasn't given away yet
    std::size_t seen = 0;   // where the search goes on
    std::string_view tag;   // of the open record; empty: none is open
    std::string closing;    // what ends it
    long thread = 0;        // in its prefix
    bool isLast = false;    // nothing follows what is in the buffer
};

}  // namespace Tarnex::Parent

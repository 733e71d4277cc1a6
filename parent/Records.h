#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Tarnex::Parent {

/// What Assayer says between its tags.
struct Record {
    std::string_view tag;  ///< one of the constants of core/support/Constants.h
    std::string message;
};

/// Finds the records in what a process writes, which comes in pieces of any size: a record may be
/// split between them, cut at its end, or stand among other text.
class RecordReader {
public:
    explicit RecordReader(std::function<void(const Record&)> take) : take(std::move(take)) {}

    void Feed(std::string_view bytes);

    /// Nothing follows: a record that is open was cut.
    void Finish();

private:
    bool Advance();
    void End(std::size_t length, std::size_t next, std::string_view nextTag);
    std::size_t WholeLines(std::size_t length) const;

    std::function<void(const Record&)> take;
    std::string text;      // from the message of the open record on
    std::size_t seen = 0;  // where the search in it goes on
    std::string_view tag;  // of the open record; empty: what comes is no record
};

}  // namespace Tarnex::Parent

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "report/NamePattern.h"
#include "report/Report.h"

namespace Tarnex::Reports {

/// The bad items that a team knows of and lives with: a file with one `NAME [VERDICT]` a line. A
/// name may be a pattern. With a verdict, the item is accepted only as long as it has that one.
/// Empty lines and those that begin with `#` don't count. Blanks in a name need a verdict after it,
/// or a `?` each.
class AcceptedItems {
public:
    AcceptedItems() = default;  ///< accepts nothing

    /// Throws `Tarnex::Exception` with file, line and reason if the file can't be read or holds a
    /// line that isn't one.
    explicit AcceptedItems(const std::string& path);

    /// Says of each item whether it is accepted, whatever it said before.
    void Mark(std::vector<Parent::Item>& items);
    void Mark(Parent::Item& item);

    /// A text for each line whose name nothing had that was marked.
    [[nodiscard]] std::vector<std::string> DescribeUnused() const;

private:
    struct Line {
        std::string place;  ///< FILE:NUMBER
        NamePattern name;
        std::optional<Parent::Verdict> verdict;
        bool used = false;
    };

    static Line ParseLine(const std::string& text, const std::string& place);

    std::vector<Line> lines;
};

}  // namespace Tarnex::Reports

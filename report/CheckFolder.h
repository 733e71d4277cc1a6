#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>

#include "report/Lock.h"

namespace Tarnex::Reports {

/// The folder of one check: first for the list files of its runs, at the end those that the
/// report's commands need. It is locked as long as the check lives, so that others can tell what a
/// check that was killed left behind.
class CheckFolder {
public:
    /// Makes a new one whose name begins so. Throws `std::system_error`.
    explicit CheckFolder(const boost::filesystem::path& beginning);
    /// Removes it, unless it was kept.
    ~CheckFolder();

    CheckFolder(const CheckFolder&) = delete;
    CheckFolder& operator=(const CheckFolder&) = delete;

    const boost::filesystem::path& GetPath() const { return path; }

    /// Gives it this name, in place of a folder that has it. Throws
    /// `boost::filesystem::filesystem_error`.
    void MoveTo(const boost::filesystem::path& target);

    /// From now on it stays.
    void Keep() { kept = true; }

private:
    boost::filesystem::path path;
    std::optional<Lock> lock;
    bool kept = false;
};

/// Removes the folder if no check that lives has it.
void RemoveAbandoned(const boost::filesystem::path& folder);

}  // namespace Tarnex::Reports

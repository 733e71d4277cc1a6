#pragma once

#include <filesystem>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// Where a report is saved, with the list files that its commands need in a folder beside it. Both
/// are replaced together: until then new list files lie in a folder of their own.
class SavedReport {
public:
    /// Throws `Tarnex::Exception` if it plainly can't be written there.
    explicit SavedReport(const std::filesystem::path& path);
    ~SavedReport();

    SavedReport(const SavedReport&) = delete;
    SavedReport& operator=(const SavedReport&) = delete;

    const std::filesystem::path& Path() const { return path; }

    /// Where to put list files; isn't there yet.
    std::filesystem::path FreshLists() const;

    /// The item with its list files where they will lie.
    Parent::Item Finish(Parent::Item item) const;

    /// Throws `Tarnex::Exception`; then the earlier report is as it was.
    void Save(const Report& report) const;

private:
    std::filesystem::path Lists() const;

    std::filesystem::path path;
};

}  // namespace Tarnex::Assay

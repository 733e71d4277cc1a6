#pragma once

#include <boost/filesystem/path.hpp>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// A report's file, with the list files that its commands need in a folder beside it. Both are
/// replaced together: until then new list files lie in a folder of their own.
class SavedReport {
public:
    /// Makes the folder. Throws `std::system_error` if the report plainly can't be written there.
    explicit SavedReport(const boost::filesystem::path& file);
    ~SavedReport();

    SavedReport(const SavedReport&) = delete;
    SavedReport& operator=(const SavedReport&) = delete;

    /// Turns paths of fresh list files into those that they will have.
    void Finish(std::vector<std::string>& arguments) const;

    /// Finishes the report and writes it. Throws `std::system_error`; then the earlier report is as
    /// it was.
    void Save(Report& report) const;

    const boost::filesystem::path path;
    const boost::filesystem::path freshLists;  ///< where to put list files; isn't there yet

private:
    const boost::filesystem::path lists;
};

}  // namespace Tarnex::Assay

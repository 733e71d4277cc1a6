#pragma once

#include <boost/filesystem/path.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "report/CheckFolder.h"
#include "report/State.h"

namespace Tarnex::Reports {

/// Where one check keeps its list files, and in the end its report. Nothing is made before `Open`;
/// whatever isn't saved goes with the object.
class Saving {
public:
    /// Into the state. `started`: when the check began, which names the report.
    Saving(const State& state, const timespec& started);

    /// Into a file, with the lists beside it in FILE.lists; the state stays as it is. Throws
    /// `std::system_error` if the file plainly can't be written.
    explicit Saving(const boost::filesystem::path& file);

    /// Makes the folder for list files. Where the state can't be written, that is a temporary one
    /// and a note says so. Throws `std::system_error` if not even that can be made.
    const boost::filesystem::path& Open(std::vector<std::string>& notes);

    /// Turns the paths of list files into those that they will have. Files of an earlier report are
    /// copied, because that report may go before this one.
    void Finish(std::vector<std::string>& arguments);

    /// Writes the report, and into the state what is known by it. Opens what wasn't open. Where the
    /// state can't be written, a note says so. For a file of its own throws a `std::exception` with
    /// the path at fault; what was there is then as it was.
    void Save(Report& report, const Scope& scope);

    /// The report's path; empty where it can't be kept. Of a report for the state: once it is open.
    const boost::filesystem::path& GetReport() const { return report; }

private:
    void SaveIntoState(const std::string& text, Report& report, const Scope& scope);
    void SaveIntoFile(const std::string& text);
    void CopyLists() const;
    boost::filesystem::path GetLists() const { return report.string() + ".lists"; }

    std::unique_ptr<State> state;  // null: into a file
    std::string time;
    boost::filesystem::path report;
    std::unique_ptr<CheckFolder> folder;
    std::map<std::string, std::string> copies;  // list files of earlier reports: where they go
};

}  // namespace Tarnex::Reports

#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "report/Known.h"

namespace Tarnex::Reports {

/// What is known of one installation:
///
///     KEY/reports/TIME.json        each check's report, the newest 50, with its lists in
///     TIME.json.lists KEY/known.json               the newest verdict of every item KEY/lock held
///     while known.json is renewed report.json                  leads to the newest report of all
///     installations
///
/// Any number of checks may use it at the same time. It is the user's; nothing in it is needed:
/// what can't be read is set aside, what can't be written is told in a note, and a check goes on.
class State {
public:
    /// Touches nothing. `root`: where the state of all installations lies.
    State(const boost::filesystem::path& root, const std::string& key);

    /// "own" for the user's own installation, else 16 digits of its path's SHA-256.
    static std::string GetKey(const boost::filesystem::path& installation, bool isOwn);

    /// What is known; nothing if that can't be read, with a note if it should be there.
    Known Read(std::vector<std::string>& notes) const;

    /// Renews what is known by way of a new file in `work`, a folder of this check alone. Throws
    /// `std::system_error` if it can't be written; doesn't wait longer than five seconds for
    /// another check that is at it: then a note says so.
    void Merge(const Report& report, const Scope& scope, const boost::filesystem::path& work,
               std::vector<std::string>& notes) const;

    /// The reports, oldest first.
    std::vector<boost::filesystem::path> ListReports() const;

    /// Removes reports but for the newest, lists that no report and nothing known needs, and what
    /// checks left that were killed.
    void Prune() const;

    /// Makes `report.json` lead to this report. Throws `std::system_error`.
    void SetNewest(const boost::filesystem::path& report,
                   const boost::filesystem::path& work) const;

    const boost::filesystem::path root;
    const boost::filesystem::path folder;   ///< KEY
    const boost::filesystem::path reports;  ///< KEY/reports
    const boost::filesystem::path known;    ///< KEY/known.json
};

}  // namespace Tarnex::Reports

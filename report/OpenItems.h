#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "report/Lock.h"

namespace Tarnex::Reports {

/// What a check is touching, kept on the disk for the case that it takes the machine with it. The
/// file `open.json` is the check's alone; checks beside it have `open-1.json` and so on.
class OpenItems {
public:
    /// Reads what an earlier boot of the machine left open. `depth`: of this check; exercises that
    /// were open at another one don't count. `boot`: this boot's id.
    OpenItems(const boost::filesystem::path& folder, const std::string& depth,
              const std::string& boot = GetBoot());
    /// Removes the own file.
    ~OpenItems();

    OpenItems(const OpenItems&) = delete;
    OpenItems& operator=(const OpenItems&) = delete;

    /// Names of what was open when the machine stopped, sorted. Among several one is to blame.
    const std::vector<std::string>& GetSuspects() const { return suspects; }

    /// Those of them that were open alone.
    const std::vector<std::string>& GetCulprits() const { return culprits; }

    /// Removes what tells of suspects, unless one of those that were open together isn't done.
    void Forget(const std::function<bool(const std::string&)>& isDone);

    /// Replaces what is open; it is on the disk when this returns. A folder that can't be written
    /// keeps nothing.
    void Write(const std::vector<std::string>& names);

    /// The kernel's name for the time since it started.
    static std::string GetBoot();

private:
    void Read(const boost::filesystem::path& file);
    void Take();

    const boost::filesystem::path folder;
    const std::string depth;
    const std::string boot;
    /// Files of earlier boots, and what they tell.
    std::map<boost::filesystem::path, std::vector<std::string>> earlier;
    std::set<boost::filesystem::path> others;  ///< those that don't count for this check
    std::vector<std::string> suspects;
    std::vector<std::string> culprits;
    boost::filesystem::path path;
    std::unique_ptr<Lock> own;
};

}  // namespace Tarnex::Reports

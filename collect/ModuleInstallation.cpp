#include "collect/ModuleInstallation.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>

#include "collect/Mirror.h"
#include "collect/Update.h"

namespace Tarnex::Collect {

namespace fs = boost::filesystem;
using Installations::Installation;

ModuleInstallation::ModuleInstallation(const Installation& programs,
                                       const std::vector<std::string>& wanted)
    : installation(folder.path.native()) {
    CopyPrograms(programs, installation.GetDirectory());
    ReadingCache none("");
    CollectRecord record;
    for (const std::string& name : wanted) {
        fs::path path = fs::absolute(name).lexically_normal();
        if (path.filename_is_dot()) {  // a folder's name that ended in a slash
            path.remove_filename().remove_trailing_separator();
        }
        const Findings findings = ExamineModule(path, none);
        const Changes changes = UpdateInstallation(installation, findings.modules, record);
        if (changes.linked.empty() && !findings.modules.empty()) {
            continue;  // named twice
        }
        const std::string reason = !changes.linked.empty()    ? ""
                                   : findings.leftOut.empty() ? "holds no module"
                                                              : findings.leftOut.front().reason;
        files.push_back({path, changes.linked, reason});
    }
}

std::vector<std::string> ModuleInstallation::GetPlugins() const {
    std::vector<std::string> plugins;
    for (const WantedFile& file : files) {
        plugins.insert(plugins.end(), file.plugins.begin(), file.plugins.end());
    }
    return plugins;
}

const WantedFile* ModuleInstallation::FindFile(const std::string& plugin) const {
    const auto file = std::ranges::find_if(files, [&](const WantedFile& file) {
        return std::ranges::count(file.plugins, plugin) > 0;
    });
    return file == files.end() ? nullptr : &*file;
}

}  // namespace Tarnex::Collect

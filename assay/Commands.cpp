#include "assay/Commands.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include "collect/ChosenInstallation.h"
#include "collect/Collecting.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Platform::Terminal;

std::vector<fs::path> FindFolders(const std::vector<std::string>& named) {
    std::vector<fs::path> folders;
    for (const std::string& folder : named) {
        if (!fs::is_directory(folder)) {
            throw Exception(fmt::format("not a directory: {}", folder));
        }
        folders.emplace_back(folder);
    }
    return folders;
}

Installations::Installation ChooseDirectory(const std::string& into) {
    const auto own = Installations::Installation::FindOwn();
    if (into.empty() && !own) {
        throw Exception("there is no home: set HOME, or name the folder by --into");
    }
    return into.empty() ? *own : Installations::Installation(into);
}

}  // namespace

int Collect(const Arguments& arguments) {
    const auto folders = FindFolders(arguments.folders);
    const auto installation = ChooseDirectory(arguments.into);
    fs::create_directories(installation.GetDirectory());
    Collect::InstallationLock lock(installation.GetDirectory());
    if (!lock.TryAlone()) {
        throw Exception(installation.GetDirectory().string() + " is being checked; try it later");
    }
    const Collect::Collected collected = Collect::CollectInto(installation, folders);
    Terminal terminal(stdout, false);
    for (const std::string& text : collected.changes.renamed) {
        terminal.Line(text);
    }
    terminal.Line(installation.GetDirectory().string() + ": " + collected.Summarise());
    for (const std::string& text : Collect::Describe(collected.leftOut)) {
        terminal.Line(text);
    }
    return STATUS_GOOD;
}

}  // namespace Tarnex::Assay

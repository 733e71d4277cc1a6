#include <iostream>

#include "assay/CommandLine.h"
#include "assay/ExitStatus.h"
#include "assay/Folders.h"
#include "assay/Mirror.h"
#include "collect/Installation.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;

void RequireFolder(const fs::path& path) {
    if (!fs::is_directory(path)) {
        throw Exception("not a directory: " + path.string());
    }
}

/// One that was made otherwise keeps its program.
bool MakeInstallation(const fs::path& directory) {
    if (fs::exists(directory / "Assayer") && !GetSource(directory)) {
        return false;
    }
    const bool changed = Mirror(GetCommandFolder(), directory);
    if (changed) {
        std::cout << "program copied from " << GetCommandFolder().string() << "\n";
    }
    return changed;
}

std::vector<Collect::SearchFolder> ChooseFolders(const std::vector<std::string>& named) {
    std::vector<Collect::SearchFolder> folders;
    for (const std::string& folder : named) {
        RequireFolder(folder);
        folders.push_back({folder});
    }
    return folders.empty() ? Collect::GetUsualFolders() : folders;
}

void Tell(const Collect::Findings& findings, const Collect::Changes& changes, bool copied) {
    for (const Collect::LeftOut& leftOut : findings.leftOut) {
        std::cout << "left out " << leftOut.path.string() << ": " << leftOut.reason << "\n";
    }
    for (const std::string& text : changes.renamed) {
        std::cout << text << "\n";
    }
    std::cout << findings.modules.size() << " modules; ";
    if (!copied && changes.linked.empty() && changes.removed.empty() && !changes.listWritten) {
        std::cout << "nothing changed\n";
    } else {
        std::cout << changes.linked.size() << " linked, " << changes.removed.size() << " removed\n";
    }
}

}  // namespace

int RunCollectCommand(const CollectArguments& arguments) {
    const auto folders = ChooseFolders(arguments.folders);
    const fs::path directory =
        arguments.into.empty() ? GetOwnInstallation() : fs::absolute(arguments.into);
    std::cout << "installation: " << directory.string() << "\n";
    const bool copied = MakeInstallation(directory);
    const auto findings = Collect::FindModules(folders, directory.string());
    Tell(findings, Collect::UpdateInstallation(directory.string(), findings.modules), copied);
    return STATUS_GOOD;
}

}  // namespace Tarnex::Assay

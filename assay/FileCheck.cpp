#include "assay/FileCheck.h"

#include <algorithm>

#include "platform/Environment.h"

namespace Tarnex::Assay {
namespace {

std::vector<std::string> GetCommand(const Collect::WantedFile& file) {
    return {Platform::GetProgramPath(), "plugins", file.path.string()};
}

}  // namespace

std::vector<Parent::Item> DescribeRefused(const Collect::ModuleInstallation& modules) {
    std::vector<Parent::Item> items;
    for (const Collect::WantedFile& file : modules.GetFiles()) {
        if (file.plugins.empty()) {
            Parent::Item& item = items.emplace_back();
            item.name = file.path.filename().string();
            item.verdict = Parent::Verdict::Failed;
            item.reason = file.reason;
            item.text = file.path.string() + ": " + file.reason;
            item.repro = GetCommand(file);
        }
    }
    return items;
}

void ReplaceRepro(Parent::Item& item, const Collect::ModuleInstallation& modules) {
    const std::string& plugin = item.plugin.empty() ? item.name : item.plugin;
    const Collect::WantedFile* const file = modules.FindFile(plugin);
    if (file != nullptr && !item.repro.empty()) {
        item.repro = GetCommand(*file);
    }
}

}  // namespace Tarnex::Assay

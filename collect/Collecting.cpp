#include "collect/Collecting.h"

#include <fmt/format.h>
#include <boost/filesystem/operations.hpp>

#include "collect/Mirror.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;
using Installations::Installation;

/// True if the programs were copied or renewed.
bool RenewPrograms(const Installation& installation) {
    const bool isOther = fs::exists(installation.GetProgram()) && !GetSource(installation);
    return !isOther && Mirror(Installation::OfThisProgram(), installation);
}

std::vector<SearchFolder> ChooseFolders(const std::vector<fs::path>& named,
                                        const CollectRecord& record) {
    std::vector<SearchFolder> folders =
        named.empty() ? GetUsualFolders() : std::vector<SearchFolder>();
    const auto add = [&](const auto& paths) {
        for (const fs::path& path : paths) {
            folders.push_back({path});
        }
    };
    add(named);
    if (named.empty()) {
        add(record.folders);
    }
    return folders;
}

}  // namespace

std::string Collected::Summarise() const {
    return fmt::format(
        "{}{} modules; {}", copied ? "program copied; " : "", modules,
        changes.IsEmpty() && !copied
            ? "nothing changed"
            : fmt::format("{} linked, {} removed", changes.linked.size(), changes.removed.size()));
}

Collected CollectInto(const Installation& installation, const std::vector<fs::path>& folders) {
    Collected collected;
    collected.copied = RenewPrograms(installation);
    const auto known = ReadCollectRecord(installation);
    CollectRecord record =
        known ? *known : FindUnrecordedLinks(installation, GetSource(installation).value_or(""));
    ReadingCache cache(installation.GetDirectory() / ".collected.cache");
    Findings findings =
        FindModules(ChooseFolders(folders, record), installation.GetDirectory(), cache);
    for (const fs::path& folder : folders) {
        record.folders.insert(fs::canonical(folder));
    }
    if (!known || record != *known) {
        WriteCollectRecord(installation, record);
    }
    collected.changes = UpdateInstallation(installation, findings.modules, record);
    collected.modules = findings.modules.size();
    collected.leftOut = std::move(findings.leftOut);
    cache.Save();
    return collected;
}

}  // namespace Tarnex::Collect

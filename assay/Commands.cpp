#include "assay/Commands.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include <algorithm>

#include "assay/Show.h"
#include "assay/Summary.h"
#include "collect/ChosenInstallation.h"
#include "collect/Collecting.h"
#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = boost::filesystem;
using Parent::Item;
using Platform::Terminal;

class Silent : public Parent::CheckListener {
public:
    void OnVerdict(const Item&) override {}
    void OnProgress(const Parent::Progress&) override {}
    void OnOutput(std::size_t, std::string_view) override {}
    void OnOpen(const std::vector<std::string>&) override {}
};

/// Each group once, with its items below it.
void PrintPlugins(Terminal& terminal, const std::vector<Item>& plugins) {
    std::string group;
    for (const Item& item : plugins) {
        if (std::exchange(group, item.factory) != item.factory) {
            terminal.Line(item.factory);
        }
        const bool isMissing = item.verdict == Parent::Verdict::Missing;
        terminal.Line(fmt::format("  {}{}", item.name, isMissing ? " (no file)" : ""));
    }
}

void PrintCodecs(Terminal& terminal, const Parent::Listing& listing) {
    for (const auto& [implementation, coders] : listing.codecs) {
        for (const auto& [coder, codecs] : coders) {
            terminal.Line(fmt::format("{}.{}", coder, implementation));
            for (const std::string& codec : codecs) {
                terminal.Line("  " + codec);
            }
        }
    }
}

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

int List(const Arguments& arguments) {
    Parent::CheckOptions options = arguments.options;
    options.codecs = true;
    options.jobs = 1;
    const auto chosen = Collect::ChooseInstallation(arguments.app);
    options.application = chosen.installation.GetDirectory();
    const std::vector<Item> plugins = Parent::ListPlugins(options.application);
    Terminal terminal(stdout, false);
    PrintPlugins(terminal, plugins);
    Silent silent;
    PrintCodecs(terminal, Parent::ListCodecs(options, plugins, silent));
    return STATUS_GOOD;
}

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

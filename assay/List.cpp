#include "assay/List.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/filesystem/path.hpp>
#include <functional>
#include <iostream>
#include <unordered_map>

#include "assay/Commands.h"
#include "collect/ChosenInstallation.h"
#include "platform/Signals.h"
#include "platform/TemporaryFolder.h"
#include "platform/TerminalText.h"
#include "report/Report.h"

namespace Tarnex::Assay {
namespace {

using Installations::INTERFACES;
using Parent::Item;
using Parent::Verdict;
using Lines = std::vector<std::string>;

class Silent : public Parent::CheckListener {
public:
    void OnVerdict(const Item&) override {}
    void OnProgress(const Parent::Progress&) override {}
    void OnOutput(std::size_t, std::string_view) override {}
    void OnOpen(const std::vector<std::string>&) override {}
};

/// The interfaces of others first; those whose interface nobody can read last.
std::size_t GetRank(const Item& plugin) {
    const auto found =
        std::ranges::find(INTERFACES, plugin.interface, &Installations::InterfaceTraits::name);
    const auto own = static_cast<std::size_t>(Installations::Interface::Own);
    const auto place = static_cast<std::size_t>(found - INTERFACES.begin());
    return place == own ? INTERFACES.size() : place == INTERFACES.size() ? place + 1 : place;
}

std::vector<const Item*> SortByInterface(const std::vector<Item>& plugins) {
    std::vector<const Item*> sorted;
    sorted.reserve(plugins.size());
    for (const Item& item : plugins) {
        sorted.push_back(&item);
    }
    std::ranges::stable_sort(sorted, {}, [](const Item* item) { return GetRank(*item); });
    return sorted;
}

std::string GetGroup(const Item& plugin) {
    return fmt::format("{} ({})", plugin.interface.empty() ? "unknown" : plugin.interface,
                       plugin.factory);
}

/// Nothing of a plugin that is all there is in its module.
void AddContent(const std::vector<const Item*>& exercises, Lines& lines) {
    for (const Item* item : exercises) {
        if (IsBad(item->verdict)) {
            lines.push_back(fmt::format("    can't be listed: {}", item->reason));
        } else if (exercises.size() > 1 || item->id != item->plugin) {
            lines.push_back("    " + item->id);
        }
    }
}

void AddPlugins(const Inventory& inventory, Lines& lines) {
    std::unordered_map<std::string, std::vector<const Item*>> content;
    for (const Item& item : inventory.exercises) {
        content[item.plugin].push_back(&item);
    }
    std::string group;
    for (const Item* plugin : SortByInterface(inventory.plugins)) {
        if (std::exchange(group, GetGroup(*plugin)) != GetGroup(*plugin)) {
            lines.push_back(GetGroup(*plugin));
        }
        const bool isMissing = plugin->verdict == Verdict::Missing;
        lines.push_back(fmt::format("  {}{}", plugin->name, isMissing ? " (no file)" : ""));
        AddContent(content[plugin->name], lines);
    }
}

void AddCodecs(const std::vector<Item>& codecs, Lines& lines) {
    std::string group;
    for (const Item& item : codecs) {
        const std::string own = item.coder + "." + item.implementation;
        if (std::exchange(group, own) != own) {
            lines.push_back(own);
        }
        lines.push_back("  " + item.codec);
    }
}

/// A part that can't be listed doesn't take the others with it.
void Try(Inventory& inventory, const std::function<void()>& list) {
    try {
        list();
    } catch (const std::exception& error) {
        inventory.problems.emplace_back(error.what());
    }
}

Inventory TakeInventory(Parent::CheckOptions options) {
    Inventory inventory{options.application.native(), {}, {}, {}, {}};
    inventory.plugins = Parent::ListPlugins(options.application);
    Parent::FindInterfaces(inventory.plugins);
    const Platform::TemporaryFolder folder;
    options.lists = folder.path.native();
    options.plugins = options.codecs = true;
    options.jobs = 1;
    Silent silent;
    Try(inventory,
        [&] { inventory.exercises = Parent::ListExercises(options, inventory.plugins, silent); });
    Try(inventory, [&] {
        inventory.codecs = Parent::ToItems(Parent::ListCodecs(options, inventory.plugins, silent));
    });
    return inventory;
}

}  // namespace

Lines Describe(const Inventory& inventory) {
    Lines lines;
    AddPlugins(inventory, lines);
    AddCodecs(inventory.codecs, lines);
    return lines;
}

Reports::Json ToJson(const Inventory& inventory) {
    Reports::Json items = Reports::Json::array();
    for (const auto* part : {&inventory.plugins, &inventory.exercises, &inventory.codecs}) {
        for (const Item& item : *part) {
            Reports::Json& json = items.emplace_back(Reports::ToLeanJson(item));
            if (item.file) {
                json["file"] = {{"path", item.file->path}};  // The rest is read by a check alone.
            }
        }
    }
    return {{"schema", Reports::SCHEMA},
            {"complete", inventory.problems.empty()},
            {"problems", inventory.problems},
            {"installation", inventory.installation},
            {"items", std::move(items)}};
}

int List(const Arguments& arguments) {
    const auto chosen = Collect::ChooseInstallation(arguments.app);
    const Platform::StopSignals stop;
    Parent::CheckOptions options = arguments.options;
    options.application = chosen.installation.GetDirectory();
    options.stop = stop.descriptor;
    const Inventory inventory = TakeInventory(options);
    if (const int signal = stop.Take(); signal > 0) {
        return STATUS_SIGNAL + signal;
    }
    if (arguments.json) {
        std::cout << Reports::Render(ToJson(inventory)) << '\n';
    } else {
        Platform::Terminal terminal(stdout, false);
        for (const std::string& line : Describe(inventory)) {
            terminal.Line(line);
        }
    }
    for (const std::string& problem : inventory.problems) {
        std::cerr << "assay: " << Platform::MakePrintable(problem) << '\n';
    }
    return inventory.problems.empty() ? STATUS_GOOD : STATUS_INCOMPLETE;
}

}  // namespace Tarnex::Assay

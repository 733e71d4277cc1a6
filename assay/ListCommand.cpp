#include <map>

#include "assay/CommandLine.h"
#include "assay/ExitStatus.h"
#include "assay/Installations.h"
#include "assay/Terminal.h"
#include "assay/Text.h"
#include "core/support/Exception.h"
#include "parent/Check.h"

namespace Tarnex::Assay {
namespace {

using Parent::Item;
using Parent::Verdict;

/// Takes the listing and decides every codec, so that none is tested.
class Lister : public Parent::CheckListener {
public:
    void OnVerdict(const Item&) override {}
    void OnProgress(const Parent::Progress&) override {}
    void OnOutput(std::size_t, std::string_view) override {}
    void OnListing(const Parent::Listing& found, std::vector<Item>& codecs) override {
        listing = found;
        for (Item& codec : codecs) {
            codec.verdict = Verdict::Good;
        }
    }

    Parent::Listing listing;
};

void Print(Terminal& terminal, const std::string& title, const std::vector<std::string>& names) {
    terminal.Line(MakePrintable(title + " (" + std::to_string(names.size()) + ")"));
    for (const std::string& name : names) {
        terminal.Line("  " + MakePrintable(name));
    }
}

void PrintPlugins(Terminal& terminal, const std::vector<Item>& plugins) {
    std::vector<std::string> factories;
    std::map<std::string, std::vector<std::string>> names;
    for (const Item& plugin : plugins) {
        if (!names.contains(plugin.factory)) {
            factories.push_back(plugin.factory);
        }
        names[plugin.factory].push_back(
            plugin.verdict == Verdict::Missing ? plugin.name + "  (no file)" : plugin.name);
    }
    for (const std::string& factory : factories) {
        Print(terminal, factory, names.at(factory));
    }
}

void PrintCodecs(Terminal& terminal, const Parent::Listing& listing) {
    for (const auto& [implementation, coders] : listing.codecs) {
        for (const auto& [coder, ids] : coders) {
            Print(terminal, coder + "." + implementation, ids);
        }
    }
}

}  // namespace

int RunListCommand(const CheckArguments& arguments) {
    Terminal terminal(stdout, false);
    const Chosen installation = ChooseInstallation(arguments.app);
    const std::vector<Item> plugins = Parent::ListPlugins(installation.directory);
    PrintPlugins(terminal, plugins);
    Parent::CheckOptions options;
    options.codecs = true;
    options.application = installation.directory;
    options.itemTime = std::chrono::seconds(arguments.itemTime);
    Lister lister;
    const Parent::CheckResult result = Parent::RunCheck(options, plugins, lister);
    if (!result.complete) {
        throw Exception("the codecs can't be listed: " + result.problem);
    }
    PrintCodecs(terminal, lister.listing);
    return STATUS_GOOD;
}

}  // namespace Tarnex::Assay

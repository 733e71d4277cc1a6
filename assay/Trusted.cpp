#include <iostream>

#include "assay/Commands.h"
#include "assay/TrustedFolder.h"
#include "assay/UserState.h"
#include "collect/ChosenInstallation.h"
#include "core/support/Exception.h"
#include "platform/TerminalText.h"
#include "report/Trust.h"

namespace Tarnex::Assay {
namespace {

using Reports::Trust;
using Reports::TrustedModule;

/// Programs open these paths, so they stay as they are unless a person reads along.
void Print(const std::vector<TrustedModule>& modules, bool withReasons) {
    for (const TrustedModule& module : modules) {
        std::cout << module.path;
        if (withReasons) {
            std::cout << '\t' << Platform::MakePrintable(module.reason);
        }
        std::cout << '\n';
    }
}

void Print(const Trust& trust, const Arguments& arguments) {
    if (arguments.json) {
        std::cout << Reports::Render(Reports::ToJson(trust)) << '\n';
    } else if (arguments.bad) {
        Print(trust.bad, true);
        Print(trust.unknown, true);
    } else {
        Print(trust.trusted, false);
    }
}

}  // namespace

int ShowTrusted(const Arguments& arguments) {
    const auto installation = Collect::ChooseInstallation(arguments.app).installation;
    std::vector<std::string> notes;
    const Reports::Known known = GetState(installation).Read(notes);
    const Reports::Facts facts(installation);
    const Trust trust =
        Reports::FindTrust(known, facts, Parent::ListPlugins(installation.GetDirectory()));
    for (const std::string& note : notes) {
        std::cerr << "assay: " << Platform::MakePrintable(note) << '\n';
    }
    if (!arguments.folder.empty()) {
        for (const std::string& line : MakeTrustedFolder(arguments.folder, trust)) {
            std::cout << line << '\n';
        }
    } else {
        Print(trust, arguments);
    }
    if (!std::cout.flush()) {
        throw Exception("can't write to standard output");
    }
    if (known.items.empty()) {
        std::cerr << "assay: nothing is known of "
                  << Platform::MakePrintable(installation.GetDirectory().native())
                  << "; assay all checks it\n";
        return STATUS_INCOMPLETE;
    }
    return STATUS_GOOD;
}

}  // namespace Tarnex::Assay

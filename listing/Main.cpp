// assayer-list: starts the media core as Assayer does and writes what its modules offer as one JSON
// object:
//
//     {"codecs": {IMPLEMENTATION: {"Decoder": [id, ...], "Encoder": [id, ...]}}}
//
// Usage: assayer-list [--without NAME,...]. Exit status: 0; 2 for another command line; 1 if the
// core or a module can't, with the text as the last line on standard error, after the program's
// name.

#include <unistd.h>

#include <QApplication>
#include <algorithm>
#include <boost/exception/diagnostic_information.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "core/media/CoreManager.h"
#include "core/support/Text.h"
#include "mediacore/StartedModules.h"
#include "run/QtEnvironment.h"

namespace {

using namespace Tarnex;  // NOLINT(google-build-using-namespace)
using Json = nlohmann::json;

constexpr int EXIT_USAGE = 2;

/// Modules may write to standard output: from now on that goes to standard error.
std::FILE* TakeStandardOutput() {
    std::FILE* kept = fdopen(dup(STDOUT_FILENO), "w");
    if (kept == nullptr || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        throw std::runtime_error("no standard output");
    }
    return kept;
}

void StartCore(const std::string& without) {
    Core::CoreManager& core = Core::CoreManager::Instance();
    const Core::CoreOptions options{
        {Core::MODULE_PLUGIN_LOADER,
         {{Core::OPT_DISABLED_PLUGINS, Core::Utils::SplitNames(without)}}}};
    core.Initialize({}, options, nullptr, nullptr, true);
    core.WaitUntilInitialized();
}

Json ListCodecs() {
    const auto factory = Core::CoreManager::Instance().GetCodecFactory();
    Json codecs = Json::object();
    for (const auto& [plugin, module] : Core::GetStartedModules()->codecs) {
        const std::string implementation = module->GetImplementation();
        codecs[implementation] = {{ToString(Core::CoderType(Core::CoderType::Decoder)),
                                   factory->GetDecoderCodecs(implementation)},
                                  {ToString(Core::CoderType(Core::CoderType::Encoder)),
                                   factory->GetEncoderCodecs(implementation)}};
    }
    return codecs;
}

/// The caught exception on one line.
std::string GetReason() {
    std::string reason = boost::current_exception_diagnostic_information();
    std::ranges::replace(reason, '\n', ' ');
    return reason;
}

int List(int argc, char** argv) {
    if (argc != 1 && (argc != 3 || std::string(argv[1]) != "--without")) {
        std::cerr << "Usage: assayer-list [--without NAME,...]\n";
        return EXIT_USAGE;
    }
    std::FILE* output = TakeStandardOutput();
    Core::Utils::PrepareQtEnvironment();
    const std::string without = argc == 3 ? argv[2] : "";
    const QApplication application(argc, argv);
    StartCore(without);
    const Json listing{{"codecs", ListCodecs()}};
    const std::string text = listing.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (std::fputs(text.c_str(), output) < 0 || std::fflush(output) != 0) {
        throw std::runtime_error("can't write to standard output");
    }
    // What modules do at the end of a process is no part of a listing.
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return List(argc, argv);
    } catch (...) {
        std::cerr << "assayer-list: " << GetReason() << std::endl;
        std::_Exit(EXIT_FAILURE);
    }
}

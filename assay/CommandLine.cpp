#include "assay/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>

#include "assay/ExitStatus.h"
#include "assay/Text.h"
#include "parent/Check.h"
#include "platform/Signals.h"

namespace Tarnex::Assay {
namespace {

constexpr const char* EXIT_STATUS =
    "Exit status: 0 nothing is bad; 1 something is bad, or got worse; 2 the command line is wrong; "
    "3 the check isn't complete, or a file can't be read or written; 130, 143 interrupted.";

void AddNames(CLI::App& command, const std::string& option, std::vector<std::string>& names,
              const std::string& text) {
    command.add_option(option, names, text)->delimiter(',')->allow_extra_args(false);
}

void AddInstallation(CLI::App& command, CheckArguments& arguments) {
    command.add_option("--app", arguments.app, "the installation directory to check")
        ->type_name("DIR");
    command
        .add_option("--item-time", arguments.itemTime,
                    "how long one plugin or codec may take before it counts as hung")
        ->type_name("SECONDS")
        ->check(CLI::Range(1U, 86400U))
        ->capture_default_str();
}

void AddOutput(CLI::App& command, CheckArguments& arguments) {
    command.add_option("--known", arguments.known, "spare what ended a run in this earlier report")
        ->type_name("REPORT");
    command.add_option("--report", arguments.report, "where to write the report")
        ->type_name("FILE");
    command.add_option("--log", arguments.log, "keep everything that Assayer writes")
        ->type_name("FILE");
    command.add_flag("--events", arguments.events,
                     "one JSON object a line on standard output for each verdict");
    command.add_flag("--quiet", arguments.quiet, "nothing but errors");
}

void AddCheck(CLI::App& app, CheckArguments& arguments, int& status, const std::string& name,
              const std::string& text) {
    CLI::App* command = app.add_subcommand(name, text);
    AddInstallation(*command, arguments);
    if (name != "codecs") {
        AddNames(*command, "--plugin", arguments.plugins, "only these plugins");
    }
    if (name != "plugins") {
        AddNames(*command, "--implementation", arguments.implementations,
                 "only codecs of these implementations");
        AddNames(*command, "--codec", arguments.codecs, "only these codec ids");
    }
    command->add_option("--jobs", arguments.jobs, "how many processes work side by side")
        ->type_name("N")
        ->check(CLI::Range(1U, 1024U));
    AddOutput(*command, arguments);
    command->callback([&, name] {
        arguments.check = name;
        status = RunCheckCommand(arguments);
    });
}

void AddList(CLI::App& app, CheckArguments& arguments, int& status) {
    CLI::App* command = app.add_subcommand("list", "show what would be checked");
    AddInstallation(*command, arguments);
    command->callback([&] { status = RunListCommand(arguments); });
}

void AddReport(CLI::App& app, ReportArguments& arguments, int& status) {
    CLI::App* command = app.add_subcommand("report", "show saved reports, or make a page of them");
    command->add_option("REPORT", arguments.reports, "saved reports")->required();
    command->add_option("--html", arguments.html, "write a page for the browser")
        ->type_name("FILE");
    command->add_option("--junit", arguments.junit, "write JUnit's XML for a build server")
        ->type_name("FILE");
    command->callback([&] { status = RunReportCommand(arguments); });
}

void AddCompare(CLI::App& app, ReportArguments& arguments, int& status) {
    CLI::App* command = app.add_subcommand("compare", "show what changed between two reports");
    command->add_option("REPORT", arguments.reports, "the earlier report, then the later one")
        ->required()
        ->expected(2);
    command->callback([&] { status = RunCompareCommand(arguments); });
}

void AddCollect(CLI::App& app, CollectArguments& arguments, int& status) {
    CLI::App* command =
        app.add_subcommand("collect", "make an installation with this machine's plugins");
    command->add_option("--into", arguments.into, "where; by default in your own data folder")
        ->type_name("DIR");
    command->add_option("FOLDER", arguments.folders,
                        "where to look for modules of any kind; by default the usual folders");
    command->callback([&] { status = RunCollectCommand(arguments); });
}

int Fail(const std::string& text, int status) {
    std::cerr << "assay: " << MakePrintable(text) << "\n";
    return status;
}

int Parse(int argc, char** argv) {
    CLI::App app("Checks which plugin modules load and which codecs work on this machine.",
                 "assay");
    app.footer(EXIT_STATUS);
    app.set_version_flag("--version", "assay " ASSAYER_VERSION);
    app.require_subcommand(1);
    int status = STATUS_GOOD;
    CheckArguments check;
    ReportArguments report;
    CollectArguments collect;
    AddCheck(app, check, status, "plugins", "check the plugin modules");
    AddCheck(app, check, status, "codecs", "check the codecs");
    AddCheck(app, check, status, "all", "check the plugin modules, then the codecs");
    AddList(app, check, status);
    AddReport(app, report, status);
    AddCompare(app, report, status);
    AddCollect(app, collect, status);
    try {
        app.parse(argc, argv);
        return status;
    } catch (const CLI::Error& error) {
        return app.exit(error) == 0 ? STATUS_GOOD : STATUS_USAGE;
    }
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
    // Whoever reads along may go; the report is written all the same.
    Platform::IgnoreWriteSignals();
    try {
        return Parse(argc, argv);
    } catch (const Parent::UnknownName& error) {
        return Fail(error.what(), STATUS_USAGE);
    } catch (const std::exception& error) {
        return Fail(error.what(), STATUS_INCOMPLETE);
    }
}

}  // namespace Tarnex::Assay

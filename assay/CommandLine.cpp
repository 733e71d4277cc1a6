#include "assay/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>

#include "assay/Commands.h"
#include "parent/Check.h"
#include "platform/Signals.h"
#include "platform/TerminalText.h"

namespace Tarnex::Assay {
namespace {

constexpr const char* EXIT_STATUS =
    "Exit status: 0 nothing is bad; 1 something is bad, or got worse; 2 the command line is wrong; "
    "3 the check isn't complete, or a file can't be read or written; 130, 143 interrupted.";

/// The command line as CLI11 sees it, filled into the arguments.
class Parser {
public:
    Parser() {
        options.jobs = 0;
        app.footer(EXIT_STATUS);
        app.set_version_flag("--version", "assay " ASSAYER_VERSION);
        app.require_subcommand(1);
        AddCheck("plugins", "check the plugin modules");
        AddCheck("codecs", "check the codecs");
        AddCheck("all", "check the plugin modules, then the codecs");
        AddInstallation(Add("list", "show what would be checked", List));
        AddCollect(Add("collect", "make an installation with this machine's plugins", Collect));
        AddReport(Add("report", "show saved reports, or make a page of them", ShowReports));
        Add("compare", "show what changed between two reports", CompareReports)
            ->add_option("REPORT", arguments.reports, "the earlier one, the later one")
            ->required()
            ->expected(2);
    }

    int Run(int argc, char** argv) {
        try {
            app.parse(argc, argv);
            return status;
        } catch (const CLI::Error& error) {
            return app.exit(error) == 0 ? STATUS_GOOD : STATUS_USAGE;
        }
    }

private:
    CLI::App* Add(const std::string& name, const std::string& text, int (*run)(const Arguments&)) {
        CLI::App* command = app.add_subcommand(name, text);
        command->callback([this, name, run] {
            arguments.check = name;
            options.itemTime = std::chrono::seconds(itemTime);
            status = run(arguments);
        });
        return command;
    }

    void AddCheck(const std::string& name, const std::string& text) {
        CLI::App* command = Add(name, text, Check);
        AddInstallation(command);
        if (name != "codecs") {
            AddNames(command, "--plugin", options.pluginNames, "only these plugins");
        }
        if (name != "plugins") {
            AddNames(command, "--implementation", options.implementations,
                     "only codecs of these implementations");
            AddNames(command, "--codec", options.codecIds, "only these codec ids");
        }
        command->add_option("--jobs", options.jobs, "how many processes work side by side")
            ->type_name("N")
            ->check(CLI::Range(1U, 1024U));
        AddPath(command, "--known", arguments.known, "spare what ended a run in this report");
        AddPath(command, "--report", arguments.report, "where to write the report");
        AddPath(command, "--log", arguments.log, "keep everything that Assayer writes");
        command->add_flag("--events", arguments.events,
                          "one JSON object a line on standard output for each verdict");
        command->add_flag("--quiet", arguments.quiet, "nothing but errors");
    }

    void AddInstallation(CLI::App* command) {
        AddPath(command, "--app", arguments.app, "the installation directory to check");
        command
            ->add_option("--item-time", itemTime,
                         "seconds after which a plugin or codec counts as hung")
            ->type_name("SECONDS")
            ->check(CLI::Range(1U, 86400U))
            ->capture_default_str();
    }

    void AddCollect(CLI::App* command) {
        AddPath(command, "--into", arguments.into, "where; by default in your own data folder");
        command->add_option("FOLDER", arguments.folders,
                            "where to look for modules; by default in the usual folders");
    }

    void AddReport(CLI::App* command) {
        command->add_option("REPORT", arguments.reports, "saved reports")->required();
        AddPath(command, "--html", arguments.html, "write a page for the browser");
        AddPath(command, "--junit", arguments.junit, "write JUnit's XML for a build server");
    }

    static void AddPath(CLI::App* command, const char* option, std::string& path,
                        const char* text) {
        command->add_option(option, path, text)->type_name("PATH");
    }

    static void AddNames(CLI::App* command, const char* option, std::vector<std::string>& names,
                         const char* text) {
        command->add_option(option, names, text)
            ->type_name("NAME,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    }

    CLI::App app{"Checks which plugin modules load and which codecs work on this machine.",
                 "assay"};
    Arguments arguments;
    Parent::CheckOptions& options = arguments.options;
    unsigned int itemTime = 20;  // seconds
    int status = STATUS_GOOD;
};

int Fail(const std::exception& error, int status) {
    std::cerr << "assay: " << Platform::MakePrintable(error.what()) << std::endl;
    return status;
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
    // Whoever reads along may leave; the report is written all the same.
    Platform::IgnoreWriteSignals();
    try {
        return Parser().Run(argc, argv);
    } catch (const Parent::UnknownName& error) {
        return Fail(error, STATUS_USAGE);
    } catch (const std::exception& error) {
        return Fail(error, STATUS_INCOMPLETE);
    }
}

}  // namespace Tarnex::Assay

#include "assay/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>
#include <sstream>

#include "assay/Commands.h"
#include "assay/Complete.h"
#include "assay/Help.h"
#include "assay/Names.h"
#include "parent/Check.h"
#include "platform/Signals.h"
#include "platform/Terminal.h"
#include "platform/TerminalText.h"

namespace Tarnex::Assay {
namespace {

// What a status means depends on the command.
constexpr const char* STATUS_OF_CHECK =
    "Exit status: 0 nothing is bad; 1 something is bad; 2 the command line is wrong; 3 the check "
    "isn't complete, or a file can't be read or written; 129, 130, 143 interrupted.";
constexpr const char* STATUS_OF_REPORT =
    "Exit status: 0 nothing is bad, or the file asked for is written; 1 something is bad; 2 the "
    "command line is wrong; 3 a report isn't complete, or a file can't be read or written.";
constexpr const char* STATUS_OF_COMPARE =
    "Exit status: 0 nothing got worse; 1 something got worse; 2 the command line is wrong; 3 a "
    "file "
    "can't be read.";
constexpr const char* STATUS_OF_OTHERS =
    "Exit status: 0 done; 2 the command line is wrong; 3 it can't be done: the text says why.";

constexpr unsigned int MOST_SECONDS = 86400;

/// The command line as CLI11 sees it, filled into the arguments.
class Parser {
public:
    Parser() {
        options.jobs = 0;
        app.footer("\"assay help COMMAND\" says more of one, and what its exit status means.");
        app.set_version_flag("--version", "assay " ASSAYER_VERSION);
        app.require_subcommand(1);
        AddCheck("plugins", "check the plugin modules");
        AddCheck("codecs", "check the codecs");
        AddCheck("all", "check the plugin modules, then the codecs");
        AddList(Add("list", "show what would be checked", List, STATUS_OF_OTHERS));
        AddShow(Add("show", "show the last summary, or all of one plugin or codec", Show,
                    STATUS_OF_REPORT));
        AddCollect(Add("collect", "make an installation with this machine's plugins", Collect,
                       STATUS_OF_OTHERS));
        AddReport(Add("report", "show saved reports, or make a page of them", ShowReports,
                      STATUS_OF_REPORT));
        CLI::App* compare = Add("compare", "show what changed between two reports", CompareReports,
                                STATUS_OF_COMPARE);
        compare
            ->add_option("REPORT", arguments.reports,
                         "the earlier one, the later one; by default the last two of one kind")
            ->expected(2);
        AddAccept(compare);
        AddTrusted(
            Add("trusted", "show the modules that a host may load", ShowTrusted, STATUS_OF_OTHERS));
        AddHelp();
    }

    int Run(int argc, char** argv) {
        if (argc > 1 && std::string_view(argv[1]) == "complete") {
            for (const std::string& word : Assay::Complete(app, {argv + 2, argv + argc})) {
                std::cout << word << "\n";
            }
            return STATUS_GOOD;
        }
        try {
            app.parse(argc, argv);
            return status;
        } catch (const CLI::Success& wish) {
            return app.exit(wish);
        } catch (const CLI::ParseError& error) {
            throw UnknownName(ExplainMistake(app, error));
        }
    }

private:
    CLI::App* Add(const std::string& name, const std::string& text, int (*run)(const Arguments&),
                  const char* meanings) {
        CLI::App* command = app.add_subcommand(name, text);
        command->footer(meanings);
        command->callback([this, name, run] {
            arguments.check = name;
            options.itemTime = std::chrono::seconds(itemTime);
            if (time > 0) {
                options.time = std::chrono::seconds(time);
            }
            status = run(arguments);
        });
        return command;
    }

    void AddCheck(const std::string& name, const std::string& text) {
        CLI::App* command = Add(name, text, Check, STATUS_OF_CHECK);
        AddInstallation(command);
        if (name != "codecs") {
            AddNames(command, "--plugin", options.pluginNames, "only these plugins");
        }
        if (name == "plugins") {
            command
                ->add_option("FILE", arguments.files,
                             "modules and bundles; by default those of the installation")
                ->excludes("--plugin");
        }
        if (name != "plugins") {
            AddNames(command, "--implementation", options.implementations,
                     "only codecs of these implementations");
            AddNames(command, "--codec", options.codecIds, "only these codec ids");
        }
        AddNames(command, "--skip", options.skip, "all but these");
        AddDepth(command, name);
        command->add_option("--time", time, "seconds after which the whole check ends, incomplete")
            ->type_name("SECONDS")
            ->check(CLI::Range(1U, MOST_SECONDS));
        command->add_option("--jobs", options.jobs, "how many processes work side by side")
            ->type_name("N")
            ->check(CLI::Range(1U, 1024U));
        command
            ->add_option_function<std::string>(
                "--known",
                [this](const std::string& path) {
                    arguments.useKnown = true;
                    arguments.known = path;
                },
                "spare what ended a run in this report, by default in any earlier check")
            ->type_name("PATH")
            ->expected(0, 1);
        command->add_flag("--only-changed", arguments.onlyChanged,
                          "touch nothing whose verdict still holds");
        AddAccept(command);
        AddPath(command, "--report", arguments.report, "where to write the report");
        AddPath(command, "--log", arguments.log, "keep everything that Assayer writes");
        command->add_flag("--events", arguments.events,
                          "one JSON object a line on standard output for each verdict");
        command->add_flag("--quiet", arguments.quiet, "nothing but errors");
    }

    void AddDepth(CLI::App* command, const std::string& name) {
        if (name != "codecs") {
            command
                ->add_option("--depth", options.depth, "how much is done with what is in a plugin")
                ->type_name("DEPTH")
                ->check(CLI::IsMember({"load", "exercise", "stress"}))
                ->capture_default_str();
        }
    }

    void AddInstallation(CLI::App* command) {
        AddPath(command, "--app", arguments.app, "the installation directory to check");
        command
            ->add_option("--item-time", itemTime,
                         "seconds after which a plugin or codec counts as hung")
            ->type_name("SECONDS")
            ->check(CLI::Range(1U, MOST_SECONDS))
            ->capture_default_str();
    }

    void AddList(CLI::App* command) {
        AddInstallation(command);
        command->add_flag("--json", arguments.json, "show it as one JSON object");
    }

    void AddCollect(CLI::App* command) {
        AddPath(command, "--into", arguments.into, "where; by default in your own data folder");
        command->add_option("FOLDER", arguments.folders,
                            "where to look for modules; by default in the usual folders");
    }

    void AddTrusted(CLI::App* command) {
        AddPath(command, "--app", arguments.app, "the installation directory");
        command->add_flag("--bad", arguments.bad, "show the others, each with the reason");
        command->add_flag("--json", arguments.json, "show all of them as one JSON object");
        AddPath(command, "--folder", arguments.folder,
                "make a folder with links to them, and show the variables that lead hosts there");
    }

    void AddReport(CLI::App* command) {
        command->add_option("REPORT", arguments.reports, "saved reports; - is standard input")
            ->required();
        AddPath(command, "--html", arguments.html,
                "write a page for the browser; - is standard output");
        AddPath(command, "--junit", arguments.junit,
                "write JUnit's XML for a build server; - is standard output");
        AddPath(command, "--metrics", arguments.metrics,
                "write figures of one report for Prometheus; - is standard output");
        AddAccept(command);
    }

    void AddAccept(CLI::App* command) {
        AddPath(command, "--accept", arguments.accept,
                "bad items that don't count: a file with one NAME [VERDICT] a line");
    }

    void AddShow(CLI::App* command) {
        command->add_option("NAME", arguments.names,
                            "of a plugin, of what is in one, or of a codec or its test; by default "
                            "everything that is bad");
        AddPath(command, "--report", arguments.report, "of this report; by default the last one");
        command->add_flag("--trace", arguments.trace,
                          "run it again under gdb and print the stack where it crashed or hung");
    }

    void AddHelp() {
        CLI::App* command = app.add_subcommand("help", "show what a command does");
        command->footer(STATUS_OF_OTHERS);
        command->add_option("COMMAND", helpOf, "which; by default all");
        command->callback([this] { std::cout << GetHelp(app, helpOf) << std::flush; });
    }

    static void AddPath(CLI::App* command, const char* option, std::string& path,
                        const char* text) {
        command->add_option(option, path, text)->type_name("PATH");
    }

    static void AddNames(CLI::App* command, const char* option, std::vector<std::string>& names,
                         const char* text) {
        command->add_option(option, names, text)
            ->type_name(LIST_OF_NAMES)
            ->delimiter(',')
            ->allow_extra_args(false);
    }

    CLI::App app{"Checks which plugin modules load and which codecs work on this machine.",
                 "assay"};
    Arguments arguments;
    Parent::CheckOptions& options = arguments.options;
    unsigned int itemTime = 20;  // seconds
    unsigned int time = 0;       // seconds for the whole check; 0: as long as it takes
    std::string helpOf;
    int status = STATUS_GOOD;
};

int Fail(const std::exception& error, int status) {
    std::istringstream lines(error.what());
    for (std::string line; std::getline(lines, line);) {
        std::cerr << "assay: " << Platform::MakePrintable(line) << std::endl;
    }
    return status;
}

int RunParser(int argc, char** argv) {
    try {
        return Parser().Run(argc, argv);
    } catch (const UnknownName& error) {
        return Fail(error, STATUS_USAGE);
    } catch (const std::exception& error) {
        return Fail(error, STATUS_INCOMPLETE);
    }
}

}  // namespace

int RunCommandLine(int argc, char** argv) {
    // A reader of our output may go away; the report is written all the same.
    Platform::IgnoreWriteSignals();
    Platform::OccupyStandardDescriptors();
    const int status = RunParser(argc, argv);
    const std::string problem = Platform::FlushStandardStreams();
    if (problem.empty()) {
        return status;
    }
    std::cerr << "assay: " << problem << std::endl;
    return status == STATUS_GOOD || status == STATUS_BAD ? STATUS_INCOMPLETE : status;
}

}  // namespace Tarnex::Assay

#include "assay/Help.h"

#include <fmt/format.h>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include "assay/Names.h"

namespace Tarnex::Assay {
namespace {

std::vector<Candidate> ToCandidates(const std::vector<std::string>& names) {
    std::vector<Candidate> candidates;
    candidates.reserve(names.size());
    for (const std::string& name : names) {
        // A word may lack the dashes.
        candidates.push_back({name, {name.substr(name.find_first_not_of('-'))}, ""});
    }
    return candidates;
}

std::string DescribeUnknownCommand(const CLI::App& app, const std::string& word) {
    return DescribeUnknown(word, ToCandidates(GetCommands(app)), "command") +
           "\n\"assay help\" shows all";
}

}  // namespace

const CLI::App* FindCommand(const CLI::App& app, const std::string& name) {
    const auto found =
        app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

std::vector<std::string> GetCommands(const CLI::App& app) {
    std::vector<std::string> commands;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        commands.push_back(command->get_name());
    }
    return commands;
}

std::vector<std::string> GetOptions(const CLI::App& command) {
    std::vector<std::string> options;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            options.push_back("--" + name);
        }
    }
    return options;
}

std::string ExplainMistake(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    const auto rest = app.remaining(true);
    if (commands.empty()) {
        return rest.empty() ? "Which command? \"assay help\" shows all"
               : rest.front().starts_with("-")
                   ? DescribeUnknown(rest.front(), ToCandidates(GetOptions(app)), "option")
                   : DescribeUnknownCommand(app, rest.front());
    }
    const std::string name = commands.front()->get_name();
    const std::string hint = fmt::format("\n\"assay help {}\" says more", name);
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::ExtrasError) || rest.empty()) {
        return name + ": " + error.what() + hint;
    }
    const std::string& word = rest.front();
    const std::string option = word.substr(0, word.find('='));
    return (word.starts_with("-")
                ? DescribeUnknown(option, ToCandidates(GetOptions(*commands.front())), "option")
                : fmt::format("{} takes no \"{}\"", name, word)) +
           hint;
}

std::string GetHelp(const CLI::App& app, const std::string& command) {
    if (command.empty()) {
        // Not `help()`, which says what the command does that runs.
        return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    }
    const CLI::App* found = FindCommand(app, command);
    if (found == nullptr) {
        throw UnknownName(DescribeUnknownCommand(app, command));
    }
    return found->help("assay");
}

}  // namespace Tarnex::Assay

#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace Tarnex::Assay {

/// Null if there is none of that name.
const CLI::App* FindCommand(const CLI::App& app, const std::string& name);

std::vector<std::string> GetCommands(const CLI::App& app);

/// The long names, with their dashes.
std::vector<std::string> GetOptions(const CLI::App& command);

/// What is wrong with the command line, with the nearest command or option.
std::string ExplainMistake(const CLI::App& app, const CLI::ParseError& error);

/// The help of the command of that name; of all if it is empty. Throws `UnknownName`.
std::string GetHelp(const CLI::App& app, const std::string& command);

}  // namespace Tarnex::Assay

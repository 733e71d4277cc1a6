#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace Tarnex::Assay {

/// The type of options that take a list of names, which is known to people from the help.
inline constexpr char LIST_OF_NAMES[] = "NAME,...";

/// What may take the place of the last word, for a shell that completes a command line; `words` are
/// those after the program's name. None: the shell offers files. Throws nothing.
std::vector<std::string> Complete(const CLI::App& app, std::vector<std::string> words);

}  // namespace Tarnex::Assay

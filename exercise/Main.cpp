// assayer-exercise: lists the plugins that modules contain, and uses them as a host does.
// doc/exercise.md describes the request, the records and the answer. Exit status: 0, whatever came
// of the exercises; 2 for a command line or a request that makes no sense; 1 if the answer can't be
// written.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "exercise/Command.h"
#include "exercise/Exerciser.h"
#include "exercise/Listing.h"

namespace {

using namespace Tarnex::Exercise;  // NOLINT(google-build-using-namespace)

constexpr int EXIT_USAGE = 2;

/// Modules may write to standard output: from now on that goes to standard error.
std::FILE* TakeStandardOutput() {
    std::FILE* kept = fdopen(dup(STDOUT_FILENO), "w");
    return kept != nullptr && dup2(STDERR_FILENO, STDOUT_FILENO) >= 0 ? kept : nullptr;
}

bool Write(const std::string& text, std::FILE* output) {
    return output != nullptr && std::fputs(text.c_str(), output) >= 0 && std::fflush(output) == 0;
}

int Do(const Command& command, std::FILE* output) {
    if (!command.isList) {
        RunExercises(command.request);
        return EXIT_SUCCESS;
    }
    if (!Write(ListModules(command.request) + "\n", output)) {
        std::cerr << "assayer-exercise: can't write to standard output" << std::endl;
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

int Run(const std::vector<std::string>& arguments) {
    std::FILE* output = TakeStandardOutput();
    try {
        return Do(ReadCommand(arguments), output);
    } catch (const std::exception& error) {
        std::cerr << "assayer-exercise: " << error.what() << std::endl;
        return EXIT_USAGE;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int status = Run({argv + 1, argv + argc});
    // What modules do at the end of a process is no part of an exercise.
    std::fflush(nullptr);
    _exit(status);
}

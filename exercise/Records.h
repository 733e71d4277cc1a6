#pragma once

#include <stdexcept>
#include <string>

namespace Tarnex::Exercise {

/// The plugin doesn't do what its interface demands. The text says what and where.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The plugin requires a host feature that we don't offer. The text names it.
class Unavailable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// All of these belong to the main thread: a parent believes only that thread's records.

/// Starts an exercise; its remarks and steps begin anew.
void BeginExercise(const std::string& name);

void WriteTitle(const std::string& title);

/// Says what is done next. It is the progress that a parent waits for and the last thing that it
/// knows of a plugin that crashes, so write it before each call into the plugin.
void Step(const std::string& text);

/// The step that was written last.
const std::string& GetLastStep();

/// What isn't a fault but worth knowing. Each text is written once an exercise.
void Remark(const std::string& text);

}  // namespace Tarnex::Exercise

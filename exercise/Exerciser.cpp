#include "exercise/Exerciser.h"

#include <algorithm>

#include "core/exercise/Tags.h"
#include "core/support/Constants.h"
#include "exercise/Modules.h"
#include "exercise/Records.h"
#include "reporting/Logging.h"

namespace Tarnex::Exercise {
namespace {

using Core::Utils::LogTagged;

std::unique_ptr<Plugin> Open(LoadedModule& loaded, const std::string& id) {
    const auto place = std::ranges::find(loaded.ids, id);
    if (place == loaded.ids.end()) {
        throw Failure("the module doesn't hold \"" + id + "\"");
    }
    Step("read");
    return loaded.module->Open(static_cast<std::size_t>(place - loaded.ids.begin()));
}

void Exercise(const ModuleRequest& module, const std::string& id, Depth depth) {
    Step("load");
    const auto plugin = Open(LoadModule(module), id);
    WriteTitle(plugin->GetTitle());
    if (depth != Depth::Load) {
        plugin->Exercise(depth);
    }
}

void Tell(const char* tag, const std::string& name) {
    LogTagged(Core::Utils::ERROR_TAG, GetReason());
    LogTagged(tag, name);
}

void ExerciseAndTell(const Request& request, const ExerciseRequest& exercise) {
    const std::string name = exercise.module + "/" + exercise.id;
    BeginExercise(name);
    try {
        Exercise(request.GetModule(exercise.module), exercise.id, request.depth);
    } catch (const Unavailable&) {
        Tell(UNAVAILABLE_TAG, name);
    } catch (...) {
        Tell(EXERCISES_TAG, name);
    }
}

}  // namespace

void RunExercises(const Request& request) {
    for (const ExerciseRequest& exercise : request.exercises) {
        ExerciseAndTell(request, exercise);
    }
    LogTagged(EXERCISED_TAG, "true");
}

}  // namespace Tarnex::Exercise

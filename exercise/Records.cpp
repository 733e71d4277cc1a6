#include "exercise/Records.h"

#include <set>

#include "core/exercise/Tags.h"
#include "reporting/Logging.h"

namespace Tarnex::Exercise {
namespace {

using Core::Utils::LogTagged;

struct Written {
    std::string step;
    std::set<std::string> remarks;
};

/// Never freed: the process ends without destructors.
Written& GetWritten() {
    static auto& written = *new Written();
    return written;
}

}  // namespace

void BeginExercise(const std::string& name) {
    GetWritten() = {};
    LogTagged(EXERCISE_TAG, name);
}

void WriteTitle(const std::string& title) {
    LogTagged(TITLE_TAG, title);
}

void Step(const std::string& text) {
    GetWritten().step = text;
    LogTagged(STEP_TAG, text);
}

const std::string& GetLastStep() {
    return GetWritten().step;
}

void Remark(const std::string& text) {
    if (GetWritten().remarks.insert(text).second) {
        LogTagged(REMARK_TAG, text);
    }
}

}  // namespace Tarnex::Exercise

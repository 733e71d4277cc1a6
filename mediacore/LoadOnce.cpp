#include "mediacore/LoadOnce.h"

#include "core/media/Factories.h"
#include "core/support/ExceptionText.h"

namespace Tarnex::Core {
namespace {

void LoadOrRefuse(const ModuleFile& file, const LoadOnce::Load& load) {
    try {
        load();
    } catch (const Proc::CodecFactoryErrorException&) {
        throw;
    } catch (...) {
        file.Refuse("threw\n" + Utils::GetCurrentExceptionText());
    }
}

/// Null if nothing was thrown.
std::exception_ptr GetFailure(const ModuleFile& file, const LoadOnce::Load& load) {
    try {
        LoadOrRefuse(file, load);
        return nullptr;
    } catch (...) {
        return std::current_exception();
    }
}

[[noreturn]] void Repeat(const std::exception_ptr& failure, const ModuleFile& file,
                         const std::string& firstPlugin) {
    try {
        std::rethrow_exception(failure);
    } catch (const Proc::CodecFactoryErrorException& first) {
        if (file.plugin == firstPlugin) {
            throw;
        }
        file.Refuse(std::string("failed before. ") + first.what());
    }
}

}  // namespace

void LoadOnce::operator()(const ModuleFile& file, const Load& load) {
    Outcome& outcome = GetOutcome(file.path);
    if (outcome.loader == std::this_thread::get_id()) {
        file.Refuse("loads itself while it is being loaded");
    }
    const Lock lock(outcome.mutex);
    if (!outcome.isKnown) {
        outcome.plugin = file.plugin;
        outcome.loader = std::this_thread::get_id();
        outcome.failure = GetFailure(file, load);
        outcome.loader = std::thread::id();
        outcome.isKnown = true;
    }
    if (outcome.failure) {
        Repeat(outcome.failure, file, outcome.plugin);
    }
}

LoadOnce::Outcome& LoadOnce::GetOutcome(const std::string& path) {
    const Lock lock(mutex);
    return outcomes[path];
}

}  // namespace Tarnex::Core

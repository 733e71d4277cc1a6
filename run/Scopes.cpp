#include "run/Scopes.h"

#include <utility>

#include "core/media/CoreInitExtension.h"
#include "core/media/CoreManager.h"
#include "core/support/Constants.h"
#include "core/support/ExceptionText.h"
#include "reporting/Logging.h"

namespace Tarnex::Core::Utils {
namespace {

void RunDeinitHandlers() {
    for (const auto& [name, handler] : CoreInitExtension::GetDeinitHandlers()) {
        try {
            handler();
        } catch (...) {
            // Contract: parents match this text; keep it verbatim.
            LogTagged(WARNING_TAG, "Failed doing a deinitializing handler for " + name + ": " +
                                       GetCurrentExceptionText());
        }
    }
}

}  // namespace

LoggingScope::LoggingScope(std::function<void()> start, std::function<void()> shutDown)
    : startAction(std::move(start)), shutDownAction(std::move(shutDown)) {
    if (!started && startAction) {
        startAction();
    }
    started = true;
}

LoggingScope::~LoggingScope() {
    if (started && shutDownAction) {
        shutDownAction();
    }
    started = false;
}

MediaCoreScope::~MediaCoreScope() {
    CoreManager& core = CoreManager::Instance();
    if (core.IsInitialized()) {
        core.Uninitialize();
    }
}

DeinitScope::~DeinitScope() {
    if (checkType == CheckType::Plugins) {
        RunDeinitHandlers();
    }
}

}  // namespace Tarnex::Core::Utils

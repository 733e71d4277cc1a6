#include "run/QtEnvironment.h"

#include "platform/Environment.h"

namespace Tarnex::Core::Utils {
namespace {

void SetUnlessSet(const char* name, const char* value) {
    if (!Platform::GetEnvironment(name)) {
        Platform::SetEnvironment(name, value);
    }
}

const char* ChoosePlatform() {
    if (Platform::GetEnvironment("WAYLAND_DISPLAY")) {
        return "wayland;xcb;offscreen";
    }
    if (Platform::GetEnvironment("DISPLAY")) {
        return "xcb;offscreen";
    }
    return "offscreen";
}

}  // namespace

void PrepareQtEnvironment() {
    SetUnlessSet("QT_QPA_PLATFORM", ChoosePlatform());
    SetUnlessSet("QT_LOGGING_RULES", "*.info=false;*.warning=false");
}

}  // namespace Tarnex::Core::Utils

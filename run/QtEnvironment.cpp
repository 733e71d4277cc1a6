#include "run/QtEnvironment.h"

#include "platform/Environment.h"

namespace Tarnex::Core::Utils {
namespace {

void SetUnlessSet(const wchar_t* name, const wchar_t* value) {
    if (!Platform::GetEnvironment(name)) {
        Platform::SetEnvironment(name, value);
    }
}

const wchar_t* ChoosePlatform() {
    if (Platform::GetEnvironment(L"WAYLAND_DISPLAY")) {
        return L"wayland;xcb;offscreen";
    }
    if (Platform::GetEnvironment(L"DISPLAY")) {
        return L"xcb;offscreen";
    }
    return L"offscreen";
}

}  // namespace

void PrepareQtEnvironment() {
    SetUnlessSet(L"QT_QPA_PLATFORM", ChoosePlatform());
    SetUnlessSet(L"QT_LOGGING_RULES", L"*.info=false;*.warning=false");
}

}  // namespace Tarnex::Core::Utils

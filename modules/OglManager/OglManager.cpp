#include <EGL/egl.h>
// After egl.h: the extensions use its types.
#include <EGL/eglext.h>

#include <memory>
#include <string>
#include <string_view>

#include "core/module/Module.h"
#include "core/support/Exception.h"
#include "modules/OglManager/GlContext.h"

namespace Tarnex::Ogl {
namespace {

/// A display without a window system or a screen; `EGL_NO_DISPLAY` if this EGL offers none.
EGLDisplay GetSurfacelessDisplay() {
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (extensions == nullptr ||
        std::string_view(extensions).find("EGL_MESA_platform_surfaceless") ==
            std::string_view::npos) {
        return EGL_NO_DISPLAY;
    }
    return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
}

class OglModule : public Module::IOglModule {
public:
    void Start() override {
        std::string reason;
        if (!TryToStart(GetSurfacelessDisplay(), reason) &&
            !TryToStart(eglGetDisplay(EGL_DEFAULT_DISPLAY), reason)) {
            throw Exception("No usable OpenGL; without a window system, then with the default: " +
                            reason);
        }
    }

    void Stop() override { context.reset(); }

private:
    bool TryToStart(EGLDisplay display, std::string& reasons) {
        try {
            context = std::make_unique<GlContext>(display);
            return true;
        } catch (const Exception& failure) {
            reasons += (reasons.empty() ? "" : "; ") + std::string(failure.what());
            return false;
        }
    }

    std::unique_ptr<GlContext> context;
};

}  // namespace
}  // namespace Tarnex::Ogl

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    description.ogl = new Tarnex::Ogl::OglModule();
    return true;
}

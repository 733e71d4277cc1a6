#include "modules/OglManager/GlContext.h"

#include <GL/gl.h>
#include <fmt/format.h>

#include "core/support/Exception.h"

namespace Tarnex::Ogl {
namespace {

void Require(bool success, const char* step) {
    if (!success) {
        throw Exception(fmt::format("{} failed, EGL error 0x{:04x}", step, eglGetError()));
    }
}

}  // namespace

GlContext::GlContext(EGLDisplay display) : display(display) {
    if (display == EGL_NO_DISPLAY) {
        throw Exception("there is no such display");
    }
    Require(eglInitialize(display, nullptr, nullptr) == EGL_TRUE, "eglInitialize");
    try {
        Open();
        MakeCurrent();
    } catch (...) {
        Close();
        throw;
    }
}

GlContext::~GlContext() {
    Close();
}

void GlContext::Open() {
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                             EGL_NONE};
    const EGLint onePixel[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    EGLint count = 0;
    Require(eglBindAPI(EGL_OPENGL_API) == EGL_TRUE, "eglBindAPI");
    Require(eglChooseConfig(display, wanted, &config, 1, &count) == EGL_TRUE, "eglChooseConfig");
    if (count == 0) {
        throw Exception("eglChooseConfig found no configuration for OpenGL without a window");
    }
    surface = eglCreatePbufferSurface(display, config, onePixel);
    Require(surface != EGL_NO_SURFACE, "eglCreatePbufferSurface");
    context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    Require(context != EGL_NO_CONTEXT, "eglCreateContext");
}

void GlContext::MakeCurrent() {
    Require(eglMakeCurrent(display, surface, surface, context) == EGL_TRUE, "eglMakeCurrent");
    auto* const getString =
        reinterpret_cast<decltype(glGetString)*>(eglGetProcAddress("glGetString"));
    Require(getString != nullptr, "eglGetProcAddress");
    if (getString(GL_VERSION) == nullptr) {
        throw Exception("the context has no OpenGL version");
    }
}

void GlContext::Close() {
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context != EGL_NO_CONTEXT) {
        eglDestroyContext(display, context);
    }
    if (surface != EGL_NO_SURFACE) {
        eglDestroySurface(display, surface);
    }
    eglTerminate(display);
    eglReleaseThread();
}

}  // namespace Tarnex::Ogl

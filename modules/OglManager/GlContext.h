#pragma once

#include <EGL/egl.h>

namespace Tarnex::Ogl {

/// An OpenGL context without a window, current on the thread that created it. The same thread has
/// to destroy it.
class GlContext {
public:
    /// Initialises the display. Throws `Tarnex::Exception` with the failed step and its error, also
    /// if the context is created but doesn't answer.
    explicit GlContext(EGLDisplay display);
    ~GlContext();

    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

private:
    void Open();
    void MakeCurrent();
    void Close();

    EGLDisplay display;
    EGLConfig config = nullptr;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;
};

}  // namespace Tarnex::Ogl

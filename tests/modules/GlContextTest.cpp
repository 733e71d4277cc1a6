#include <gtest/gtest.h>

#include "core/support/Exception.h"
#include "modules/OglManager/GlContext.h"

// An EGL without a configuration for OpenGL, as drivers with only OpenGL ES have it.
extern "C" EGLBoolean eglInitialize(EGLDisplay, EGLint*, EGLint*) {
    return EGL_TRUE;
}
extern "C" EGLBoolean eglBindAPI(EGLenum) {
    return EGL_TRUE;
}
extern "C" EGLBoolean eglChooseConfig(EGLDisplay, const EGLint*, EGLConfig*, EGLint,
                                      EGLint* count) {
    *count = 0;
    return EGL_TRUE;
}

namespace Tarnex::Ogl {
namespace {

TEST(GlContext, SaysThatNoConfigurationMatches) {
    int display = 0;
    try {
        const GlContext context(&display);
        ADD_FAILURE();
    } catch (const Exception& failure) {
        EXPECT_STREQ(failure.what(),
                     "eglChooseConfig found no configuration for OpenGL without a window");
    }
}

}  // namespace
}  // namespace Tarnex::Ogl

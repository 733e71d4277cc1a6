#pragma once

#include "core/Export.h"

namespace Tarnex::Ogl {

/// Starts and stops OpenGL on this machine, through the module of the same name.
class TARNEX_API OglManager {
public:
    static OglManager& GetInstance();

    /// Throws `Tarnex::Exception` with the reason if there is no usable OpenGL.
    virtual void Initialize() = 0;
    virtual void Deinitialize() = 0;

protected:
    virtual ~OglManager() = default;
};

}  // namespace Tarnex::Ogl

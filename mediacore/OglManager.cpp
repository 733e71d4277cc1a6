#include "core/media/OglManager.h"

#include <utility>

#include "core/media/PluginFactories.h"
#include "mediacore/ModuleRegistry.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Ogl {
namespace {

class ModuleOglManager : public OglManager {
public:
    void Initialize() override {
        Module::IOglModule* const ogl = Core::LoadModule(Core::OGL_MANAGER).ogl;
        if (ogl == nullptr) {
            Core::SharedLibrary::FindFile(Core::OGL_MANAGER).Refuse("offers no OpenGL");
        }
        Deinitialize();
        ogl->Start();
        started = ogl;
    }

    void Deinitialize() override {
        if (started != nullptr) {
            std::exchange(started, nullptr)->Stop();
        }
    }

private:
    Module::IOglModule* started = nullptr;
};

}  // namespace

OglManager& OglManager::GetInstance() {
    static OglManager& instance = *new ModuleOglManager();
    return instance;
}

}  // namespace Tarnex::Ogl

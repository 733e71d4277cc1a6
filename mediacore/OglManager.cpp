#include "core/media/OglManager.h"

#include <utility>

#include "mediacore/ModuleRegistry.h"
#include "mediacore/SharedLibrary.h"

namespace Tarnex::Ogl {
namespace {

constexpr char MODULE[] = "OglManager";

class ModuleOglManager : public OglManager {
public:
    void Initialize() override {
        Module::IOglModule* const ogl = Core::LoadModule(MODULE).ogl;
        if (ogl == nullptr) {
            Core::SharedLibrary::FindFile(MODULE).Refuse("offers no OpenGL");
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

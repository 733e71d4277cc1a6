#include "core/media/OglManager.h"

#include <string>
#include <utility>

#include "core/media/Factories.h"
#include "mediacore/ModuleRegistry.h"

namespace Tarnex::Ogl {
namespace {

constexpr char MODULE[] = "OglManager";

class ModuleOglManager : public OglManager {
public:
    void Initialize() override {
        Module::IOglModule* const ogl = Core::LoadModule(MODULE).ogl;
        if (ogl == nullptr) {
            throw Proc::CodecFactoryErrorException(std::string("Plugin ") + MODULE +
                                                   " offers no OpenGL");
        }
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

#include "mediacore/SharedLibrary.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "core/media/AppLocations.h"
#include "core/media/Factories.h"

namespace Tarnex::Core {

void ModuleFile::Refuse(const std::string& reason) const {
    throw Proc::CodecFactoryErrorException(
        fmt::format("Plugin {}, module {}: {}", plugin, path, reason));
}

ModuleFile SharedLibrary::FindFile(const std::string& plugin) {
    return {plugin, FindModuleFile(plugin).utf8string()};
}

SharedLibrary::SharedLibrary(const ModuleFile& file)
    : file(file), handle(dlopen(file.path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
        const char* words = dlerror();
        Refuse(fmt::format("can't be loaded: {}", words == nullptr ? "no reason given" : words));
    }
}

void* SharedLibrary::GetAddress(const char* name) const {
    return dlsym(handle, name);
}

}  // namespace Tarnex::Core

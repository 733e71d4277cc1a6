#include "mediacore/SharedLibrary.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <boost/filesystem.hpp>

#include "core/media/AppLocations.h"
#include "core/media/Factories.h"

namespace Tarnex::Core {

void ModuleFile::Refuse(const std::string& reason) const {
    throw Proc::CodecFactoryErrorException(
        fmt::format("Plugin {}, module {}: {}", plugin, path, reason));
}

ModuleFile SharedLibrary::FindFile(const std::string& plugin) {
    const std::string file =
        (AppLocations::GetLocations().GetApplicationDirectory() / GetPlatformModuleName(plugin))
            .utf8string();
    boost::system::error_code error;
    // With an explicit base, because a module may have removed the working directory.
    const auto resolved = boost::filesystem::canonical(file, "/", error);
    if (error) {
        ModuleFile{plugin, file}.Refuse(error.message());
    }
    return {plugin, resolved.string()};
}

SharedLibrary::SharedLibrary(const ModuleFile& file)
    : file(file), handle(dlopen(file.path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
        const char* words = dlerror();
        Refuse(fmt::format("can't be loaded: {}", words == nullptr ? "no reason given" : words));
    }
}

void* SharedLibrary::Symbol(const char* name) const {
    return dlsym(handle, name);
}

}  // namespace Tarnex::Core

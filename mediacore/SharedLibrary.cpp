#include "mediacore/SharedLibrary.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>

#include "core/media/AppLocations.h"
#include "core/media/Factories.h"

namespace Tarnex::Core {
namespace {

[[noreturn]] void RefuseFile(const std::string& file, const std::string& reason) {
    throw Proc::CodecFactoryErrorException(fmt::format("Module {}: {}", file, reason));
}

}  // namespace

std::string SharedLibrary::FindFile(const std::string& plugin) {
    const std::string file =
        (AppLocations::GetLocations().GetApplicationDirectory() / GetPlatformModuleName(plugin))
            .utf8string();
    std::error_code error;
    const auto resolved = std::filesystem::canonical(file, error);
    if (error) {
        RefuseFile(file, error.message());
    }
    return resolved.string();
}

SharedLibrary::SharedLibrary(const std::string& file)
    : file(file), handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
        const char* words = dlerror();
        Refuse(fmt::format("can't be loaded: {}", words == nullptr ? "no reason given" : words));
    }
}

void SharedLibrary::Refuse(const std::string& reason) const {
    RefuseFile(file, reason);
}

void* SharedLibrary::Symbol(const char* name) const {
    return dlsym(handle, name);
}

}  // namespace Tarnex::Core

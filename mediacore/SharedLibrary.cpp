#include "mediacore/SharedLibrary.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <boost/filesystem.hpp>

#include "core/media/AppLocations.h"
#include "core/media/Factories.h"

namespace Tarnex::Core {
namespace {

namespace fs = boost::filesystem;

constexpr int MAX_LINKS = 40;  // as many as Linux follows in one path

/// Only the links of the file itself: to look at each folder above it as well would take longer
/// than all else that is done for a module beside its load.
std::string FollowLinks(fs::path file) {
    boost::system::error_code noLink;
    for (int i = 0; i < MAX_LINKS; ++i) {
        const fs::path target = fs::read_symlink(file, noLink);
        if (noLink) {
            break;
        }
        file = fs::absolute(target, file.parent_path());
    }
    return file.string();
}

}  // namespace

void ModuleFile::Refuse(const std::string& reason) const {
    throw Proc::CodecFactoryErrorException(
        fmt::format("Plugin {}, module {}: {}", plugin, path, reason));
}

ModuleFile SharedLibrary::FindFile(const std::string& plugin) {
    const ioPath directory = AppLocations::GetLocations().GetApplicationDirectory();
    return {plugin, FollowLinks((directory / GetPlatformModuleName(plugin)).utf8string())};
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

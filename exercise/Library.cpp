#include "exercise/Library.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>

namespace Tarnex::Exercise {
namespace {

/// The path itself if it can't be resolved: the dynamic loader then says why.
std::string Resolve(const std::string& path) {
    std::error_code error;
    const auto resolved = std::filesystem::canonical(path, error);
    return error ? path : resolved.string();
}

}  // namespace

Library::Library(const std::string& path)
    : path(Resolve(path)), handle(dlopen(this->path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
        const char* words = dlerror();
        throw Failure(std::string("can't be loaded: ") +
                      (words == nullptr ? "no reason given" : words));
    }
}

void* Library::FindSymbol(const char* name) const {
    return dlsym(handle, name);
}

}  // namespace Tarnex::Exercise

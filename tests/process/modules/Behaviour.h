#pragma once

#include <dlfcn.h>

#include <string>

/// The path of the module that this is compiled into.
inline std::string FilePath() {
    static const char inThisModule = 0;
    Dl_info info{};
    dladdr(&inThisModule, &info);
    return info.dli_fname;
}

/// The name of its file.
inline std::string FileName() {
    const std::string path = FilePath();
    return path.substr(path.rfind('/') + 1);
}

/// Its folder, with a slash at the end.
inline std::string Folder() {
    const std::string path = FilePath();
    return path.substr(0, path.rfind('/') + 1);
}

/// What the module does, as its file name says: the part before the first point. Copies such as
/// "segfault.3.so" do the same.
inline std::string Behaviour() {
    const std::string name = FileName();
    return name.substr(0, name.find('.'));
}

#pragma once

#include <string>

namespace Tarnex::Core {

/// A plugin and the file of its module.
struct ModuleFile {
    std::string plugin;
    std::string path;  ///< links resolved, so that a module finds what lies beside it

    /// Throws `Proc::CodecFactoryErrorException` with plugin, file and reason.
    [[noreturn]] void Refuse(const std::string& reason) const;
};

/// A plugin's module file, opened with all its symbols resolved. It stays in the process until that
/// ends: nothing closes it, and copies are the same library.
class SharedLibrary {
public:
    /// Throws `Proc::CodecFactoryErrorException` if there is none.
    static ModuleFile FindFile(const std::string& plugin);

    /// Throws `Proc::CodecFactoryErrorException` with the dynamic loader's words.
    explicit SharedLibrary(const ModuleFile& file);

    /// The function of that name, or null.
    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(Symbol(name));
    }

    /// The function of that name; refuses the module if it has none.
    template <class Function>
    Function* Get(const char* name) const {
        Function* function = Find<Function>(name);
        if (function == nullptr) {
            Refuse(std::string("no entry point ") + name);
        }
        return function;
    }

    /// See `ModuleFile`.
    [[noreturn]] void Refuse(const std::string& reason) const { file.Refuse(reason); }

private:
    void* Symbol(const char* name) const;

    ModuleFile file;
    void* handle;
};

}  // namespace Tarnex::Core

#pragma once

#include <string>

namespace Tarnex::Core {

/// A plugin's module file, opened with all its symbols resolved. It stays in the process until that
/// ends: nothing closes it, and copies are the same library.
class SharedLibrary {
public:
    /// The module file of a plugin, links resolved, so that a module finds what lies beside it.
    /// Throws `Proc::CodecFactoryErrorException` if there is none.
    static std::string FindFile(const std::string& plugin);

    /// Throws `Proc::CodecFactoryErrorException` with the dynamic loader's words.
    explicit SharedLibrary(const std::string& file);

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

    /// Throws `Proc::CodecFactoryErrorException` with the file and the reason.
    [[noreturn]] void Refuse(const std::string& reason) const;

private:
    void* Symbol(const char* name) const;

    std::string file;
    void* handle;
};

}  // namespace Tarnex::Core

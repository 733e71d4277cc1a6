#pragma once

#include <string>

namespace Tarnex::Core {

/// A plugin and the file of its module.
struct ModuleFile {
    std::string plugin;
    std::string path;  // see `FindModuleFile`

    /// Throws `Proc::CodecFactoryErrorException` with the plugin, the file and the reason.
    [[noreturn]] void Refuse(const std::string& reason) const;
};

/// A plugin's module, opened with all symbols resolved. Never closed: modules stay loaded until the
/// process ends. Copies refer to the same library.
class SharedLibrary {
public:
    /// Whether there is such a file shows when it is opened.
    static ModuleFile FindFile(const std::string& plugin);

    /// Throws `Proc::CodecFactoryErrorException` with the dynamic loader's message.
    explicit SharedLibrary(const ModuleFile& file);

    /// The function or object called `name`, or null.
    template <class Symbol>
    Symbol* Find(const char* name) const {
        return reinterpret_cast<Symbol*>(GetAddress(name));
    }

    /// The function or object called `name`. Refuses the module if it has none.
    template <class Symbol>
    Symbol* Get(const char* name) const {
        Symbol* symbol = Find<Symbol>(name);
        if (symbol == nullptr) {
            Refuse(std::string("has no entry point ") + name);
        }
        return symbol;
    }

    /// The file that was opened.
    const std::string& GetPath() const { return file.path; }

    /// The dynamic loader's handle.
    void* GetHandle() const { return handle; }

    /// See `ModuleFile`.
    [[noreturn]] void Refuse(const std::string& reason) const { file.Refuse(reason); }

private:
    void* GetAddress(const char* name) const;

    ModuleFile file;
    void* handle;
};

}  // namespace Tarnex::Core

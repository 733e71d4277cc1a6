#pragma once

#include <string>

#include "exercise/Records.h"

namespace Tarnex::Exercise {

/// A module, opened as Assayer opens it: with all symbols resolved, by its real path, and never
/// closed.
class Library {
public:
    /// Throws `Failure` with the dynamic loader's message.
    explicit Library(const std::string& path);

    /// The function or object called `name`, or null.
    template <class Symbol>
    Symbol* Find(const char* name) const {
        return reinterpret_cast<Symbol*>(FindSymbol(name));
    }

    template <class Symbol>
    Symbol* Get(const char* name) const {
        Symbol* symbol = Find<Symbol>(name);
        if (symbol == nullptr) {
            throw Failure(std::string("has no entry point ") + name);
        }
        return symbol;
    }

    void* GetHandle() const { return handle; }
    const std::string& GetPath() const { return path; }

private:
    void* FindSymbol(const char* name) const;

    std::string path;
    void* handle;
};

}  // namespace Tarnex::Exercise

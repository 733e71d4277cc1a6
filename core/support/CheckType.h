#pragma once

#include <string>

namespace Tarnex::Core::Utils {

/// Selects the phases of a run.
class CheckType {
public:
    enum Type { Plugins = 1, Codecs = 2, All = 3 };

    /// Equals none of the three.
    CheckType() = default;
    CheckType(Type type) : value(type) {}  // NOLINT(google-explicit-constructor)

    /// Parses "plugins", "codecs" or "all". Throws `Tarnex::Exception` that names any other text.
    explicit CheckType(const std::string& text);

    bool operator==(const CheckType&) const = default;

private:
    int value = 0;
};

}  // namespace Tarnex::Core::Utils

#pragma once

#include <string>

namespace Tarnex::Core::Utils {

/// Which phases a run has.
class CheckType {
public:
    enum Type { Plugins = 1, Codecs = 2, All = 3 };

    /// Equal to none of the three.
    CheckType() = default;
    CheckType(Type type) : value(type) {}  // NOLINT(google-explicit-constructor)

    /// From "plugins", "codecs" or "all"; any other text is a `Tarnex::Exception` that names it.
    explicit CheckType(const std::string& text);

    bool operator==(const CheckType&) const = default;

private:
    int value = 0;
};

}  // namespace Tarnex::Core::Utils

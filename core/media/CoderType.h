#pragma once

#include <string>

namespace Tarnex::Core {

/// Decoder or encoder; neither after default construction.
class CoderType {
public:
    enum Type { None = 0, Decoder = 1, Encoder = 2 };

    CoderType() = default;
    CoderType(Type type) : type(type) {}    // NOLINT(google-explicit-constructor)
    operator Type() const { return type; }  // NOLINT(google-explicit-constructor)

    bool operator==(const CoderType&) const = default;
    bool operator==(Type other) const { return type == other; }

private:
    Type type = None;
};

/// "Decoder", "Encoder", or an empty string for neither.
inline std::string ToString(CoderType type) {
    switch (static_cast<CoderType::Type>(type)) {
        case CoderType::Decoder:
            return "Decoder";
        case CoderType::Encoder:
            return "Encoder";
        case CoderType::None:
            break;
    }
    return {};
}

}  // namespace Tarnex::Core

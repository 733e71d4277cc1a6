#pragma once

#include <string>

#include "core/media/CoderType.h"

namespace Tarnex::Core::Utils {

/// Names one codec test: coder type, implementation, codec id.
class CodecConfig {
public:
    CodecConfig() = default;
    CodecConfig(CoderType type, std::string implementation, std::string codecId);

    /// From a text of `GetID`. An empty text gives an empty config, whose coder type is neither
    /// decoder nor encoder; a text of another form is a `Tarnex::Exception` that names it.
    explicit CodecConfig(const std::string& id);

    CoderType GetCoderType() const { return type; }
    const std::string& GetImplementation() const { return implementation; }
    const std::string& GetCodecId() const { return codecId; }

    /// Coder type, implementation and codec id joined by points:
    /// "Decoder.FFMPEG_IMPL.CODEC_ID_AAC". The first two points separate; a codec id may hold more.
    /// Empty for an empty config.
    std::string GetID() const;
    bool IsEmpty() const;

private:
    CoderType type;
    std::string implementation;
    std::string codecId;
};

}  // namespace Tarnex::Core::Utils

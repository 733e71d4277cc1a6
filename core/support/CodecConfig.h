#pragma once

#include <string>

#include "core/media/CoderType.h"

namespace Tarnex::Core::Utils {

/// Whether tests can be named by this implementation: some UTF-8 without point, comma, colon, blank
/// or control character.
bool IsImplementationName(const std::string& text);

/// Whether tests can be named by this codec id: some UTF-8 without comma or control character, and
/// without a blank at its beginning or end.
bool IsCodecId(const std::string& text);

/// Identifies one codec test: coder type, implementation, codec id.
class CodecConfig {
public:
    CodecConfig() = default;
    CodecConfig(CoderType type, std::string implementation, std::string codecId);

    /// Parses a text that `GetID` returned. An empty text gives an empty config, whose coder type
    /// is neither decoder nor encoder. Throws `Tarnex::Exception` that names a malformed text.
    explicit CodecConfig(const std::string& id);

    CoderType GetCoderType() const { return type; }
    const std::string& GetImplementation() const { return implementation; }
    const std::string& GetCodecId() const { return codecId; }

    /// Coder type, implementation and codec id joined by points, such as
    /// "Decoder.FFMPEG_IMPL.CODEC_ID_AAC". Only the codec id may contain points itself.
    /// Empty for an empty config.
    std::string GetID() const;
    bool IsEmpty() const;

private:
    CoderType type;
    std::string implementation;
    std::string codecId;
};

}  // namespace Tarnex::Core::Utils

#pragma once

#include <string>

namespace Tarnex::Bench {

/// Encodes one frame of the synthetic material by libavcodec alone, with the settings that the
/// codec module uses. Throws `std::runtime_error` if no packet comes.
void EncodeBare(const std::string& codecId);

/// libavcodec's name of the encoder.
std::string NameOfEncoder(const std::string& codecId);

}  // namespace Tarnex::Bench

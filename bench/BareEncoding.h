#pragma once

#include <string>

namespace Tarnex::Bench {

/// Encodes one frame of the synthetic material with libavcodec alone and the codec module's
/// settings. Throws `std::runtime_error` if it returns no packet.
void EncodeBare(const std::string& codecId);

/// The name of the codec's encoder in libavcodec.
std::string NameOfEncoder(const std::string& codecId);

}  // namespace Tarnex::Bench

#pragma once

#include <cstdint>
#include <vector>

namespace Tarnex::MediaFoundation {

using Bytes = std::vector<std::uint8_t>;

/// Splits a Vorbis or Theora stream's extradata into its three header packets. Reads both forms in
/// use. Throws `Tarnex::Exception` if the extradata is truncated.
std::vector<Bytes> SplitXiphHeaders(const Bytes& extraData);

/// Joins header packets to extradata: each packet after its length in 16 bits.
Bytes JoinXiphHeaders(const std::vector<Bytes>& headers);

}  // namespace Tarnex::MediaFoundation

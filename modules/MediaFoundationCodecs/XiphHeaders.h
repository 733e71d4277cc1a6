#pragma once

#include <cstdint>
#include <vector>

namespace Tarnex::MediaFoundation {

using Bytes = std::vector<std::uint8_t>;

/// The three header packets of a Vorbis or Theora stream, out of the extradata that holds them in
/// either of the forms in use. Throws `Tarnex::Exception` if it is cut off.
std::vector<Bytes> SplitXiphHeaders(const Bytes& extraData);

/// The extradata of such packets: each behind its length in 16 bits.
Bytes JoinXiphHeaders(const std::vector<Bytes>& headers);

}  // namespace Tarnex::MediaFoundation

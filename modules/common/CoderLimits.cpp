#include "modules/common/CoderLimits.h"

#include <fmt/format.h>

#include <algorithm>

namespace Tarnex::Modules {
namespace {

/// Outside these limits some encoders loop or abort.
constexpr int MIN_SIDE = 16;
constexpr int MAX_SIDE = 16384;

constexpr int MAX_RATE = 768000;

bool IsEncodable(const Proc::FrameInfo& info, const Proc::FrameRate& rate) {
    return std::min(info.width, info.height) >= MIN_SIDE &&
           std::max(info.width, info.height) <= MAX_SIDE && info.aspectX > 0 && info.aspectY > 0 &&
           rate.numerator > 0 && rate.denominator > 0;
}

bool IsEncodable(const Proc::SampleInfo& info) {
    return info.rate > 0 && info.rate <= MAX_RATE &&
           (info.layout == Proc::ChannelLayout::Mono || info.layout == Proc::ChannelLayout::Stereo);
}

}  // namespace

std::string FindFault(const Proc::FrameInfo& info, const Proc::FrameRate& rate) {
    return IsEncodable(info, rate)
               ? ""
               : fmt::format("can't encode {}x{} pixels of aspect {}:{} at {}/{} frames a second",
                             info.width, info.height, info.aspectX, info.aspectY, rate.numerator,
                             rate.denominator);
}

std::string FindFault(const Proc::SampleInfo& info) {
    return IsEncodable(info) ? ""
                             : fmt::format("can't encode {} channels at {} Hz",
                                           static_cast<int>(info.layout), info.rate);
}

}  // namespace Tarnex::Modules

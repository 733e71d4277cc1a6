#include "parent/Hardware.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/media/CodecFactory.h"

namespace Tarnex::Parent {
namespace {

struct Maker {
    std::string_view implementation;
    std::string_view name;
    std::string_view vendor;  ///< as the PCI-SIG assigned it
    /// What libav says once the driver has answered that the card can't.
    std::array<std::string_view, 5> refusals;
};

constexpr std::array<Maker, 1> MAKERS{
    {{Proc::ImplNames::NVDEC,
      "NVIDIA",
      "10DE:",
      {"Hardware is lacking required capabilities", "Codec not supported",
       "No capable devices found", "does not support NVENC",
       "Provided device doesn't support required NVENC features"}}}};

}  // namespace

std::optional<std::string> WhyUnavailable(const std::string& implementation,
                                          const std::string& text,
                                          const std::vector<std::string>& cards) {
    const auto maker = std::ranges::find(MAKERS, implementation, &Maker::implementation);
    if (maker == MAKERS.end()) {
        return std::nullopt;
    }
    const auto isTheirs = [&](const std::string& card) {
        return card.find(" " + std::string(maker->vendor)) != card.npos;
    };
    if (std::ranges::none_of(cards, isTheirs)) {
        return "no " + std::string(maker->name) + " card in this machine";
    }
    const auto refusal = std::ranges::find_if(
        maker->refusals, [&](std::string_view words) { return text.find(words) != text.npos; });
    return refusal == maker->refusals.end()
               ? std::nullopt
               : std::optional("the card can't: " + std::string(*refusal));
}

}  // namespace Tarnex::Parent

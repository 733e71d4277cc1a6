#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Tarnex::Parent {

/// Why a codec test that failed can't work on this machine, with nobody to blame: there is no card
/// of the implementation's maker, or the card lacks the function, as its driver says in `text`.
/// None if the failure is one. `cards` as `Platform::ListGraphicsCards` gives them.
std::optional<std::string> WhyUnavailable(const std::string& implementation,
                                          const std::string& text,
                                          const std::vector<std::string>& cards);

}  // namespace Tarnex::Parent

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "report/Facts.h"
#include "report/Known.h"

namespace Tarnex::Reports {

/// A module, and what is known of it and of all that is in it.
struct TrustedModule {
    std::string name;
    std::string interface;
    std::string path;     ///< as a host opens it: for LV2 and VST3 the bundle
    std::string file;     ///< the module's own
    std::string verdict;  ///< empty if none holds
    std::string reason;   ///< why it isn't trusted
    std::vector<std::pair<std::string, std::string>> items;  ///< id and verdict of what is in it
};

/// What a host may load.
struct Trust {
    std::vector<TrustedModule> trusted;  ///< good, with all that is in them at each depth
    std::vector<TrustedModule> bad;
    std::vector<TrustedModule> unknown;  ///< changed since, or never checked
};

/// `plugins` is what the installation lists now; those without a file are left out.
Trust FindTrust(const Known& known, const Facts& facts, const std::vector<Parent::Item>& plugins);

Json ToJson(const Trust& trust);

}  // namespace Tarnex::Reports

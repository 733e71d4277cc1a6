#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "report/Report.h"

namespace Tarnex::Reports {

/// Which codecs the media core offers, as long as its libraries and its modules are the same.
struct Offer {
    std::size_t libraries = 0;      ///< a place in the ground's table
    std::set<std::string> modules;  ///< of codecs, muxers and parsers, with which it was started

    bool operator==(const Offer&) const = default;
};

/// The newest verdict of every item of an installation, and what it rests on. An item is known by
/// its kind and name, an exercise also by its depth.
struct Known {
    std::vector<Parent::Item> items;
    GroundTable ground;
    std::map<std::string, std::vector<std::string>> listed;  ///< names of each module's exercises
    std::optional<Offer> offer;
};

/// By which an item is known.
std::string GetKey(const Parent::Item& item);

/// The place of each item.
std::unordered_map<std::string, std::size_t> IndexItems(const std::vector<Parent::Item>& items);

/// As text, without what is empty or what the ground holds too: programs read this at each start.
std::string RenderKnown(const Known& known);

/// Sets the file of each item that has none from its ground.
void CompleteFiles(Known& known);

/// Takes that form and a report's. Throws `Tarnex::Exception` with the reason.
Known ParseKnown(const std::string& text);

/// The same for a file, which the exception names; "-" is standard input.
Known ReadKnown(const boost::filesystem::path& path);

/// What a check had before it, besides its findings.
struct Scope {
    std::set<std::string> plugins;  ///< all that are listed; others are forgotten
    bool exercises = false;         ///< modules that are good were asked for their exercises
    std::optional<std::set<std::string>> offered;  ///< `Offer::modules` if all codecs were listed
};

/// Adds what a check found: the later verdict wins, an item that wasn't reached changes nothing,
/// and a new list of a module's exercises replaces the old one.
Known Merge(const Known& known, const Report& report, const Scope& scope);

}  // namespace Tarnex::Reports

#include "report/Scopes.h"

#include <algorithm>
#include <array>

#include "report/Compare.h"

namespace Tarnex::Reports {
namespace {

using Parent::Item;
using Parent::ItemKind;

constexpr std::array SCOPE_OPTIONS{"check",  "plugins", "implementations",
                                   "codecs", "skip",    "depth"};

Json GetOption(const Report& report, const char* key) {
    return report.options.is_object() ? report.options.value(key, Json()) : Json();
}

bool Names(const Report& report, const char* key, const std::string& name) {
    const Json names = GetOption(report, key);
    return names.is_array() && std::ranges::find(names, Json(name)) != names.end();
}

/// A list that is empty or not there leaves the choice open.
bool IsChosen(const Report& report, const char* key, const std::string& name) {
    const Json names = GetOption(report, key);
    return !names.is_array() || names.empty() || Names(report, key, name);
}

bool IsAboutModule(const Report& report, const std::string& plugin) {
    return GetOption(report, "check") != "codecs" && IsChosen(report, "plugins", plugin) &&
           !Names(report, "skip", plugin);
}

/// What is in a module counts only as long as the module is good; else its own line says it all.
bool IsAboutExercise(const Report& report, const Item& item) {
    Item module;
    module.name = item.plugin;
    const Item* found = FindItem(report, module);
    const Json depth = GetOption(report, "depth");
    return IsAboutModule(report, item.plugin) && (!depth.is_string() || depth == item.depth) &&
           (found == nullptr || !IsBad(found->verdict));
}

}  // namespace

bool IsAbout(const Report& report, const Item& item) {
    switch (item.kind) {
        case ItemKind::Plugin:
            return IsAboutModule(report, item.name) || FindItem(report, item) != nullptr;
        case ItemKind::Exercise:
            return IsAboutExercise(report, item);
        case ItemKind::Codec:
            break;
    }
    return GetOption(report, "check") != "plugins" &&
           IsChosen(report, "implementations", item.implementation) &&
           IsChosen(report, "codecs", item.codec) && !Names(report, "skip", item.name);
}

bool HaveSameScope(const Report& one, const Report& other) {
    return one.installation == other.installation &&
           std::ranges::all_of(SCOPE_OPTIONS, [&](const char* key) {
               return GetOption(one, key) == GetOption(other, key);
           });
}

}  // namespace Tarnex::Reports

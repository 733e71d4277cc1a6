#pragma once

#include <optional>
#include <string>
#include <vector>

#include "parent/Item.h"

namespace Tarnex::Reports {

/// A key of an item's JSON object and where its value lies.
template <class Value>
struct ItemKey {
    const char* name;
    Value Parent::Item::*member;
};

inline constexpr ItemKey<std::string> TEXT_KEYS[] = {
    {"name", &Parent::Item::name},
    {"factory", &Parent::Item::factory},
    {"interface", &Parent::Item::interface},
    {"plugin", &Parent::Item::plugin},
    {"id", &Parent::Item::id},
    {"title", &Parent::Item::title},
    {"depth", &Parent::Item::depth},
    {"coder", &Parent::Item::coder},
    {"implementation", &Parent::Item::implementation},
    {"codec", &Parent::Item::codec},
    {"input", &Parent::Item::input},
    {"reason", &Parent::Item::reason},
    {"text", &Parent::Item::text},
    {"phase", &Parent::Item::phase},
    {"checked", &Parent::Item::checked},
    {"package", &Parent::Item::package}};
inline constexpr ItemKey<std::vector<std::string>> LIST_KEYS[] = {
    {"remarks", &Parent::Item::remarks},
    {"company", &Parent::Item::company},
    {"spoils", &Parent::Item::spoils},
    {"repro", &Parent::Item::repro}};
inline constexpr ItemKey<bool> FLAG_KEYS[] = {{"carried", &Parent::Item::carried},
                                              {"accepted", &Parent::Item::accepted}};
inline constexpr ItemKey<std::optional<Parent::FileFacts>> FILE_KEYS[] = {
    {"file", &Parent::Item::file}};
inline constexpr ItemKey<std::optional<double>> NUMBER_KEYS[] = {
    {"seconds", &Parent::Item::seconds}};

/// Calls `visit` with each table of keys but the kind and the verdict, which every item has.
template <class Visit>
void VisitItemKeys(const Visit& visit) {
    visit(TEXT_KEYS);
    visit(LIST_KEYS);
    visit(FLAG_KEYS);
    visit(FILE_KEYS);
    visit(NUMBER_KEYS);
}

/// By which reports call the kinds, in the order of the enumeration.
inline constexpr std::string_view KIND_NAMES[] = {"plugin", "exercise", "codec"};

}  // namespace Tarnex::Reports

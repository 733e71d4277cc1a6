#include <fmt/format.h>

#include <array>

#include "exercise/Chance.h"
#include "exercise/Records.h"
#include "exercise/frei0r/Effect.h"

namespace Tarnex::Exercise {
namespace {

constexpr PictureSize USUAL{320, 240};
constexpr int PICTURES = 4;
constexpr int OFTEN = 10;

/// Multiples of 8 up to 2,048, as frei0r.h demands.
constexpr std::array<PictureSize, 9> SIZES{{{8, 8},
                                            {8, 2048},
                                            {2048, 8},
                                            {16, 8},
                                            {40, 24},
                                            {184, 328},
                                            {720, 576},
                                            {1920, 1080},
                                            {2048, 2048}}};

constexpr std::array GUARDS{Guard::After, Guard::Before};

std::uint64_t Show(const Frei0rEntry& entry, PictureSize size, Guard guard, int pictures,
                   const ValueSet* set = nullptr) {
    Frei0rEffect effect(entry, size, guard);
    if (set != nullptr) {
        effect.SetValues(set->values);
    }
    const std::string context = set != nullptr ? set->name : ToString(guard);
    for (int i = 0; i < pictures; ++i) {
        effect.Update(context);
    }
    effect.Destruct();
    return effect.GetSum();
}

std::vector<Parameter> ReadParameters(const Frei0rEntry& entry) {
    Frei0rEffect effect(entry, USUAL, Guard::None);
    auto parameters = effect.GetParameters();
    effect.Destruct();
    return parameters;
}

/// The values change from picture to picture, as in an editor that is automated.
void SweepValues(const Frei0rEntry& entry, const std::vector<ValueSet>& sets, PictureSize size,
                 Guard guard) {
    Frei0rEffect effect(entry, size, guard);
    for (const ValueSet& set : sets) {
        effect.SetValues(set.values);
        effect.Update(fmt::format("{}, {}", set.name, ToString(guard)));
    }
    effect.Destruct();
}

std::uint64_t ShowInTurn(const Frei0rEntry& entry, const std::vector<ValueSet>& sets) {
    Frei0rEffect first(entry, USUAL, Guard::None);
    Frei0rEffect second(entry, {184, 328}, Guard::None);
    if (!sets.empty()) {
        second.SetValues(sets.back().values);
    }
    for (int i = 0; i < PICTURES; ++i) {
        first.Update("first of two instances");
        second.Update("second of two instances");
    }
    second.Destruct();
    first.Destruct();
    return first.GetSum();
}

/// Counts only for an effect whose pictures are the same each time by themselves.
void CompareInstances(const Frei0rEntry& entry, const std::vector<ValueSet>& sets) {
    const auto alone = [&] { return Show(entry, USUAL, Guard::None, PICTURES); };
    const std::uint64_t sum = alone();
    if (ShowInTurn(entry, sets) == sum) {
        return;
    }
    ChangeChance();
    if (alone() != sum) {
        Remark("its pictures are random");
    } else if (ShowInTurn(entry, sets) != sum) {
        throw Failure(
            "two instances disturb each other: the pictures of one differ while the "
            "other works in between");
    }
}

}  // namespace

void ExerciseFrei0r(const Frei0rEntry& entry) {
    Show(entry, USUAL, Guard::None, PICTURES);
}

void StressFrei0r(const Frei0rEntry& entry, const std::string& id) {
    const auto sets = GetExtremes(ReadParameters(entry), Random(id));
    for (const Guard guard : GUARDS) {
        SweepValues(entry, sets, {64, 48}, guard);
        for (const PictureSize size : SIZES) {
            Show(entry, size, guard, 2);
        }
    }
    for (const ValueSet& set : sets) {
        Show(entry, {40, 24}, Guard::After, 2, &set);
    }
    CompareInstances(entry, sets);
    for (int i = 0; i < OFTEN; ++i) {
        Show(entry, USUAL, Guard::None, 1);
    }
}

}  // namespace Tarnex::Exercise

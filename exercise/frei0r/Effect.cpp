#include "exercise/frei0r/Effect.h"

#include <fmt/format.h>

#include <algorithm>

#include "exercise/Records.h"
#include "exercise/Sounds.h"

namespace Tarnex::Exercise {
namespace {

constexpr std::size_t PIXEL = 4;                    // bytes
constexpr double SECONDS_PER_PICTURE = 1.0 / 25.0;  // of the times that effects are told

bool IsMixer(const Frei0rEntry& entry) {
    return entry.info.plugin_type >= F0R_PLUGIN_TYPE_MIXER2;
}

std::size_t GetBytes(PictureSize size) {
    return PIXEL * size.width * size.height;
}

/// How many numbers from 0 to 1 make up a value of the type.
std::size_t CountParts(int type) {
    switch (type) {
        case F0R_PARAM_BOOL:
        case F0R_PARAM_DOUBLE:
            return 1;
        case F0R_PARAM_POSITION:
            return 2;
        case F0R_PARAM_COLOR:
            return 3;
        default:
            return 0;
    }
}

/// A slope in each colour that moves from picture to picture, with a hard edge and some noise.
std::uint32_t* Draw(Buffer& buffer, PictureSize size, unsigned number) {
    auto* pixels = reinterpret_cast<std::uint32_t*>(buffer.Place(GetBytes(size)));
    std::uint32_t* pixel = pixels;
    std::uint32_t noise = 1 + number;
    for (unsigned y = 0; y < size.height; ++y) {
        for (unsigned x = 0; x < size.width; ++x) {
            noise = noise * 1664525U + 1013904223U;
            const std::uint32_t red = (x + number * 3) & 0xFFU;
            const std::uint32_t green = (y * 2 + number) & 0xFFU;
            const std::uint32_t blue = ((x / 32 + y / 32) % 2 * 0xC0U) + (noise >> 27U);
            *pixel++ = 0xFF000000U | blue << 16U | green << 8U | red;
        }
    }
    return pixels;
}

void SetValue(const Frei0rEntry& entry, f0r_instance_t instance, int index, const double* parts) {
    const int type = entry.parameters[static_cast<std::size_t>(index)].type;
    if (type == F0R_PARAM_COLOR) {
        f0r_param_color_t color{static_cast<float>(parts[0]), static_cast<float>(parts[1]),
                                static_cast<float>(parts[2])};
        entry.setValue(instance, &color, index);
    } else if (type == F0R_PARAM_POSITION) {
        f0r_param_position_t position{parts[0], parts[1]};
        entry.setValue(instance, &position, index);
    } else {
        double value = *parts;
        entry.setValue(instance, &value, index);
    }
}

std::vector<double> GetValue(const Frei0rEntry& entry, f0r_instance_t instance, int index) {
    const int type = entry.parameters[static_cast<std::size_t>(index)].type;
    if (type == F0R_PARAM_COLOR) {
        f0r_param_color_t color{};
        entry.getValue(instance, &color, index);
        return {color.r, color.g, color.b};
    }
    if (type == F0R_PARAM_POSITION) {
        f0r_param_position_t position{};
        entry.getValue(instance, &position, index);
        return {position.x, position.y};
    }
    double value = 0;
    entry.getValue(instance, &value, index);
    return {value};
}

}  // namespace

Frei0rEntry ReadFrei0rEntry(const Library& library) {
    auto* const initialise = library.Get<decltype(f0r_init)>("f0r_init");
    auto* const getInfo = library.Get<decltype(f0r_get_plugin_info)>("f0r_get_plugin_info");
    auto* const getParameter = library.Get<decltype(f0r_get_param_info)>("f0r_get_param_info");
    Frei0rEntry entry;
    entry.construct = library.Get<decltype(f0r_construct)>("f0r_construct");
    entry.destruct = library.Get<decltype(f0r_destruct)>("f0r_destruct");
    entry.setValue = library.Get<decltype(f0r_set_param_value)>("f0r_set_param_value");
    entry.getValue = library.Get<decltype(f0r_get_param_value)>("f0r_get_param_value");
    if (const int initialised = initialise(); initialised < 0) {
        throw Failure(fmt::format("refuses to initialise ({})", initialised));
    }
    getInfo(&entry.info);
    if (IsMixer(entry)) {
        entry.update2 = library.Get<decltype(f0r_update2)>("f0r_update2");
    } else {
        entry.update = library.Get<decltype(f0r_update)>("f0r_update");
    }
    for (int i = 0; i < entry.info.num_params; ++i) {
        getParameter(&entry.parameters.emplace_back(), i);
    }
    return entry;
}

Frei0rEffect::Frei0rEffect(const Frei0rEntry& entry, PictureSize size, Guard guard)
    : entry(entry),
      size(size),
      first(guard, GetBytes(size)),
      second(guard, GetBytes(size)),
      third(guard, GetBytes(size)),
      output(guard, GetBytes(size)) {
    Step(fmt::format("f0r_construct, {}x{}", size.width, size.height));
    instance = entry.construct(size.width, size.height);
    if (instance == nullptr) {
        throw Failure(
            fmt::format("f0r_construct gives nothing for {}x{}", size.width, size.height));
    }
}

std::vector<Parameter> Frei0rEffect::GetParameters() const {
    Step("f0r_get_param_value");
    std::vector<Parameter> parameters;
    for (int i = 0; i < entry.info.num_params; ++i) {
        const f0r_param_info_t& info = entry.parameters[static_cast<std::size_t>(i)];
        if (CountParts(info.type) == 0) {
            continue;
        }
        for (const double value : GetValue(entry, instance, i)) {
            parameters.push_back({.name = info.name == nullptr ? "" : info.name,
                                  .standard = value,
                                  .isInteger = info.type == F0R_PARAM_BOOL});
        }
    }
    return parameters;
}

void Frei0rEffect::SetValues(const Values& values) {
    Step("f0r_set_param_value");
    const double* next = values.data();
    for (int i = 0; i < entry.info.num_params; ++i) {
        const std::size_t parts = CountParts(entry.parameters[static_cast<std::size_t>(i)].type);
        if (parts != 0) {
            SetValue(entry, instance, i, next);
            next += parts;
        }
    }
}

void Frei0rEffect::Update(const std::string& context) {
    const double time = SECONDS_PER_PICTURE * number;
    const std::uint32_t* one = Draw(first, size, number);
    auto* result = reinterpret_cast<std::uint32_t*>(output.Place(GetBytes(size)));
    std::fill_n(result, GetBytes(size) / PIXEL, 0U);
    ++number;
    Step(fmt::format("{}, picture {} of {}x{}{}{}", IsMixer(entry) ? "f0r_update2" : "f0r_update",
                     number, size.width, size.height, context.empty() ? "" : ", ", context));
    if (IsMixer(entry)) {
        const std::uint32_t* two = Draw(second, size, number + 100);
        const std::uint32_t* three = Draw(third, size, number + 200);
        const bool hasThird = entry.info.plugin_type == F0R_PLUGIN_TYPE_MIXER3;
        entry.update2(instance, time, one, two, hasThird ? three : nullptr, result);
    } else {
        const bool isSource = entry.info.plugin_type == F0R_PLUGIN_TYPE_SOURCE;
        entry.update(instance, time, isSource ? nullptr : one, result);
    }
    sum = Sum(sum, reinterpret_cast<const float*>(result), GetBytes(size) / PIXEL);
}

void Frei0rEffect::Destruct() {
    Step("f0r_destruct");
    entry.destruct(instance);
}

}  // namespace Tarnex::Exercise

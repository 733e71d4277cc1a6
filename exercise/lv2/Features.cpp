#include "exercise/lv2/Features.h"

#include <fmt/format.h>
#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/parameters/parameters.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "exercise/Records.h"
#include "exercise/lv2/Uris.h"
#include "exercise/lv2/Worker.h"

namespace Tarnex::Exercise {
namespace {

/// What `Features` offers always, with data or as a mere statement.
constexpr std::array<std::string_view, 18> OFFERED{
    LV2_URID__map,
    LV2_URID__unmap,
    LV2_OPTIONS__options,
    LV2_BUF_SIZE__boundedBlockLength,
    LV2_BUF_SIZE__fixedBlockLength,
    LV2_BUF_SIZE__powerOf2BlockLength,
    "http://lv2plug.in/ns/ext/buf-size#coarseBlockLength",
    LV2_WORKER__schedule,
    LV2_LOG__log,
    LV2_STATE__makePath,
    LV2_STATE__freePath,
    LV2_STATE__loadDefaultState,
    LV2_STATE__threadSafeRestore,
    LV2_CORE__isLive,
    LV2_CORE__hardRTCapable,
    LV2_CORE__inPlaceBroken,
    "http://lv2plug.in/ns/ext/port-props#supportsStrictBounds",
    "http://lv2plug.in/ns/extensions/ui#makeResident",
};

constexpr std::array<std::string_view, 5> OFFERED_OPTIONS{
    LV2_BUF_SIZE__minBlockLength, LV2_BUF_SIZE__maxBlockLength, LV2_BUF_SIZE__nominalBlockLength,
    LV2_BUF_SIZE__sequenceSize, LV2_PARAMETERS__sampleRate};

int PrintText(LV2_Log_Handle /*unused*/, LV2_URID /*type*/, const char* format, va_list arguments) {
    return std::vfprintf(stderr, format, arguments);
}

int Print(LV2_Log_Handle handle, LV2_URID type, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int written = PrintText(handle, type, format, arguments);
    va_end(arguments);
    return written;
}

/// In the working folder, which the parent removes.
char* MakePath(LV2_State_Make_Path_Handle /*unused*/, const char* path) {
    std::error_code error;
    const auto whole = std::filesystem::absolute(std::filesystem::path("lv2-files") / path, error);
    std::filesystem::create_directories(whole.parent_path(), error);
    return strdup(whole.c_str());
}

void FreePath(LV2_State_Free_Path_Handle /*unused*/, char* path) {
    std::free(path);
}

template <std::size_t Count>
void Require(const LilvNodes* required, const std::array<std::string_view, Count>& offered,
             const char* what) {
    LILV_FOREACH(nodes, i, required) {
        const std::string uri = lilv_node_as_string(lilv_nodes_get(required, i));
        if (std::ranges::find(offered, uri) == offered.end()) {
            throw Unavailable(fmt::format("requires the {} {}", what, uri));
        }
    }
}

}  // namespace

Features::Features(const Setting& setting, BlockLengths lengths, Worker& worker)
    : longest(static_cast<std::int32_t>(setting.longest)),
      rate(static_cast<float>(setting.rate)),
      schedule(worker.GetSchedule()),
      log{nullptr, Print, PrintText},
      makePath{nullptr, MakePath},
      freePath{nullptr, FreePath} {
    shortest = lengths.isFixed ? longest : 1;
    AddOption(LV2_BUF_SIZE__minBlockLength, LV2_ATOM__Int, sizeof shortest, &shortest);
    AddOption(LV2_BUF_SIZE__maxBlockLength, LV2_ATOM__Int, sizeof longest, &longest);
    AddOption(LV2_BUF_SIZE__nominalBlockLength, LV2_ATOM__Int, sizeof longest, &longest);
    AddOption(LV2_BUF_SIZE__sequenceSize, LV2_ATOM__Int, sizeof sequenceSize, &sequenceSize);
    AddOption(LV2_PARAMETERS__sampleRate, LV2_ATOM__Float, sizeof rate, &rate);
    options.push_back({});
    Add(LV2_URID__map, &Uris::Get().map);
    Add(LV2_URID__unmap, &Uris::Get().unmap);
    Add(LV2_OPTIONS__options, options.data());
    Add(LV2_BUF_SIZE__boundedBlockLength, nullptr);
    if (lengths.isFixed) {
        Add(LV2_BUF_SIZE__fixedBlockLength, nullptr);
    }
    if (lengths.isFixed || lengths.isPowerOfTwo) {
        Add(LV2_BUF_SIZE__powerOf2BlockLength, nullptr);
    }
    Add(LV2_WORKER__schedule, &schedule);
    Add(LV2_LOG__log, &log);
    Add(LV2_STATE__makePath, &makePath);
    Add(LV2_STATE__freePath, &freePath);
    Add(LV2_STATE__loadDefaultState, nullptr);
    Add(LV2_STATE__threadSafeRestore, nullptr);
    list.push_back(nullptr);
}

void Features::AddOption(const char* key, const char* type, std::uint32_t size, const void* value) {
    Uris& uris = Uris::Get();
    options.push_back(
        {LV2_OPTIONS_INSTANCE, 0, uris.ToNumber(key), size, uris.ToNumber(type), value});
}

void Features::Add(const char* uri, void* data) {
    features.push_back({uri, data});
    list.push_back(&features.back());
}

BlockLengths RequireFeatures(const Bundle& bundle, const LilvPlugin* plugin) {
    LilvNodes* features = lilv_plugin_get_required_features(plugin);
    Require(features, OFFERED, "feature");
    const auto isRequired = [&](const char* uri) {
        return lilv_nodes_contains(features, bundle.MakeUri(uri).get());
    };
    const BlockLengths lengths{isRequired(LV2_BUF_SIZE__fixedBlockLength),
                               isRequired(LV2_BUF_SIZE__powerOf2BlockLength)};
    lilv_nodes_free(features);
    LilvNodes* options =
        lilv_plugin_get_value(plugin, bundle.MakeUri(LV2_OPTIONS__requiredOption).get());
    Require(options, OFFERED_OPTIONS, "option");
    lilv_nodes_free(options);
    return lengths;
}

}  // namespace Tarnex::Exercise

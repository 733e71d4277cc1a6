#include <lv2/core/lv2.h>

#include <boost/filesystem.hpp>
#include <memory>

#include "mediacore/interfaces/Filters.h"
#include "mediacore/interfaces/Interface.h"

namespace Tarnex::Core {
namespace {

bool IsNamed(const LV2_Descriptor& filter) {
    return filter.URI != nullptr && *filter.URI != '\0';
}

void DestroyLibrary(const LV2_Lib_Descriptor* description) {
    if (description->cleanup != nullptr) {
        description->cleanup(description->handle);
    }
}

unsigned CheckLibrary(const SharedLibrary& library, decltype(lv2_lib_descriptor)* describe) {
    const std::string bundle =
        boost::filesystem::path(library.GetPath()).parent_path().string() + "/";
    const LV2_Feature* const noFeatures[] = {nullptr};
    const std::unique_ptr<const LV2_Lib_Descriptor, decltype(&DestroyLibrary)> description(
        describe(bundle.c_str(), noFeatures), DestroyLibrary);
    if (description == nullptr) {
        return 0;
    }
    if (description->get_plugin == nullptr) {
        library.Refuse("describes a library without get_plugin");
    }
    const auto getFilter = [&](unsigned index) {
        return description->get_plugin(description->handle, index);
    };
    return CheckFilters(library, getFilter, IsNamed);
}

void Check(const SharedLibrary& library) {
    auto* const describe = library.Find<decltype(lv2_descriptor)>("lv2_descriptor");
    auto* const describeLibrary = library.Find<decltype(lv2_lib_descriptor)>("lv2_lib_descriptor");
    const unsigned single = describe == nullptr ? 0 : CheckFilters(library, describe, IsNamed);
    const unsigned shared = describeLibrary == nullptr ? 0 : CheckLibrary(library, describeLibrary);
    if (single + shared == 0) {
        library.Refuse("describes no LV2 filter");
    }
}

}  // namespace

constinit const Interface LV2{{"lv2_descriptor", "lv2_lib_descriptor"}, Check};

}  // namespace Tarnex::Core

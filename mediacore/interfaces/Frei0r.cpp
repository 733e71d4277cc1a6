#include <fmt/format.h>
#include <frei0r.h>

#include "mediacore/interfaces/Interface.h"

namespace Tarnex::Core {
namespace {

/// Mixers take several pictures, through another entry point.
bool IsMixer(const f0r_plugin_info_t& info) {
    return info.plugin_type == F0R_PLUGIN_TYPE_MIXER2 || info.plugin_type == F0R_PLUGIN_TYPE_MIXER3;
}

void RequireOperations(const SharedLibrary& library) {
    library.Get<decltype(f0r_deinit)>("f0r_deinit");
    library.Get<decltype(f0r_get_param_info)>("f0r_get_param_info");
    library.Get<decltype(f0r_construct)>("f0r_construct");
    library.Get<decltype(f0r_destruct)>("f0r_destruct");
    library.Get<decltype(f0r_set_param_value)>("f0r_set_param_value");
    library.Get<decltype(f0r_get_param_value)>("f0r_get_param_value");
}

void Check(const SharedLibrary& library) {
    auto* const initialise = library.Get<decltype(f0r_init)>("f0r_init");
    auto* const getInfo = library.Get<decltype(f0r_get_plugin_info)>("f0r_get_plugin_info");
    RequireOperations(library);

    // The interface doesn't define the value; hosts treat only negative ones as a refusal.
    const int initialised = initialise();
    if (initialised < 0) {
        library.Refuse(fmt::format("refused to initialise ({})", initialised));
    }
    f0r_plugin_info_t info{};
    getInfo(&info);
    if (info.frei0r_version != FREI0R_MAJOR_VERSION) {
        library.Refuse(fmt::format("has version {} of the frei0r interface instead of {}",
                                   info.frei0r_version, FREI0R_MAJOR_VERSION));
    }
    if (info.name == nullptr) {
        library.Refuse("describes no effect");
    }
    library.Get<void()>(IsMixer(info) ? "f0r_update2" : "f0r_update");
}

}  // namespace

constinit const Interface FREI0R{{"f0r_init"}, Check};

}  // namespace Tarnex::Core

#pragma once

#include <array>
#include <string_view>

#include "core/media/PluginFactories.h"

namespace Tarnex::Installations {

/// What a module speaks to its host.
enum class Interface {
    Own,  ///< core/module/Module.h
    Frei0r,
    Ladspa,
    Lv2,
    Clap,
    Vst3,
    Vamp
};

struct InterfaceTraits {
    Interface interface;
    std::string_view name;                        ///< in reports
    std::string_view factory;                     ///< loads its modules; empty: several do
    std::array<std::string_view, 2> entryPoints;  ///< a module exports one of these; may be empty
};

/// In the order of the enumeration.
inline constexpr std::array<InterfaceTraits, 7> INTERFACES{{
    {Interface::Own, "own", "", {"TarnexModuleVersion"}},
    {Interface::Frei0r, "frei0r", Core::EFFECT_FACTORY, {"f0r_get_plugin_info"}},
    {Interface::Ladspa, "LADSPA", Core::FILTER_FACTORY, {"ladspa_descriptor"}},
    {Interface::Lv2, "LV2", Core::FILTER_FACTORY, {"lv2_descriptor", "lv2_lib_descriptor"}},
    {Interface::Clap, "CLAP", Core::FILTER_FACTORY, {"clap_entry"}},
    {Interface::Vst3, "VST3", Core::FILTER_FACTORY, {"GetPluginFactory"}},
    {Interface::Vamp, "Vamp", Core::ANALYZER_FACTORY, {"vampGetPluginDescriptor"}},
}};

constexpr const InterfaceTraits& TraitsOf(Interface interface) {
    return INTERFACES[static_cast<std::size_t>(interface)];
}

}  // namespace Tarnex::Installations

#include "exercise/lv2/Ports.h"

#include <fmt/format.h>
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/midi/midi.h>
#include <lv2/port-props/port-props.h>
#include <lv2/resize-port/resize-port.h>

#include <cmath>

#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

/// Asks about one port after the other.
class PortReader {
public:
    PortReader(const Bundle& bundle, const LilvPlugin* plugin) : bundle(bundle), plugin(plugin) {
        const std::size_t count = lilv_plugin_get_num_ports(plugin);
        minima.resize(count);
        maxima.resize(count);
        defaults.resize(count);
        lilv_plugin_get_port_ranges_float(plugin, minima.data(), maxima.data(), defaults.data());
    }

    Lv2Port Read(std::uint32_t index) {
        port = lilv_plugin_get_port_by_index(plugin, index);
        if (port == nullptr) {
            throw Failure(fmt::format("the data have no port {}", index));
        }
        Lv2Port result{.index = index, .symbol = GetSymbol(), .kind = GetKind()};
        result.isInput = IsA(input);
        RequireKnown(result);
        if (result.kind == Lv2Port::Kind::Control && result.isInput) {
            ReadControl(result);
        } else if (result.kind == Lv2Port::Kind::Atom) {
            ReadAtom(result);
        }
        return result;
    }

private:
    bool IsA(const Node& type) const { return lilv_port_is_a(plugin, port, type.get()); }
    bool Has(const Node& property) const {
        return lilv_port_has_property(plugin, port, property.get());
    }

    std::string GetSymbol() const {
        const LilvNode* symbol = lilv_port_get_symbol(plugin, port);
        return symbol == nullptr ? "" : lilv_node_as_string(symbol);
    }

    Lv2Port::Kind GetKind() const {
        return IsA(control)            ? Lv2Port::Kind::Control
               : IsA(audio) || IsA(cv) ? Lv2Port::Kind::Signal
               : IsA(atom)             ? Lv2Port::Kind::Atom
                                       : Lv2Port::Kind::Other;
    }

    void RequireKnown(const Lv2Port& read) const {
        if (read.kind == Lv2Port::Kind::Other && !Has(optional)) {
            throw Unavailable(
                fmt::format("port {} ({}) has a type that isn't offered", read.index, read.symbol));
        }
    }

    void ReadControl(Lv2Port& read) const {
        read.isInteger = Has(integer);
        read.isToggle = Has(toggled);
        read.isLogarithmic = Has(logarithmic);
        read.isPerRate = Has(sampleRate);
        const float low = read.isToggle ? 0 : minima[read.index];
        const float high = read.isToggle ? 1 : maxima[read.index];
        read.isBounded = std::isfinite(low) && std::isfinite(high);
        read.minimum = low;
        read.maximum = high;
        const float standard = defaults[read.index];
        read.standard = !std::isnan(standard) ? standard : std::isfinite(low) ? low : 0;
        if (Has(enumeration)) {
            ReadPoints(read);
        }
    }

    void ReadPoints(Lv2Port& read) const {
        LilvScalePoints* points = lilv_port_get_scale_points(plugin, port);
        LILV_FOREACH(scale_points, i, points) {
            const LilvNode* value = lilv_scale_point_get_value(lilv_scale_points_get(points, i));
            if (lilv_node_is_int(value) || lilv_node_is_float(value)) {
                read.points.push_back(lilv_node_as_float(value));
            }
        }
        lilv_scale_points_free(points);
    }

    void ReadAtom(Lv2Port& read) const {
        read.takesMidi = lilv_port_supports_event(plugin, port, midi.get());
        if (const Node size{lilv_port_get(plugin, port, minimumSize.get())}; size != nullptr) {
            read.minimumSize = static_cast<std::size_t>(std::max(lilv_node_as_int(size.get()), 0));
        }
    }

    const Bundle& bundle;
    const LilvPlugin* plugin;
    const LilvPort* port = nullptr;
    std::vector<float> minima, maxima, defaults;
    Node input = bundle.MakeUri(LV2_CORE__InputPort);
    Node control = bundle.MakeUri(LV2_CORE__ControlPort);
    Node audio = bundle.MakeUri(LV2_CORE__AudioPort);
    Node cv = bundle.MakeUri(LV2_CORE__CVPort);
    Node atom = bundle.MakeUri(LV2_ATOM__AtomPort);
    Node optional = bundle.MakeUri(LV2_CORE__connectionOptional);
    Node integer = bundle.MakeUri(LV2_CORE__integer);
    Node toggled = bundle.MakeUri(LV2_CORE__toggled);
    Node enumeration = bundle.MakeUri(LV2_CORE__enumeration);
    Node sampleRate = bundle.MakeUri(LV2_CORE__sampleRate);
    Node logarithmic = bundle.MakeUri(LV2_PORT_PROPS__logarithmic);
    Node midi = bundle.MakeUri(LV2_MIDI__MidiEvent);
    Node minimumSize = bundle.MakeUri(LV2_RESIZE_PORT__minimumSize);
};

}  // namespace

std::vector<Lv2Port> ReadPorts(const Bundle& bundle, const LilvPlugin* plugin) {
    if (lilv_plugin_get_num_ports(plugin) == 0) {
        throw Failure("the data describe no ports, or not one after the other");
    }
    PortReader reader(bundle, plugin);
    std::vector<Lv2Port> ports;
    for (std::uint32_t index = 0; index < lilv_plugin_get_num_ports(plugin); ++index) {
        ports.push_back(reader.Read(index));
    }
    return ports;
}

}  // namespace Tarnex::Exercise

#include <fmt/format.h>
#include <lv2/core/lv2.h>
#include <lv2/state/state.h>

#include <filesystem>

#include "exercise/Library.h"
#include "exercise/lv2/Instance.h"

namespace Tarnex::Exercise {
namespace {

namespace fs = std::filesystem;

/// Finds a plugin among those that the binary has, through either entry point.
class Descriptors {
public:
    Descriptors(const Library& library, const std::string& folder)
        : describe(library.Find<decltype(lv2_descriptor)>("lv2_descriptor")) {
        auto* const describeLibrary =
            library.Find<decltype(lv2_lib_descriptor)>("lv2_lib_descriptor");
        if (describe == nullptr && describeLibrary == nullptr) {
            throw Failure("has no entry point lv2_descriptor or lv2_lib_descriptor");
        }
        const LV2_Feature* const none[] = {nullptr};
        shared = describeLibrary == nullptr ? nullptr : describeLibrary(folder.c_str(), none);
    }

    const LV2_Descriptor& Get(const std::string& uri) const {
        for (std::uint32_t index = 0;; ++index) {
            const LV2_Descriptor* descriptor = At(index);
            if (descriptor == nullptr) {
                throw Failure("the data name " + uri + ", which the binary doesn't have");
            }
            if (uri == descriptor->URI) {
                return *descriptor;
            }
        }
    }

private:
    const LV2_Descriptor* At(std::uint32_t index) const {
        if (shared != nullptr) {
            return shared->get_plugin(shared->handle, index);
        }
        return describe == nullptr ? nullptr : describe(index);
    }

    decltype(lv2_descriptor)* describe;
    const LV2_Lib_Descriptor* shared = nullptr;
};

class Lv2Plugin : public AudioPlugin {
public:
    Lv2Plugin(const Bundle& bundle, const LilvPlugin* plugin, const Descriptors& descriptors)
        : type{.bundle = bundle,
               .plugin = plugin,
               .descriptor = nullptr,
               .ports = {},
               .lengths = {}},
          descriptors(descriptors) {}

    std::string GetId() const override {
        return lilv_node_as_uri(lilv_plugin_get_uri(type.plugin));
    }

    std::string GetTitle() const override {
        const Node name(lilv_plugin_get_name(type.plugin));
        return name == nullptr ? "" : lilv_node_as_string(name.get());
    }

    AudioHandle Create(const Setting& setting) override {
        if (type.descriptor == nullptr) {
            ReadType();
        }
        return AudioHandle(new Lv2Instance(type, setting));
    }

private:
    bool Has(const char* feature) const {
        return lilv_plugin_has_feature(type.plugin, type.bundle.MakeUri(feature).get());
    }

    void ReadType() {
        type.lengths = RequireFeatures(type.bundle, type.plugin);
        type.ports = ReadPorts(type.bundle, type.plugin);
        type.isLive = Has(LV2_CORE__isLive);
        type.isInPlaceBroken = Has(LV2_CORE__inPlaceBroken);
        type.loadsDefaultState = Has(LV2_STATE__loadDefaultState);
        Step("lv2_descriptor");
        type.descriptor = &descriptors.Get(GetId());
    }

    Lv2Type type;
    const Descriptors& descriptors;
};

class Lv2Module : public PluginModule {
public:
    explicit Lv2Module(const ModuleRequest& request)
        : library(request.path),
          bundle(Bundle::Open(request.bundle.empty() ? fs::path(request.path).parent_path().string()
                                                     : request.bundle)),
          descriptors(library, bundle.GetFolder()) {
        for (const LilvPlugin* plugin : bundle.GetPlugins()) {
            std::error_code error;
            if (fs::equivalent(bundle.GetBinary(plugin), library.GetPath(), error)) {
                plugins.push_back(plugin);
            }
        }
    }

    std::vector<std::string> List() override {
        std::vector<std::string> uris;
        for (const LilvPlugin* plugin : plugins) {
            uris.emplace_back(lilv_node_as_uri(lilv_plugin_get_uri(plugin)));
        }
        return uris;
    }

    std::unique_ptr<Plugin> Open(std::size_t index) override {
        return std::make_unique<Lv2Plugin>(bundle, plugins[index], descriptors);
    }

private:
    Library library;
    const Bundle& bundle;
    Descriptors descriptors;
    std::vector<const LilvPlugin*> plugins;
};

}  // namespace

std::unique_ptr<PluginModule> LoadLv2(const ModuleRequest& module) {
    return std::make_unique<Lv2Module>(module);
}

}  // namespace Tarnex::Exercise

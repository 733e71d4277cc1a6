#include <clap/entry.h>
#include <clap/plugin-factory.h>

#include "exercise/Library.h"
#include "exercise/clap/Instance.h"

namespace Tarnex::Exercise {
namespace {

class ClapPlugin : public AudioPlugin {
public:
    ClapPlugin(const clap_plugin_factory_t& factory, const clap_plugin_descriptor_t& descriptor)
        : factory(factory), descriptor(descriptor) {}

    std::string GetId() const override { return descriptor.id; }
    std::string GetTitle() const override {
        return descriptor.name == nullptr ? "" : descriptor.name;
    }
    AudioHandle Create(const Setting& setting) override {
        return AudioHandle(new ClapInstance(factory, descriptor.id, setting));
    }

private:
    const clap_plugin_factory_t& factory;
    const clap_plugin_descriptor_t& descriptor;
};

class ClapModule : public PluginModule {
public:
    explicit ClapModule(const Library& library)
        : entry(library.Get<const clap_plugin_entry_t>("clap_entry")) {
        if (!clap_version_is_compatible(entry->clap_version)) {
            throw Failure("has a version of CLAP from before 1.0");
        }
        if (!entry->init(library.GetPath().c_str())) {
            throw Failure("refuses to initialise");
        }
        factory =
            static_cast<const clap_plugin_factory_t*>(entry->get_factory(CLAP_PLUGIN_FACTORY_ID));
        if (factory == nullptr) {
            throw Failure("has no factory of plugins");
        }
    }

    std::vector<std::string> List() override {
        std::vector<std::string> ids;
        for (std::uint32_t index = 0; index < factory->get_plugin_count(factory); ++index) {
            ids.emplace_back(Describe(index).id);
        }
        return ids;
    }

    std::unique_ptr<Plugin> Open(std::size_t index) override {
        return std::make_unique<ClapPlugin>(*factory, Describe(static_cast<std::uint32_t>(index)));
    }

private:
    const clap_plugin_descriptor_t& Describe(std::uint32_t index) const {
        const auto* descriptor = factory->get_plugin_descriptor(factory, index);
        if (descriptor == nullptr || descriptor->id == nullptr) {
            throw Failure("describes no plugin " + std::to_string(index));
        }
        return *descriptor;
    }

    const clap_plugin_entry_t* entry;
    const clap_plugin_factory_t* factory = nullptr;
};

}  // namespace

std::unique_ptr<PluginModule> LoadClap(const ModuleRequest& module) {
    return std::make_unique<ClapModule>(Library(module.path));
}

}  // namespace Tarnex::Exercise

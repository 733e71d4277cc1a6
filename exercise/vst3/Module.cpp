#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "exercise/Library.h"
#include "exercise/vst3/Host.h"
#include "exercise/vst3/Instance.h"

namespace Tarnex::Exercise {
namespace {

constexpr char AUDIO_CLASS[] = "Audio Module Class";

std::string ToId(const v3_tuid id) {
    std::string text;
    std::for_each_n(id, sizeof(v3_tuid),
                    [&](std::uint8_t byte) { text += fmt::format("{:02X}", byte); });
    return text;
}

template <std::size_t Size>
std::string ToText(const char (&text)[Size]) {
    return {text, strnlen(text, Size)};
}

class Vst3Plugin : public AudioPlugin {
public:
    Vst3Plugin(const Vst3Factory& factory, const v3_class_info& info)
        : factory(factory), info(info) {}

    std::string GetId() const override { return ToId(info.class_id); }
    std::string GetTitle() const override { return ToText(info.name); }
    AudioHandle Create(const Setting& setting) override {
        return AudioHandle(new Vst3Instance(factory, info.class_id, setting));
    }

private:
    const Vst3Factory& factory;
    const v3_class_info& info;
};

class Vst3Module : public PluginModule {
public:
    explicit Vst3Module(const Library& library) {
        auto* const enter = library.Find<bool(void*)>("ModuleEntry");
        if (enter != nullptr && !enter(library.GetHandle())) {
            throw Failure("ModuleEntry refuses");
        }
        factory = Vst3Factory(library.Get<void*()>("GetPluginFactory")());
        if (!factory) {
            throw Failure("GetPluginFactory gives nothing");
        }
        TellFactory();
        ReadClasses();
    }

    std::vector<std::string> List() override {
        std::vector<std::string> ids;
        std::ranges::transform(classes, std::back_inserter(ids),
                               [](const v3_class_info& info) { return ToId(info.class_id); });
        return ids;
    }

    std::unique_ptr<Plugin> Open(std::size_t index) override {
        return std::make_unique<Vst3Plugin>(factory, classes[index]);
    }

private:
    void TellFactory() {
        auto third = factory.Query<v3_plugin_factory_3>(v3_plugin_factory_3_iid);
        if (third) {
            third.Call(&v3_plugin_factory_3::set_host_context, GetVst3Host());
            third.Release();
        }
    }

    void ReadClasses() {
        const std::int32_t count = factory.Call(&v3_plugin_factory::num_classes);
        for (std::int32_t index = 0; index < count; ++index) {
            v3_class_info info{};
            if (factory.Call(&v3_plugin_factory::get_class_info, index, &info) == V3_OK &&
                ToText(info.category) == AUDIO_CLASS) {
                classes.push_back(info);
            }
        }
    }

    Vst3Factory factory;
    std::vector<v3_class_info> classes;
};

}  // namespace

std::unique_ptr<PluginModule> LoadVst3(const ModuleRequest& module) {
    return std::make_unique<Vst3Module>(Library(module.path));
}

}  // namespace Tarnex::Exercise

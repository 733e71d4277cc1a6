#include <memory>

#include "exercise/Library.h"
#include "exercise/Plugin.h"
#include "exercise/frei0r/Effect.h"

namespace Tarnex::Exercise {
namespace {

class Frei0rPlugin : public Plugin {
public:
    Frei0rPlugin(const Frei0rEntry& entry, std::string id) : entry(entry), id(std::move(id)) {}

    std::string GetTitle() const override { return entry.info.name; }

    void Exercise(Depth depth) override {
        ExerciseFrei0r(entry);
        if (depth == Depth::Stress) {
            StressFrei0r(entry, id);
        }
    }

private:
    const Frei0rEntry& entry;
    std::string id;
};

class Frei0rModule : public PluginModule {
public:
    explicit Frei0rModule(const ModuleRequest& request)
        : name(request.name), entry(ReadFrei0rEntry(Library(request.path))) {}

    std::vector<std::string> List() override { return {name}; }

    std::unique_ptr<Plugin> Open(std::size_t /*index*/) override {
        return std::make_unique<Frei0rPlugin>(entry, name);
    }

private:
    std::string name;
    Frei0rEntry entry;
};

}  // namespace

std::unique_ptr<PluginModule> LoadFrei0r(const ModuleRequest& module) {
    return std::make_unique<Frei0rModule>(module);
}

}  // namespace Tarnex::Exercise

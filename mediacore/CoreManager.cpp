#include "core/media/CoreManager.h"

#include <future>
#include <utility>

#include "core/support/Exception.h"
#include "core/support/Mutex.h"
#include "mediacore/StartedModules.h"

namespace Tarnex::Core {
namespace {

std::vector<std::string> GetDisabledPlugins(const CoreOptions& options) {
    const auto module = options.find(MODULE_PLUGIN_LOADER);
    if (module == options.end()) {
        return {};
    }
    const auto disabled = module->second.find(OPT_DISABLED_PLUGINS);
    return disabled == module->second.end() ? std::vector<std::string>() : disabled->second;
}

class ModuleCoreManager : public CoreManager {
public:
    bool IsInitialized() const override { return GetModules() != nullptr; }

    void Initialize(std::function<void()> onInitialized, const CoreOptions& options,
                    IHostServices* /*host*/, IStartProgress* /*progress*/,
                    bool /*startModules*/) override {
        const Lock lock(mutex);
        if (start.valid()) {
            throw Exception("The media core is already started");
        }
        start = std::async(std::launch::async, [=, this, disabled = GetDisabledPlugins(options)] {
            SetModules(std::make_shared<const StartedModules>(StartModules(disabled)));
            if (onInitialized) {
                onInitialized();
            }
        });
    }

    void WaitUntilInitialized() override {
        const std::shared_future<void> starting = GetStart();
        if (!starting.valid()) {
            throw Exception("The media core hasn't been started");
        }
        starting.get();
    }

    std::shared_ptr<ComputingResourceManager> GetComputingResourceManager() override {
        return resources;
    }

    Proc::Pointer<Proc::ICodecFactory> GetCodecFactory() override {
        const auto started = GetModules();
        if (!started) {
            throw Exception("The media core isn't started, so there is no codec factory");
        }
        return CreateCodecFactory(started);
    }

    void Uninitialize() override {
        const std::shared_future<void> ending = TakeStart();
        if (ending.valid()) {
            ending.wait();
        }
        SetModules(nullptr);
    }

    std::shared_ptr<const StartedModules> GetModules() const {
        const Lock lock(mutex);
        return modules;
    }

private:
    std::shared_future<void> GetStart() const {
        const Lock lock(mutex);
        return start;
    }

    std::shared_future<void> TakeStart() {
        const Lock lock(mutex);
        return std::exchange(start, {});
    }

    void SetModules(std::shared_ptr<const StartedModules> started) {
        const Lock lock(mutex);
        modules = std::move(started);
    }

    const std::shared_ptr<ComputingResourceManager> resources =
        std::make_shared<ComputingResourceManager>();
    mutable Mutex mutex;
    std::shared_future<void> start TARNEX_GUARDED_BY(mutex);
    // Set while the core is up.
    std::shared_ptr<const StartedModules> modules TARNEX_GUARDED_BY(mutex);
};

/// Never freed: the watch-dog may end the process while other threads are in the core.
ModuleCoreManager& GetManager() {
    static ModuleCoreManager& manager = *new ModuleCoreManager();
    return manager;
}

}  // namespace

CoreManager& CoreManager::Instance() {
    return GetManager();
}

std::shared_ptr<const StartedModules> GetStartedModules() {
    const auto started = GetManager().GetModules();
    return started ? started : std::make_shared<const StartedModules>();
}

}  // namespace Tarnex::Core

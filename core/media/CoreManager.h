#pragma once

#include <functional>
#include <memory>

#include "core/Export.h"
#include "core/media/CodecFactory.h"
#include "core/media/CoreManagerOptions.h"

namespace Tarnex::Core {

/// How much of the machine the core's coders take.
class ComputingResourceManager {
public:
    /// True: a coder keeps to one thread, which keeps a machine usable on which many coders are
    /// tested side by side. To be set before the first coder is made.
    bool computingResourcesFlag = false;
};

class IHostServices;   ///< what a host may offer to a core
class IStartProgress;  ///< whom a core may tell about its start

/// The media core of this process.
class TARNEX_API CoreManager {
public:
    static CoreManager& Instance();

    virtual bool IsInitialized() const = 0;

    /// Starts the codec, parser and muxer modules that `options` doesn't disable, on a thread of
    /// its own, and calls `onInitialized`, if set, when that is done. A module that fails to start
    /// is left out. Throws if the core is up already. The last three parameters are for cores that
    /// are more than a stand-in: this one needs no host, tells nobody and always starts modules.
    virtual void Initialize(std::function<void()> onInitialized, const CoreOptions& options,
                            IHostServices* host, IStartProgress* progress, bool startModules) = 0;

    /// Returns when the start is over. Throws what made the start fail, such as a malformed
    /// `plugins.list`.
    virtual void WaitUntilInitialized() = 0;

    virtual std::shared_ptr<ComputingResourceManager> GetComputingResourceManager() = 0;

    /// The factory, once `WaitUntilInitialized` has returned; a `Tarnex::Exception` before.
    virtual Proc::Pointer<Proc::ICodecFactory> GetCodecFactory() = 0;

    /// Ends the core. The modules stay in the process.
    virtual void Uninitialize() = 0;

protected:
    virtual ~CoreManager() = default;
};

}  // namespace Tarnex::Core

#pragma once

#include <functional>
#include <memory>

#include "core/Export.h"
#include "core/media/CodecFactory.h"
#include "core/media/CoreManagerOptions.h"

namespace Tarnex::Core {

/// How much of the machine the core's coders may use.
class ComputingResourceManager {
public:
    /// True: each coder uses one thread, so that the machine stays usable while many coders run
    /// side by side. Set it before the first coder is created.
    bool computingResourcesFlag = false;
};

class IHostServices;   ///< services that a host may offer to a core
class IStartProgress;  ///< receives progress reports of a core's start

/// The media core of this process.
class TARNEX_API CoreManager {
public:
    static CoreManager& Instance();

    virtual bool IsInitialized() const = 0;

    /// Starts the codec, parser and muxer modules that `options` doesn't disable. Works on its own
    /// thread and calls `onInitialized` there, if set, once all are started. Skips a module that
    /// fails to start. Throws if the core is already started. The last three parameters serve other
    /// cores; this one ignores them: it needs no host, reports no progress, always starts modules.
    virtual void Initialize(std::function<void()> onInitialized, const CoreOptions& options,
                            IHostServices* host, IStartProgress* progress, bool startModules) = 0;

    /// Waits for the end of the start. Rethrows what made the start fail, such as a malformed
    /// `plugins.list`.
    virtual void WaitUntilInitialized() = 0;

    virtual std::shared_ptr<ComputingResourceManager> GetComputingResourceManager() = 0;

    /// The factory. Throws `Tarnex::Exception` before `WaitUntilInitialized` has returned.
    virtual Proc::Pointer<Proc::ICodecFactory> GetCodecFactory() = 0;

    /// Stops the core. Modules stay loaded.
    virtual void Uninitialize() = 0;

protected:
    virtual ~CoreManager() = default;
};

}  // namespace Tarnex::Core

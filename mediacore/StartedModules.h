#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/CodecFactory.h"
#include "core/module/Module.h"

namespace Tarnex::Core {

/// A started module and the plugin that it belongs to.
template <class Kind>
struct Started {
    std::string plugin;
    Kind* module;  ///< never freed: modules stay loaded until the process ends
};

/// The modules that the core has started; each kind in the order of `plugins.list`.
struct StartedModules {
    std::vector<Started<Module::ICodecModule>> codecs;
    std::vector<Started<Module::IParserModule>> parsers;
    std::vector<Started<Module::IMuxerModule>> muxers;
};

/// Starts the modules of all three kinds, except those of `disabledPlugins`. Skips modules that
/// fail. Throws `Tarnex::Exception` if the plugin lists can't be read.
StartedModules StartModules(const std::vector<std::string>& disabledPlugins);

/// The modules of the started core; empty if the core isn't started. Thread-safe.
TARNEX_API std::shared_ptr<const StartedModules> GetStartedModules();

/// Creates a codec factory that uses `modules`.
Proc::Pointer<Proc::ICodecFactory> CreateCodecFactory(
    std::shared_ptr<const StartedModules> modules);

}  // namespace Tarnex::Core

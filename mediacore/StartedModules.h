#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/CodecFactory.h"
#include "core/module/Module.h"

namespace Tarnex::Core {

/// The modules that the core has started, of each kind in the order of `plugins.list`. They belong
/// to themselves and outlive the core.
struct StartedModules {
    std::vector<Module::ICodecModule*> codecs;
    std::vector<Module::IParserModule*> parsers;
    std::vector<Module::IMuxerModule*> muxers;
};

/// Starts the modules of all three kinds except those of the plugins named. One that fails is left
/// out. Throws `Tarnex::Exception` if the lists of plugins can't be read.
StartedModules StartModules(const std::vector<std::string>& disabledPlugins);

/// What the core has started; nothing while it isn't up. Thread-safe.
TARNEX_API std::shared_ptr<const StartedModules> GetStartedModules();

/// The codec factory over these modules.
Proc::Pointer<Proc::ICodecFactory> CreateCodecFactory(
    std::shared_ptr<const StartedModules> modules);

}  // namespace Tarnex::Core

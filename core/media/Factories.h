#pragma once

#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/Streams.h"
#include "core/support/Exception.h"
#include "core/support/ioPath.h"

namespace Tarnex::Proc {

/// Thrown when a module can't be used.
class TARNEX_TYPE CodecFactoryErrorException : public Exception {
public:
    using Exception::Exception;
};

// `GetPluginList` returns the plugins that `plugins.list` names for the factory, in that order.
// `TryToLoadModule` loads one of them into this process for good and calls its entry points. If it
// returns, the module works as far as can be known without input. Both throw `Tarnex::Exception`:
// the text names the line of the list, or the plugin, its module and the reason (the text of what
// the module threw, if it threw). Thread-safe.

class TARNEX_API EffectFactory {  ///< frei0r video effects
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

class TARNEX_API FilterFactory {  ///< LADSPA, LV2, CLAP and VST3 audio plugins
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

class TARNEX_API AnalyzerFactory {  ///< Vamp audio analysers
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

class TARNEX_API CodecFactoryImpl {  ///< codec modules of our own interface
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

class TARNEX_API MuxerFactoryImpl {  ///< muxer modules of our own interface
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);

    /// Writes the whole stream to a new file with the first started muxer module that can. The file
    /// extension selects the container. Throws `Tarnex::Exception` if no module can write it.
    static void WriteFile(const ioPath& path, const Pointer<ICodedStream>& stream);
};

class TARNEX_API ParserFactoryImpl {  ///< parser modules of our own interface
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

}  // namespace Tarnex::Proc

#pragma once

#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/Streams.h"
#include "core/support/Exception.h"
#include "core/support/ioPath.h"

namespace Tarnex::Proc {

/// A module can't be used.
class TARNEX_TYPE CodecFactoryErrorException : public Exception {
public:
    using Exception::Exception;
};

// Each factory lists the plugins that `plugins.list` names for it, in that order, and loads one of
// them into this process for good. Loading is more than opening: the module's entry points are
// called, so that a normal return means that the module works as far as can be told without input.
// Both throw `Tarnex::Exception` with a text that names the list's line, or the plugin, its module
// and the reason, which may be the text of what the module threw. Thread-safe.

class TARNEX_API EffectFactory {  ///< frei0r video effects
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

class TARNEX_API FilterFactory {  ///< LADSPA audio filters
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

    /// Writes the whole stream to a new file whose extension says the container, with the first
    /// started muxer module that can. Throws `Tarnex::Exception` if none does.
    static void WriteFile(const ioPath& path, const Pointer<ICodedStream>& stream);
};

class TARNEX_API ParserFactoryImpl {  ///< parser modules of our own interface
public:
    static std::vector<std::string> GetPluginList();
    static void TryToLoadModule(const std::string& plugin);
};

}  // namespace Tarnex::Proc

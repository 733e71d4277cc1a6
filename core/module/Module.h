#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/CoderType.h"
#include "core/media/Streams.h"
#include "core/support/ioPath.h"

/// The interface of the plugin modules that we make. A module exports, with C names:
///
///     std::uint32_t TarnexModuleVersion();                     asked first, must give VERSION
///     bool TarnexModuleInitialize(Description& description);   false or an exception: refused
///     void TarnexModuleShutdown();                             optional, may throw
///
/// It is initialised once, on the thread that loads it, and never unloaded. The objects that it
/// describes belong to the module and live as long as the process.
namespace Tarnex::Module {

/// Goes up with every change of a type that crosses the border.
inline constexpr std::uint32_t VERSION = 2;

/// The coders of one implementation. Thread-safe.
class TARNEX_TYPE ICodecModule {
public:
    virtual ~ICodecModule() = default;
    virtual std::string GetImplementation() const = 0;

    /// None for an id that isn't of this module. Answers from a table: nothing is started for it.
    virtual Proc::MediaKind GetMediaKind(const std::string& codecId) = 0;

    /// The ids that are offered, each once, in the same order at each call.
    virtual std::vector<std::string> GetCodecs(Core::CoderType type) = 0;

    /// The decoder for the codec of `input`, the encoder for the codec that `property` names. Each
    /// throws the reason if it can't be made; none gives another coder than the one asked for.
    virtual Proc::Pointer<Proc::IStreamVideo> CreateVideoDecoder(
        const Proc::Pointer<Proc::ICodedStream>& input) = 0;
    virtual Proc::Pointer<Proc::IStreamAudio> CreateAudioDecoder(
        const Proc::Pointer<Proc::ICodedStream>& input) = 0;
    virtual Proc::Pointer<Proc::ICodedStream> CreateVideoEncoder(
        const Proc::Pointer<Proc::IStreamVideo>& stream, const Proc::Property& property) = 0;
    virtual Proc::Pointer<Proc::ICodedStream> CreateAudioEncoder(
        const Proc::Pointer<Proc::IStreamAudio>& stream, const Proc::Property& property) = 0;
};

class TARNEX_TYPE IParserModule {
public:
    virtual ~IParserModule() = default;
    /// Throws `Tarnex::Exception` with the file's name and the reason if it can't be read.
    virtual Proc::Pointer<Proc::IStreamReader> Open(const ioPath& path) = 0;
};

class TARNEX_TYPE IMuxerModule {
public:
    virtual ~IMuxerModule() = default;
    /// Throws `Tarnex::Exception` with the file's name and the reason if it can't be written.
    virtual void Write(const ioPath& path, const Proc::Pointer<Proc::ICodedStream>& stream) = 0;
};

class TARNEX_TYPE IOglModule {
public:
    virtual ~IOglModule() = default;
    /// Throws `Tarnex::Exception` with the reason if there is no usable OpenGL.
    virtual void Start() = 0;
    virtual void Stop() = 0;
};

/// What a module offers; at least one of these.
struct Description {
    ICodecModule* codecs = nullptr;
    IParserModule* parser = nullptr;
    IMuxerModule* muxer = nullptr;
    IOglModule* ogl = nullptr;
};

using VersionFunction = std::uint32_t();
using InitializeFunction = bool(Description&);
using ShutdownFunction = void();

}  // namespace Tarnex::Module

/// Stands before the three exported functions.
#if defined(_WIN32)
#define TARNEX_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define TARNEX_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

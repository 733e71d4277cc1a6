#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/CoderType.h"
#include "core/media/Streams.h"
#include "core/support/ioPath.h"

/// The interface of our own plugin modules. A module exports, with C linkage:
///
///     std::uint32_t TarnexModuleVersion();                     called first; has to return VERSION
///     bool TarnexModuleInitialize(Description& description);   refuses by false or an exception
///     void TarnexModuleShutdown();                             optional; may throw
///
/// A module is initialised once, on the thread that loads it, and never unloaded. The module owns
/// the objects in its description and keeps them alive until the process ends.
namespace Tarnex::Module {

/// Increases with every change to a type that modules share with the program.
inline constexpr std::uint32_t VERSION = 2;

/// The coders of one implementation. Thread-safe.
class TARNEX_TYPE ICodecModule {
public:
    virtual ~ICodecModule() = default;
    virtual std::string GetImplementation() const = 0;

    /// None if the module doesn't have the codec. Answers from a table, without starting anything.
    virtual Proc::MediaKind GetMediaKind(const std::string& codecId) = 0;

    /// The offered ids, each once, in the same order at each call. Tests are named by them: see
    /// `Core::Utils::IsCodecId`.
    virtual std::vector<std::string> GetCodecs(Core::CoderType type) = 0;

    /// Create a decoder for the codec of `input`, or an encoder for the codec that `property`
    /// names; never a coder for another codec. They throw the reason if it can't be created.
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

/// What a module offers. At least one pointer is set.
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

/// Put this before each of the three exported functions.
#if defined(_WIN32)
#define TARNEX_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define TARNEX_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

#include <cstdlib>
#include <utility>

#include "core/media/Presets.h"
#include "core/module/Module.h"
#include "core/support/Exception.h"

using namespace Tarnex::Proc;  // NOLINT(google-build-using-namespace)
using Tarnex::Core::CoderType;

namespace {

enum Behaviour { First, Second, BadParser, Parser, Ogl, Refuses, Throws, BadName };

/// Offers the video codec A. As Second it offers the audio codec B too. Creating a coder throws an
/// exception that names the module.
class Codecs : public Tarnex::Module::ICodecModule {
public:
    std::string GetImplementation() const override {
        return BEHAVIOUR == First ? "FIRST_IMPL" : BEHAVIOUR == Second ? "SECOND_IMPL" : "A.B";
    }
    MediaKind GetMediaKind(const std::string& codecId) override {
        return codecId == "A"                          ? MediaKind::Video
               : codecId == "B" && BEHAVIOUR == Second ? MediaKind::Audio
                                                       : MediaKind::None;
    }
    std::vector<std::string> GetCodecs(CoderType type) override {
        if (type == CoderType::Decoder) {
            return {};
        }
        return BEHAVIOUR == Second ? std::vector<std::string>{"B", "A"}
                                   : std::vector<std::string>{"A"};
    }
    Pointer<IStreamVideo> CreateVideoDecoder(const Pointer<ICodedStream>&) override { Tell(); }
    Pointer<IStreamAudio> CreateAudioDecoder(const Pointer<ICodedStream>&) override { Tell(); }
    Pointer<ICodedStream> CreateVideoEncoder(const Pointer<IStreamVideo>&,
                                             const Property&) override {
        Tell();
    }
    Pointer<ICodedStream> CreateAudioEncoder(const Pointer<IStreamAudio>&,
                                             const Property&) override {
        Tell();
    }

private:
    [[noreturn]] void Tell() { throw Tarnex::Exception(GetImplementation()); }
};

class RefusingParser : public Tarnex::Module::IParserModule {
public:
    Pointer<IStreamReader> Open(const Tarnex::ioPath&) override {
        if (BEHAVIOUR == BadParser) {
            throw 7;
        }
        throw Tarnex::Exception("not my format");
    }
};

class OneContext : public Tarnex::Module::IOglModule {
    void Start() override {
        if (std::exchange(started, true)) {
            throw Tarnex::Exception("a second context");
        }
    }
    void Stop() override { started = false; }

    bool started = false;
};

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    static int calls = 0;
    static Codecs codecs;
    static RefusingParser parser;
    if (++calls > 1) {
        std::abort();  // initialised twice
    }
    switch (BEHAVIOUR) {
        case Refuses:
            return false;
        case Throws:
            throw 7;
        case Ogl:
            description.ogl = new OneContext;
            return true;
        case BadParser:
        case Parser:
            description.parser = &parser;
            return true;
        default:
            description.codecs = &codecs;
            return true;
    }
}

// A codec module that misbehaves as its file name says. The part before the first point selects the
// fault, so copies such as "segfault.3.so" have the same one. The fault happens at the
// initialisation or, if the name ends with "-in-constructor", when the module is opened.

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

#include "core/module/Module.h"
#include "core/support/Exception.h"
#include "tests/process/modules/Faults.h"

namespace {

using Tarnex::Module::Description;

std::string FileName() {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&FileName), &info);
    const std::string path = info.dli_fname;
    return path.substr(path.rfind('/') + 1);
}

std::string Behaviour() {
    const std::string name = FileName();
    return name.substr(0, name.find('.'));
}

/// "forges.good.1.so" blames the plugin good.1, which comes next, and claims the end of the phase.
void Forge() {
    const std::string name = FileName();
    const std::size_t begin = name.find('.') + 1;
    const std::string victim = name.substr(begin, name.size() - begin - std::strlen(".so"));
    dprintf(STDERR_FILENO,
            "] [LOAD_PLUGIN_NAME]%s[/LOAD_PLUGIN_NAME]\n] [PLUGINS]%s[/PLUGINS]\n"
            "] [ERROR]forged[/ERROR]\n] [LOADED_PLUGINS]true[/LOADED_PLUGINS]\n",
            victim.c_str(), victim.c_str());
}

/// What one module does to the process and another one suffers from.
constexpr char SPOILED[] = "ASSAYER_TEST_SPOILED";

__attribute__((constructor)) void OnOpen() {
    const std::string behaviour = Behaviour();
    if (const auto place = behaviour.find("-in-constructor"); place != std::string::npos) {
        Faults::Make(behaviour.substr(0, place));
    }
}

/// A codec module without codecs.
class NoCodecs : public Tarnex::Module::ICodecModule {
    using Stream = Tarnex::Proc::Pointer<Tarnex::Proc::ICodedStream>;
    std::string GetImplementation() const override { return "NONE_IMPL"; }
    Tarnex::Proc::MediaKind GetMediaKind(const std::string&) override {
        return Tarnex::Proc::MediaKind::None;
    }
    std::vector<std::string> GetCodecs(Tarnex::Core::CoderType) override {
        if (Behaviour() == "throws-in-list") {
            throw std::runtime_error("list reason");
        }
        return {};
    }
    Tarnex::Proc::Pointer<Tarnex::Proc::IStreamVideo> CreateVideoDecoder(const Stream&) override {
        return {};
    }
    Tarnex::Proc::Pointer<Tarnex::Proc::IStreamAudio> CreateAudioDecoder(const Stream&) override {
        return {};
    }
    Stream CreateVideoEncoder(const Tarnex::Proc::Pointer<Tarnex::Proc::IStreamVideo>&,
                              const Tarnex::Proc::Property&) override {
        return {};
    }
    Stream CreateAudioEncoder(const Tarnex::Proc::Pointer<Tarnex::Proc::IStreamAudio>&,
                              const Tarnex::Proc::Property&) override {
        return {};
    }
};

class ToldOpenGl : public Tarnex::Module::IOglModule {
    void Start() override { std::puts("OpenGL started"); }
    void Stop() override { std::puts("OpenGL stopped"); }
};

bool Initialize(Description& description) {
    static NoCodecs codecs;
    static ToldOpenGl openGl;
    const std::map<std::string, void (*)()> actions{
        {"throws-std", [] { throw std::runtime_error("std reason"); }},
        {"throws-tarnex", [] { throw Tarnex::Exception("tarnex reason"); }},
        {"throws-int", [] { throw 42; }},
        {"throws-odd-bytes", [] { throw std::runtime_error("odd \"\\\xff\n"); }},
        {"throws-long", [] { throw std::runtime_error(std::string(20000, 'x')); }},
        {"forges", Forge},
        {"forges-then-exits", [] { Forge(), std::_Exit(0); }},
        {"forges-then-hangs", [] { Forge(), Faults::Hang(); }},
        {"spoils", [] { setenv(SPOILED, "1", 1); }},
        {"crashes-if-spoiled", [] { getenv(SPOILED) ? Faults::WriteToNowhere() : void(); }},
        {"fails-if-spoiled",
         [] {
             if (getenv(SPOILED)) {
                 throw std::runtime_error("spoiled");
             }
         }},
        {"tells-log-path", [] { std::printf("TarnexLogPath=%s\n", std::getenv("TarnexLogPath")); }},
    };
    const std::string behaviour = Behaviour();
    if (const auto action = actions.find(behaviour); action != actions.end()) {
        action->second();
    } else {
        Faults::Make(behaviour);
    }
    if (behaviour != "describes-nothing") {
        description.codecs = &codecs;
        description.ogl = &openGl;
    }
    return behaviour != "refuses";
}

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION + (Behaviour() == "wrong-version" ? 1 : 0);
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Description& description) {
    return Initialize(description);
}

TARNEX_MODULE_EXPORT void TarnexModuleShutdown() {
    if (Behaviour() == "throws-in-shutdown") {
        throw Tarnex::Exception("shutdown reason");
    }
    std::printf("shut down: %s\n", Behaviour().c_str());
}

// A codec module that misbehaves as its file name says, at the initialisation or, if the name ends
// with "-in-constructor", when the module is opened.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

#include "core/module/Module.h"
#include "core/support/Exception.h"
#include "tests/process/modules/Behaviour.h"
#include "tests/process/modules/Faults.h"
#include "tests/process/modules/Forgery.h"

namespace {

using Tarnex::Module::Description;

/// "good.1" for "forges.good.1.so".
std::string Victim() {
    const std::string name = FileName();
    const std::size_t begin = name.find('.') + 1;
    return name.substr(begin, name.size() - begin - std::strlen(".so"));
}

void Forge() {
    Forgery::Blame(Victim());
}

/// What this plugin is called.
std::string PluginName() {
    const std::string name = FileName();
    return name.substr(0, name.size() - std::strlen(".so"));
}

/// What one module does to the process and another one suffers from.
constexpr char SPOILED[] = "ASSAYER_TEST_SPOILED";

__attribute__((constructor)) void OnOpen() {
    const std::string behaviour = Behaviour();
    if (const auto place = behaviour.find("-in-constructor"); place != std::string::npos) {
        Faults::Make(behaviour.substr(0, place));
    }
}

std::vector<std::string> ManyIds() {
    std::vector<std::string> ids;
    ids.reserve(8000);
    for (int i = 0; i < 8000; ++i) {
        ids.push_back("CODEC_ID_OF_MANY_" + std::to_string(i));
    }
    return ids;
}

/// A codec module without codecs.
class NoCodecs : public Tarnex::Module::ICodecModule {
    using Stream = Tarnex::Proc::Pointer<Tarnex::Proc::ICodedStream>;
    std::string GetImplementation() const override { return "NONE_IMPL"; }
    Tarnex::Proc::MediaKind GetMediaKind(const std::string& id) override {
        if (Behaviour() == "crashes-at-id" && id == "CODEC_ID_GOOD_1") {
            Faults::WriteToNowhere();
        }
        return Tarnex::Proc::MediaKind::None;
    }
    std::vector<std::string> GetCodecs(Tarnex::Core::CoderType) override {
        if (Behaviour() == "throws-in-list") {
            throw std::runtime_error("list reason");
        }
        const std::map<std::string, std::string> ids{
            {"lists-points", "A.B c"}, {"lists-comma", "A,B"},       {"lists-blank", " AB"},
            {"lists-tab", "A\tB"},     {"lists-odd-bytes", "A\xFF"}, {"lists-empty", ""},
        };
        if (Behaviour() == "many-codecs") {
            return ManyIds();
        }
        const auto id = ids.find(Behaviour());
        return id == ids.end() ? std::vector<std::string>() : std::vector{id->second};
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
        {"forges-end",
         [] {
             Forgery::Write(Forgery::Record("LOADED_PLUGINS", "true")), Faults::WriteToNowhere();
         }},
        {"forges-all",
         [] {
             Forgery::Write(Forgery::Record("LOADED_PLUGINS", "true") +
                            Forgery::Record("STATISTICS", "{}"));
             std::_Exit(0);
         }},
        {"forges-failure", Forgery::FailRun},
        {"forges-of-other-thread",
         [] { Forgery::Write(Forgery::Record("PLUGINS", PluginName(), getpid() + 1)); }},
        {"removes", [] { std::remove((Folder() + Victim() + ".so").c_str()); }},
        {"writes-for-ever", [] { Forgery::Repeat(Forgery::Record("PLUGINS", "x"), -1); }},
        {"writes-error", [] { Forgery::Write(Forgery::Record("ERROR", "just words")); }},
        {"reports-for-ever", Forgery::ReportForEver},
        {"opens-records", [] { Forgery::Repeat("] [ERROR]", 200'000); }},
        {"writes-records", [] { Forgery::Repeat(Forgery::Record("WARNING", "w"), 1'000'000); }},
        {"strays", Forgery::BlameStrangers},
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

// A codec module whose coders misbehave as the codec id says. "CODEC_ID_DECODER_ABORT" has a bad
// decoder and a good encoder, which encodes the input of the decoder's test.
// "CODEC_ID_ENCODER_ABORT" has only a bad encoder. "CODEC_ID_GOOD_0" and the like have good ones.
// The module claims to be the implementation that encodes the input of decoder tests. At the end of
// the process it prints the number of coders that still live.

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "core/media/CoreManager.h"
#include "core/media/Presets.h"
#include "core/module/Module.h"
#include "core/support/Exception.h"
#include "modules/common/CoderStream.h"
#include "tests/process/modules/Behaviour.h"
#include "tests/process/modules/Faults.h"

namespace {

using namespace Tarnex::Proc;  // NOLINT(google-build-using-namespace)
using Tarnex::Core::CoderType;

const char* const BEHAVIOURS[] = {"GIVES_NOTHING", "THROWS_STD",    "THROWS_TARNEX",
                                  "THROWS_INT",    "READS_NOTHING", "FAILS_EVERY_SECOND_TIME"};
constexpr int GOOD_COUNT = 200;
constexpr int MOST_SERVED = 30;

std::atomic<int> liveCoders = 0;

/// "TAKES_SIGNALS" for the fault "takes-signals".
std::string CodecName(const std::string& fault) {
    std::string name;
    std::transform(fault.begin(), fault.end(), std::back_inserter(name), [](unsigned char c) {
        return c == '-' ? '_' : static_cast<char>(std::toupper(c));
    });
    return name;
}

std::vector<std::string> GetBehaviours() {
    std::vector<std::string> names(std::begin(BEHAVIOURS), std::end(BEHAVIOURS));
    for (const auto& [name, action] : Faults::All()) {
        names.push_back(CodecName(name));
    }
    return names;
}

void Misbehave(const std::string& codecId) {
    for (const auto& [name, action] : Faults::All()) {
        if (codecId.ends_with("CODER_" + CodecName(name))) {
            action();
        }
    }
}

class Packet : public RefCounted<IPacket> {
    const std::uint8_t* GetData() const override { return nullptr; }
    std::size_t GetSize() const override { return 0; }
    std::int64_t GetTime() const override { return 0; }
    bool IsKey() const override { return true; }
};

template <class Base>
class Coder : public Base {
public:
    Coder(Pointer<IStream> source, std::string id)
        : Base(std::move(source), "BadCodecs"), codecId(std::move(id)) {
        ++liveCoders;
    }
    ~Coder() override { --liveCoders; }

protected:
    void Restart() override {}

    std::string codecId;
};

class Encoder : public Coder<Tarnex::Modules::CoderStream<ICodedStream>> {
public:
    Encoder(Pointer<IStream> source, std::string id, MediaKind mediaKind)
        : Coder(std::move(source), std::move(id)), kind(mediaKind) {}
    MediaKind GetMediaKind() const override { return kind; }
    Pointer<IFormatCodec> GetCodecFormat() const override {
        const auto format = IFormatCodecVideo::Create();
        format->SetCodecID(codecId);
        return format;
    }

private:
    Pointer<IData> MakeNext() override {
        if (codecId.find("ENCODER") != std::string::npos) {
            Misbehave(codecId);
        }
        return new Packet;
    }

    MediaKind kind;
};

class Decoder : public Coder<Tarnex::Modules::DecoderStream<IStreamVideo, IFrameVideo>> {
public:
    using Coder::Coder;
    Pointer<IFormatCodecVideo> GetFormatCodec() const override { return {}; }

private:
    Pointer<IData> MakeNext() override {
        Misbehave(codecId);
        return {};
    }
};

/// Like a card that serves few at a time, in any one process.
void RefuseIfCrowded() {
    static std::atomic<int> served = 0;
    if (++served > MOST_SERVED) {
        throw std::runtime_error("too many");
    }
}

/// Whatever the process: a file beside the module tells.
void FailEverySecondTime() {
    const std::string mark = Folder() + "odd";
    if (std::remove(mark.c_str()) != 0) {
        std::ofstream(mark).put('1');
        throw std::runtime_error("odd");
    }
}

/// True if the creation returns null.
bool MisbehaveAtCreation(const std::string& codecId) {
    const auto is = [&](const char* what) { return codecId.find(what) != std::string::npos; };
    if (is("THROWS_STD")) {
        throw std::runtime_error("std reason");
    }
    if (is("THROWS_TARNEX")) {
        throw Tarnex::Exception("tarnex reason");
    }
    if (is("THROWS_INT")) {
        throw 42;
    }
    if (is("CROWDED")) {
        RefuseIfCrowded();
    }
    if (is("EVERY_SECOND_TIME")) {
        FailEverySecondTime();
    }
    return is("GIVES_NOTHING");
}

class BadCodecs : public Tarnex::Module::ICodecModule {
    std::string GetImplementation() const override { return "FFMPEG_IMPL"; }

    MediaKind GetMediaKind(const std::string& codecId) override {
        return codecId.starts_with("CODEC_ID_") ? MediaKind::Video : MediaKind::None;
    }

    std::vector<std::string> GetCodecs(CoderType type) override {
        std::vector<std::string> ids{"CODEC_ID_DECODER_AND_ENCODER_SEGFAULT"};
        for (const std::string& behaviour : GetBehaviours()) {
            ids.push_back("CODEC_ID_DECODER_" + behaviour);
            if (type == CoderType::Encoder) {
                ids.push_back("CODEC_ID_ENCODER_" + behaviour);
            }
        }
        for (int i = 0; i < GOOD_COUNT; ++i) {
            ids.push_back("CODEC_ID_GOOD_" + std::to_string(i));
            ids.push_back("CODEC_ID_CROWDED_" + std::to_string(i));
        }
        return ids;
    }

    Pointer<IStreamVideo> CreateVideoDecoder(const Pointer<ICodedStream>& input) override {
        const std::string codecId = input->GetCodecFormat()->GetCodecID();
        if (MisbehaveAtCreation(codecId)) {
            return {};
        }
        return new Decoder(input, codecId);
    }

    Pointer<IStreamAudio> CreateAudioDecoder(const Pointer<ICodedStream>&) override { return {}; }

    Pointer<ICodedStream> CreateVideoEncoder(const Pointer<IStreamVideo>& stream,
                                             const Property& property) override {
        const std::string codecId = property.Get(Tarnex::Conf::IPreset::ITEM_CODEC_ID);
        const bool isGood = codecId.starts_with("CODEC_ID_DECODER");
        if (!isGood && MisbehaveAtCreation(codecId)) {
            return {};
        }
        return new Encoder(stream, codecId, MediaKind::Video);
    }

    Pointer<ICodedStream> CreateAudioEncoder(const Pointer<IStreamAudio>&,
                                             const Property&) override {
        return {};
    }
};

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    // Never freed: other threads may use it while one thread ends the process.
    static BadCodecs* const codecs = new BadCodecs;
    description.codecs = codecs;
    std::atexit([] {
        const auto resources = Tarnex::Core::CoreManager::Instance().GetComputingResourceManager();
        std::printf("coders left: %d, each on one thread: %d\n", liveCoders.load(),
                    resources->computingResourcesFlag);
    });
    return true;
}

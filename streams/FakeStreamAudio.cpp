#include "streams/FakeStreamAudio.h"

#include "timing/PhaseTimer.h"

namespace Tarnex::Core::Utils {

FakeStreamAudio::FakeStreamAudio() : FakeStream(23) {
    formatCodec->SetBitrateMode(Proc::TAG_BITRATE_MODE_CBR);
    Proc::SampleInfo info;
    info.Init(Proc::SampleFormats::S16, 44100, Proc::ChannelLayout::Stereo);
    formatCodec->SetSampleInfo(info);
    formatCodec->SetBitrate(256000);
    formatCodec->SetContainerName("");
}

Proc::Pointer<Proc::IFrameAudio> FakeStreamAudio::GetNextFrame() {
    const ScopedPhaseTimer timer(readTime);
    if (IsAtEnd()) {
        return {};
    }
    auto frame = Proc::CreateFactoryDataAudioFF()->CreateFrame(formatCodec->GetSampleInfo(), 1);
    frame->PrepareFrame();
    frame->SetFrameTime(position);
    MoveOn(frame->GetFrameLength());
    return frame;
}

Proc::Property FakeStreamAudio::GetStatistic() const {
    return MakeStatistic("FakeStreamAudio::GetStatistic");
}

}  // namespace Tarnex::Core::Utils

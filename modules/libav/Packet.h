#pragma once

#include "core/media/Frames.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// A packet of one of our own coded streams, with all that libav knows of it.
class TARNEX_TYPE Packet : public Proc::RefCounted<Proc::IPacket> {
public:
    Packet(Handle<AVPacket> packet, AVRational timeBase)
        : packet(std::move(packet)), timeBase(timeBase) {}

    const AVPacket& Get() const { return *packet; }

    const std::uint8_t* GetData() const override { return packet->data; }
    std::size_t GetSize() const override { return static_cast<std::size_t>(packet->size); }
    std::int64_t GetTime() const override { return ToMilliseconds(packet->pts); }
    bool IsKey() const override { return (packet->flags & AV_PKT_FLAG_KEY) != 0; }

private:
    std::int64_t ToMilliseconds(std::int64_t time) const {
        return time == AV_NOPTS_VALUE ? 0 : av_rescale_q(time, timeBase, MILLISECONDS);
    }

    Handle<AVPacket> packet;
    AVRational timeBase;
};

}  // namespace Tarnex::Libav

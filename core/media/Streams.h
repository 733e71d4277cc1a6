#pragma once

#include <cstddef>
#include <cstdint>

#include "core/Export.h"
#include "core/media/Formats.h"
#include "core/media/Frames.h"
#include "core/media/Property.h"
#include "core/media/RefCountable.h"

namespace Tarnex::Proc {

/// A source of frames or packets. Thread-bound: one reader at a time.
/// Contract: the Empty and Query operations are reserved; they keep the order of the virtual table.
class TARNEX_TYPE IStream : public virtual IRefCountable {
public:
    virtual void EmptyOperationA() = 0;
    virtual Property GetStreamProperty() const = 0;
    /// Length and position in stream time, in milliseconds.
    virtual std::int64_t GetDuration() const = 0;
    virtual std::int64_t GetPosition() const = 0;
    /// The next frame or packet, or null at the end. Throws if it can't be made.
    virtual Pointer<IData> ReadNext() = 0;
    /// Moves to `position`. `hint` is what the caller knows about that position, or null.
    virtual void Seek(std::int64_t position, Pointer<IRefCountable> hint) = 0;
    /// Tells the stream that reading is about to begin.
    virtual void Prepare() = 0;
    virtual bool QueryTrue() const = 0;
    virtual Pointer<const IFormatCodec> GetFormatCodecBase() const = 0;
    virtual Property GetStatistic() const = 0;
    virtual void EmptyOperationB() = 0;
    virtual bool QueryFalse() const = 0;
    virtual void EmptyOperationC() = 0;
    virtual void EmptyOperationD() = 0;
};

class TARNEX_TYPE IStreamVideo : public virtual IStream {
public:
    virtual Pointer<IFrameVideo> GetNextFrame() = 0;
    virtual Pointer<IFormatCodecVideo> GetFormatCodec() const = 0;

    Pointer<const IFormatCodec> GetFormatCodecBase() const override { return GetFormatCodec(); }
};

class TARNEX_TYPE IStreamAudio : public virtual IStream {
public:
    virtual Pointer<IFrameAudio> GetNextFrame() = 0;
    virtual Pointer<IFormatCodecAudio> GetFormatCodec() const = 0;

    Pointer<const IFormatCodec> GetFormatCodecBase() const override { return GetFormatCodec(); }
};

/// A stream of packets (`IPacket`): the output of an encoder or a track of a file.
class TARNEX_TYPE ICodedStream : public virtual IStream {
public:
    virtual MediaKind GetMediaKind() const = 0;
    virtual Pointer<IFormatCodec> GetCodecFormat() const = 0;

    Pointer<const IFormatCodec> GetFormatCodecBase() const override { return GetCodecFormat(); }
};

/// An open file. Its streams stay usable after the reader is gone.
class TARNEX_TYPE IStreamReader : public virtual IRefCountable {
public:
    virtual std::size_t GetStreamCount() const = 0;
    /// Null if the track is unusable: neither audio nor video, or of an unknown codec.
    virtual Pointer<ICodedStream> GetStream(std::size_t index) = 0;
};

}  // namespace Tarnex::Proc

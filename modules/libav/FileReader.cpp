#include "modules/libav/FileReader.h"

#include "modules/libav/CodecTable.h"
#include "modules/libav/CodedStream.h"
#include "modules/libav/CoderLog.h"
#include "modules/libav/Packet.h"
#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {
namespace {

using Proc::Pointer;

Handle<AVFormatContext> Open(const std::string& path, const CoderLog& log) {
    AVFormatContext* opened = nullptr;
    log.Check(avformat_open_input(&opened, path.c_str(), nullptr, nullptr), "opening");
    Handle<AVFormatContext> file(opened);
    log.Check(avformat_find_stream_info(opened, nullptr), "looking for streams");
    return file;
}

class FileStream : public CodedStream {
public:
    FileStream(std::string newPath, std::size_t index)
        : CodedStream(newPath), path(std::move(newPath)), index(index), log("File " + path) {
        const LogScope scope(log);
        OpenStream();
    }

    Proc::MediaKind GetMediaKind() const override {
        return ToMediaKind(stream->codecpar->codec_type);
    }
    Pointer<Proc::IFormatCodec> GetCodecFormat() const override {
        return MakeFormat(*stream->codecpar, stream->avg_frame_rate);
    }
    const AVCodecParameters& GetParameters() const override { return *stream->codecpar; }
    AVRational GetTimeBase() const override { return stream->time_base; }

    std::int64_t GetDuration() const override { return ToMilliseconds(stream->duration); }
    std::int64_t GetPosition() const override { return ToMilliseconds(position); }
    void Seek(std::int64_t newPosition, Pointer<Proc::IRefCountable>) override {
        const LogScope scope(log);
        const std::int64_t time = av_rescale_q(newPosition, MILLISECONDS, stream->time_base);
        if (time == position) {
            return;
        }
        if (time <= 0) {
            OpenStream();  // some containers can't seek back
        } else {
            log.Check(av_seek_frame(file.get(), stream->index, time, AVSEEK_FLAG_BACKWARD),
                      "seeking");
        }
        position = time;
    }

protected:
    Pointer<Proc::IData> MakeNext() override {
        const LogScope scope(log);
        Handle<AVPacket> packet = Own(av_packet_alloc());
        int result = 0;
        while ((result = av_read_frame(file.get(), packet.get())) >= 0 &&
               packet->stream_index != stream->index) {
            av_packet_unref(packet.get());
        }
        if (result == AVERROR_EOF) {
            return {};
        }
        log.Check(result, "reading");
        position = packet->dts == AV_NOPTS_VALUE ? position + packet->duration
                                                 : packet->dts + packet->duration;
        return new Packet(std::move(packet), stream->time_base);
    }

private:
    void OpenStream() {
        file = Open(path, log);
        if (index >= file->nb_streams) {
            log.Fail("has no stream " + std::to_string(index));
        }
        stream = file->streams[index];
        for (std::size_t other = 0; other < file->nb_streams; ++other) {
            file->streams[other]->discard = other == index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
        }
    }

    std::int64_t ToMilliseconds(std::int64_t time) const {
        return time == AV_NOPTS_VALUE ? 0 : av_rescale_q(time, stream->time_base, MILLISECONDS);
    }

    std::string path;
    std::size_t index;
    CoderLog log;
    Handle<AVFormatContext> file;
    AVStream* stream = nullptr;
    /// The end of what was read, in the stream's time base.
    std::int64_t position = 0;
};

class FileReader : public Proc::RefCounted<Proc::IStreamReader> {
public:
    explicit FileReader(std::string newPath) : path(std::move(newPath)), log("File " + path) {
        const LogScope scope(log);
        file = Open(path, log);
    }

    std::size_t GetStreamCount() const override { return file->nb_streams; }

    Pointer<Proc::ICodedStream> GetStream(std::size_t index) override {
        const Pointer<FileStream> stream(new FileStream(path, index));
        const bool isUsable = stream->GetMediaKind() != Proc::MediaKind::None &&
                              stream->GetParameters().codec_id != AV_CODEC_ID_NONE;
        return isUsable ? stream : nullptr;
    }

private:
    std::string path;
    CoderLog log;
    Handle<AVFormatContext> file;
};

}  // namespace

Pointer<Proc::IStreamReader> OpenFile(const ioPath& path) {
    return new FileReader(path.utf8string());
}

}  // namespace Tarnex::Libav

#include "modules/libav/FileWriter.h"

#include "modules/libav/CoderLog.h"
#include "modules/libav/Parameters.h"

namespace Tarnex::Libav {
namespace {

/// An output file of one stream. `Handle` doesn't fit: libav closes input files in one step, but
/// output files in two.
class OutputFile {
public:
    OutputFile(const std::string& path, const CoderLog& log) {
        log.Check(avformat_alloc_output_context2(&file, nullptr, nullptr, path.c_str()),
                  "choosing a container");
        const int result = avio_open(&file->pb, path.c_str(), AVIO_FLAG_WRITE);
        if (result < 0) {
            avformat_free_context(file);
            log.Fail("creating", result);
        }
    }
    ~OutputFile() {
        avio_closep(&file->pb);
        avformat_free_context(file);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    AVFormatContext* Get() { return file; }

private:
    AVFormatContext* file = nullptr;
};

AVStream& AddStream(AVFormatContext& file, const Proc::ICodedStream& source, const CoderLog& log) {
    AVStream* stream = avformat_new_stream(&file, nullptr);
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    log.Check(avcodec_parameters_copy(stream->codecpar, GetParameters(source).get()),
              "describing the stream");
    stream->codecpar->codec_tag = 0;
    stream->time_base = GetTimeBase(source);
    stream->avg_frame_rate = GetFrameRate(source);
    return *stream;
}

}  // namespace

void WriteFile(const ioPath& path, Proc::ICodedStream& source) {
    CoderLog log("File " + path.utf8string());
    const LogScope scope(log);
    OutputFile output(path.utf8string(), log);
    AVFormatContext* file = output.Get();
    const AVStream& stream = AddStream(*file, source, log);
    log.Check(avformat_write_header(file, nullptr), "writing the header");
    while (const auto data = boost::dynamic_pointer_cast<Proc::IPacket>(source.ReadNext())) {
        const Handle<AVPacket> packet = ToAvPacket(*data, GetTimeBase(source));
        av_packet_rescale_ts(packet.get(), GetTimeBase(source), stream.time_base);
        packet->stream_index = stream.index;
        log.Check(av_write_frame(file, packet.get()), "writing");
    }
    log.Check(av_write_trailer(file), "writing the end");
    avio_flush(file->pb);
    log.Check(file->pb->error, "writing");
}

}  // namespace Tarnex::Libav

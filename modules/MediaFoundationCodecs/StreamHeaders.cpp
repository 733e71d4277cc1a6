#include "modules/MediaFoundationCodecs/StreamHeaders.h"

#include <cstddef>
#include <string>

#include "core/support/Exception.h"
#include "modules/MediaFoundationCodecs/Input.h"

namespace Tarnex::MediaFoundation {

namespace {

constexpr std::size_t STREAM_INFO_SIZE = 34;
// FLAC's stream marker, then the header of the last metadata block, of STREAM_INFO_SIZE bytes.
constexpr std::uint8_t FLAC_START[] = {'f', 'L', 'a', 'C', 0x80, 0, 0, STREAM_INFO_SIZE};

Bytes FlacStart(const Codec& codec, const Bytes& streamInfo) {
    if (streamInfo.size() != STREAM_INFO_SIZE) {
        throw Exception(std::string(codec.id) + ": the extradata has " +
                        std::to_string(streamInfo.size()) + " bytes, not " +
                        std::to_string(STREAM_INFO_SIZE));
    }
    Bytes start(std::begin(FLAC_START), std::end(FLAC_START));
    start.insert(start.end(), streamInfo.begin(), streamInfo.end());
    return start;
}

Bytes BytesOf(const GValue* value) {
    GstBuffer* buffer = gst_value_get_buffer(value);
    Bytes bytes(gst_buffer_get_size(buffer));
    gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
    return bytes;
}

std::vector<Bytes> StreamHeadersOf(const GstCaps* caps) {
    std::vector<Bytes> headers;
    const GValue* array = gst_structure_get_value(gst_caps_get_structure(caps, 0), "streamheader");
    for (guint i = 0; array != nullptr && i < gst_value_array_get_size(array); ++i) {
        headers.push_back(BytesOf(gst_value_array_get_value(array, i)));
    }
    return headers;
}

void SetConfiguration(GstCaps* caps, const Codec& codec, const Bytes& extraData) {
    const GstOwner<GstBuffer> buffer = BufferOf(extraData);
    gst_caps_set_simple(caps, "stream-format", G_TYPE_STRING, codec.configuredFormat, "codec_data",
                        GST_TYPE_BUFFER, buffer.get(), nullptr);
}

void AddHeaders(StreamStart& start, const Codec& codec, const Bytes& extraData) {
    switch (codec.headers) {
        case Headers::None:
            break;
        case Headers::Config:
            SetConfiguration(start.caps.get(), codec, extraData);
            break;
        case Headers::ParameterSets:
            // A configuration record begins with its version, 1; the bytes of a stream with zeros.
            if (extraData.front() == 1) {
                SetConfiguration(start.caps.get(), codec, extraData);
                // Otherwise libde265dec reads the length-prefixed stream as plain bytes.
                gst_caps_set_simple(start.caps.get(), "alignment", G_TYPE_STRING, "au", nullptr);
            } else {
                start.headers.push_back(extraData);
            }
            break;
        case Headers::Xiph:
            start.headers = SplitXiphHeaders(extraData);
            break;
        case Headers::StreamInfo:
            start.headers.push_back(FlacStart(codec, extraData));
            break;
    }
}

void SetVideo(GstCaps* caps, const Proc::IFormatCodecVideo& format) {
    const Proc::FrameInfo info = format.GetFrameInfo();
    const Proc::FrameRate rate = format.GetFrameRate();
    if (info.width > 0 && info.height > 0) {
        gst_caps_set_simple(caps, "width", G_TYPE_INT, info.width, "height", G_TYPE_INT,
                            info.height, nullptr);
    }
    if (rate.numerator > 0 && rate.denominator > 0) {
        gst_caps_set_simple(caps, "framerate", GST_TYPE_FRACTION, rate.numerator, rate.denominator,
                            nullptr);
    }
}

void SetAudio(GstCaps* caps, const Proc::IFormatCodecAudio& format) {
    const Proc::SampleInfo info = format.GetSampleInfo();
    if (info.rate > 0) {
        gst_caps_set_simple(caps, "rate", G_TYPE_INT, info.rate, "channels", G_TYPE_INT,
                            static_cast<int>(info.layout), nullptr);
    }
}

}  // namespace

StreamStart StartOf(const Codec& codec, const Proc::IFormatCodec& format) {
    StreamStart start{.caps = GstOwner<GstCaps>(gst_caps_from_string(codec.caps)), .headers = {}};
    const auto* const video = dynamic_cast<const Proc::IFormatCodecVideo*>(&format);
    const auto* const audio = dynamic_cast<const Proc::IFormatCodecAudio*>(&format);
    if (codec.kind == Proc::MediaKind::Video && video != nullptr) {
        SetVideo(start.caps.get(), *video);
    } else if (codec.kind == Proc::MediaKind::Audio && audio != nullptr) {
        SetAudio(start.caps.get(), *audio);
    } else {
        throw Exception(std::string(codec.id) + ": the stream's format is of another media kind");
    }
    if (!format.GetExtraData().empty()) {
        AddHeaders(start, codec, format.GetExtraData());
    }
    return start;
}

Bytes ExtraDataOf(const Codec& codec, const GstCaps* caps) {
    if (codec.headers == Headers::Config) {
        const GValue* data = gst_structure_get_value(gst_caps_get_structure(caps, 0), "codec_data");
        return data == nullptr ? Bytes() : BytesOf(data);
    }
    const std::vector<Bytes> headers = StreamHeadersOf(caps);
    if (codec.headers == Headers::Xiph) {
        return JoinXiphHeaders(headers);
    }
    if (codec.headers == Headers::StreamInfo && !headers.empty() &&
        headers.front().size() > STREAM_INFO_SIZE) {
        return {headers.front().end() - STREAM_INFO_SIZE, headers.front().end()};
    }
    return {};
}

}  // namespace Tarnex::MediaFoundation

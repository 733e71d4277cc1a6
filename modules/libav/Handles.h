#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/cpu.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <new>

namespace Tarnex::Libav {

struct Release {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* coder) const { avcodec_free_context(&coder); }
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
    void operator()(SwrContext* resampler) const { swr_free(&resampler); }
};

template <class T>
using Handle = std::unique_ptr<T, Release>;

/// Takes ownership of what libav allocated. Throws `std::bad_alloc` if it is null.
template <class T>
[[nodiscard]] Handle<T> Own(T* made) {
    if (made == nullptr) {
        throw std::bad_alloc();
    }
    return Handle<T>(made);
}

inline constexpr AVRational MILLISECONDS{1, 1000};

}  // namespace Tarnex::Libav

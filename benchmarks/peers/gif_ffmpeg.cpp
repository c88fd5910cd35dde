// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include "gif_peers.h"

namespace kx::peers {

namespace {

struct Source {
    std::span<const std::uint8_t> file;
    std::size_t at = 0;

    static int read(void* self, std::uint8_t* to, int wanted) {
        auto* source = static_cast<Source*>(self);
        const std::size_t given =
            std::min(static_cast<std::size_t>(wanted), source->file.size() - source->at);
        if (given == 0) return AVERROR_EOF;
        std::memcpy(to, source->file.data() + source->at, given);
        source->at += given;
        return static_cast<int>(given);
    }

    static std::int64_t seek(void* self, std::int64_t to, int whence) {
        auto* source = static_cast<Source*>(self);
        const auto size = static_cast<std::int64_t>(source->file.size());
        if (whence == AVSEEK_SIZE) return size;
        if (whence == SEEK_CUR) to += static_cast<std::int64_t>(source->at);
        if (whence == SEEK_END) to += size;
        source->at = static_cast<std::size_t>(std::clamp<std::int64_t>(to, 0, size));
        return static_cast<std::int64_t>(source->at);
    }
};

struct Closer {
    void operator()(AVFormatContext* format) const {
        AVIOContext* io = format->pb;
        avformat_close_input(&format);
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

using Format = std::unique_ptr<AVFormatContext, Closer>;
using Codec = std::unique_ptr<AVCodecContext, Closer>;

Format openFormat(Source& source) {
    constexpr int kBuffer = 65536;
    AVFormatContext* format = avformat_alloc_context();
    format->pb = avio_alloc_context(static_cast<unsigned char*>(av_malloc(kBuffer)), kBuffer, 0, &source,
                                    Source::read, nullptr, Source::seek);
    AVIOContext* io = format->pb;
    AVDictionary* options = nullptr;
    av_dict_set(&options, "ignore_loop", "1", 0);
    av_dict_set(&options, "min_delay", "0", 0);
    const int opened = avformat_open_input(&format, nullptr, av_find_input_format("gif"), &options);
    av_dict_free(&options);
    if (opened >= 0) return Format(format);
    av_freep(&io->buffer);
    avio_context_free(&io);
    return nullptr;
}

Codec openCodec(const AVFormatContext& format) {
    Codec codec(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_GIF)));
    avcodec_parameters_to_context(codec.get(), format.streams[0]->codecpar);
    codec->thread_count = 1;
    return avcodec_open2(codec.get(), nullptr, nullptr) >= 0 ? std::move(codec) : nullptr;
}

GIFPicture copyOut(const AVFrame& frame, std::vector<std::uint8_t>& scratch) {
    const auto width = static_cast<std::size_t>(frame.width), height = static_cast<std::size_t>(frame.height);
    scratch.resize(width * height * 4);
    for (std::size_t y = 0; y < height; ++y)
        std::memcpy(scratch.data() + y * width * 4,
                    frame.data[0] + static_cast<std::ptrdiff_t>(y) * frame.linesize[0], width * 4);
    return {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), scratch};
}

}  // namespace

int gifWithFFmpeg(std::span<const std::uint8_t> file, std::vector<std::uint8_t>& scratch,
                  const GIFSink& sink) {
    av_log_set_level(AV_LOG_QUIET);
    Source source{file};
    const Format format = openFormat(source);
    if (!format || format->nb_streams == 0) return -1;
    const Codec codec = openCodec(*format);
    if (!codec) return -1;
    const std::unique_ptr<AVPacket, Closer> packet(av_packet_alloc());
    const std::unique_ptr<AVFrame, Closer> frame(av_frame_alloc());
    int frames = 0;
    while (av_read_frame(format.get(), packet.get()) >= 0) {
        avcodec_send_packet(codec.get(), packet.get());
        av_packet_unref(packet.get());
        while (avcodec_receive_frame(codec.get(), frame.get()) >= 0) {
            ++frames;
            if (!sink(copyOut(*frame, scratch))) return frames;
        }
    }
    return frames;
}

}  // namespace kx::peers

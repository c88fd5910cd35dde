// SPDX-License-Identifier: MIT

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libavutil/display.h>
#include <libswscale/swscale.h>
}

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/VideoModule.h>

namespace kx {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = VideoModule::Reason::Kind;

// Containers that hold their frames themselves: play lists, which name other files and hosts, stay out.
constexpr const char* kContainers = "mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,avi,mpegts,mpeg,ogg,flv,asf";
constexpr std::int64_t kProbedBytes = 5 << 20;
// At once: 64 Mi pixels of 8 bytes. Else a header of a few bytes gets up to 2 GiB for the table it promises.
constexpr std::size_t kLargestAllocation = std::size_t{512} << 20;

void setReason(VideoModule::Reason& reason, Kind kind, const char* text) {
    reason.kind = kind;
    std::snprintf(reason.text, sizeof reason.text, "%s", text);
}

template <class T, void (*Free)(T**)>
struct Freed {
    void operator()(T* object) const { Free(&object); }
};
using Packet = std::unique_ptr<AVPacket, Freed<AVPacket, av_packet_free>>;
using Frame = std::unique_ptr<AVFrame, Freed<AVFrame, av_frame_free>>;
using Codec = std::unique_ptr<AVCodecContext, Freed<AVCodecContext, avcodec_free_context>>;
using Container = std::unique_ptr<AVFormatContext, Freed<AVFormatContext, avformat_close_input>>;

/// One file being read. Each step answers false and says why.
class Video {
  public:
    Video(const VideoModule::Limits& limits, VideoModule::Reason& reason)
        : limits_(limits),
          reason_(reason),
          deadline_(Clock::now() + std::chrono::milliseconds(limits.milliseconds)) {}

    bool open(const char* path) { return openContainer(path) && openDecoder(); }

    /// The frame shown at the time; null after a reason was given.
    AVFrame* frameAt(VideoModule::Time time) {
        const std::int64_t target = positionOf(time);
        // A failing seek leaves the file at its start, from where the frame is found too.
        if (target > start() &&
            av_seek_frame(container_.get(), stream_->index, target, AVSEEK_FLAG_BACKWARD) >= 0)
            avcodec_flush_buffers(codec_.get());
        while (next()) {
            const bool isLater =
                decoded_->best_effort_timestamp != AV_NOPTS_VALUE && decoded_->best_effort_timestamp > target;
            if (isLater && hasShown_) break;
            std::swap(shown_, decoded_);
            hasShown_ = true;
            if (isLater) break;
        }
        if (!hasShown_ && reason_.kind == Kind::None)
            setReason(reason_, Kind::Corrupt, "no frame can be decoded");
        return hasShown_ && reason_.kind == Kind::None ? shown_.get() : nullptr;
    }

    VideoModule::Time timeOf(const AVFrame& frame) const {
        const bool isKnown = frame.best_effort_timestamp != AV_NOPTS_VALUE;
        const std::int64_t at = isKnown ? av_sat_sub64(frame.best_effort_timestamp, start()) : 0;
        return {av_rescale(at, stream_->time_base.num, 1), stream_->time_base.den};
    }

    /// Clockwise quarter turns that bring the picture upright.
    int quarterTurns() const {
        std::size_t size = 0;
        const std::uint8_t* const data = av_stream_get_side_data(stream_, AV_PKT_DATA_DISPLAYMATRIX, &size);
        if (!data || size < 9 * sizeof(std::int32_t)) return 0;
        const double angle = -av_display_rotation_get(reinterpret_cast<const std::int32_t*>(data));
        return std::isnan(angle) ? 0 : (static_cast<int>(std::lround(angle / 90)) % 4 + 4) % 4;
    }

  private:
    std::int64_t start() const { return stream_->start_time == AV_NOPTS_VALUE ? 0 : stream_->start_time; }

    /// In the units of the stream, counted as the stream does; before the start counts as the start.
    std::int64_t positionOf(VideoModule::Time time) const {
        const std::int64_t units = av_rescale_q_rnd(std::max<std::int64_t>(time.value, 0),
                                                    {1, time.timescale}, stream_->time_base, AV_ROUND_DOWN);
        return units < 0 ? INT64_MAX : av_sat_add64(units, start());  // below zero: more than can be counted
    }

    bool openContainer(const char* path) {
        AVFormatContext* context = avformat_alloc_context();
        if (!context) return fail(Kind::TooLarge, "no memory");
        context->interrupt_callback = {
            [](void* video) { return static_cast<Video*>(video)->isLate() ? 1 : 0; }, this};
        AVDictionary* options = nullptr;
        av_dict_set(&options, "protocol_whitelist", "file", 0);
        av_dict_set(&options, "format_whitelist", kContainers, 0);
        av_dict_set_int(&options, "probesize", kProbedBytes, 0);
        // The scheme in front keeps a path from being taken for another protocol's address.
        int answer = avformat_open_input(&context, (std::string("file:") + path).c_str(), nullptr, &options);
        av_dict_free(&options);
        if (answer < 0) return failed(answer);
        container_.reset(context);
        answer = avformat_find_stream_info(context, nullptr);
        return answer >= 0 || failed(answer);
    }

    bool openDecoder() {
        const AVCodec* decoder = nullptr;
        const int index = av_find_best_stream(container_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
        if (index == AVERROR_STREAM_NOT_FOUND) return fail(Kind::Corrupt, "no moving picture in it");
        if (index < 0 || !decoder) return fail(Kind::Unsupported, "no decoder for it");
        stream_ = container_->streams[index];
        for (unsigned other = 0; other < container_->nb_streams; ++other)
            if (container_->streams[other] != stream_) container_->streams[other]->discard = AVDISCARD_ALL;
        codec_.reset(avcodec_alloc_context3(decoder));
        if (!codec_ || avcodec_parameters_to_context(codec_.get(), stream_->codecpar) < 0)
            return fail(Kind::TooLarge, "no memory");
        if (!allows(codec_->width, codec_->height)) return fail(Kind::TooLarge, "frames of too many pixels");
        codec_->max_pixels = static_cast<std::int64_t>(limits_.pixels);
        codec_->thread_count = 1;  // one frame is wanted: more threads only delay it
        const int answer = avcodec_open2(codec_.get(), decoder, nullptr);
        return answer >= 0 || failed(answer);
    }

    /// Decodes one more frame into `decoded_`. Packets that cannot be decoded are passed over.
    bool next() {
        for (;;) {
            if (isLate()) return fail(Kind::TimedOut, "takes too long");
            const int answer = avcodec_receive_frame(codec_.get(), decoded_.get());
            if (answer >= 0) return true;
            if (answer == AVERROR_EOF || isAtEnd_) return false;
            feed();
        }
    }

    void feed() {
        const int answer = av_read_frame(container_.get(), packet_.get());
        if (answer < 0) {
            isAtEnd_ = avcodec_send_packet(codec_.get(), nullptr) < 0;
            return;
        }
        if (packet_->stream_index == stream_->index) (void)avcodec_send_packet(codec_.get(), packet_.get());
        av_packet_unref(packet_.get());
    }

    bool allows(int wide, int high) const {
        return wide >= 0 && high >= 0 &&
               static_cast<std::uint64_t>(wide) * static_cast<std::uint64_t>(high) <= limits_.pixels;
    }
    bool isLate() const { return Clock::now() >= deadline_; }
    bool fail(Kind kind, const char* text) {
        setReason(reason_, kind, text);
        return false;
    }
    bool failed(int answer) {
        if (isLate()) return fail(Kind::TimedOut, "takes too long");
        char text[AV_ERROR_MAX_STRING_SIZE] = "";
        av_strerror(answer, text, sizeof text);
        return fail(answer == AVERROR(ENOENT) ? Kind::Missing : Kind::Corrupt, text);
    }

    const VideoModule::Limits& limits_;
    VideoModule::Reason& reason_;
    const Clock::time_point deadline_;
    Container container_;
    AVStream* stream_ = nullptr;
    Codec codec_;
    Packet packet_{av_packet_alloc()};
    Frame decoded_{av_frame_alloc()};
    Frame shown_{av_frame_alloc()};
    bool hasShown_ = false;
    bool isAtEnd_ = false;
};

/// The frame in its stored direction, as 0xFFRRGGBB.
bool convert(const AVFrame& frame, std::uint32_t* pixels) {
    SwsContext* const scaler = sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width, frame.height,
        AV_PIX_FMT_BGRA, SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT, nullptr, nullptr, nullptr);
    if (!scaler) return false;
    // Where a recording does not say, high definition has BT.709's colours by custom, less has BT.601's.
    const int matrix = frame.colorspace != AVCOL_SPC_UNSPECIFIED ? static_cast<int>(frame.colorspace)
                       : frame.height >= 720                     ? SWS_CS_ITU709
                                                                 : SWS_CS_ITU601;
    sws_setColorspaceDetails(scaler, sws_getCoefficients(matrix), frame.color_range == AVCOL_RANGE_JPEG,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    std::uint8_t* const rows[] = {reinterpret_cast<std::uint8_t*>(pixels), nullptr, nullptr, nullptr};
    const int strides[] = {frame.width * 4, 0, 0, 0};
    const int done = sws_scale(scaler, frame.data, frame.linesize, 0, frame.height, rows, strides);
    sws_freeContext(scaler);
    std::for_each(pixels, pixels + std::size_t(frame.width) * std::size_t(frame.height),
                  [](std::uint32_t& pixel) { pixel |= 0xFF000000; });
    return done == frame.height;
}

void turn(const std::uint32_t* from, std::size_t wide, std::size_t high, int quarterTurns,
          std::uint32_t* to) {
    for (std::size_t y = 0; y < high; ++y) {
        for (std::size_t x = 0; x < wide; ++x) {
            const std::size_t at = quarterTurns == 1   ? x * high + (high - 1 - y)
                                   : quarterTurns == 2 ? (high - 1 - y) * wide + (wide - 1 - x)
                                                       : (wide - 1 - x) * high + y;
            to[at] = from[y * wide + x];
        }
    }
}

bool draw(const AVFrame& frame, int quarterTurns, std::uint32_t* pixels) {
    if (quarterTurns == 0) return convert(frame, pixels);
    const auto wide = static_cast<std::size_t>(frame.width);
    const auto high = static_cast<std::size_t>(frame.height);
    const std::unique_ptr<std::uint32_t[]> stored(new (std::nothrow) std::uint32_t[wide * high]);
    if (!stored || !convert(frame, stored.get())) return false;
    turn(stored.get(), wide, high, quarterTurns, pixels);
    return true;
}

bool check(const char* path, const VideoModule::Limits* limits, VideoModule::Reason* reason) {
    *reason = {};
    Video video(*limits, *reason);
    return video.open(path) && video.frameAt({0, 1});
}

bool takeFrame(const char* path, VideoModule::Time time, const VideoModule::Limits* limits,
               VideoModule::Allocate allocate, void* context, VideoModule::Time* actual,
               VideoModule::Reason* reason) {
    *reason = {};
    Video video(*limits, *reason);
    if (!video.open(path)) return false;
    const AVFrame* const frame = video.frameAt(time);
    if (!frame) return false;
    const int turns = video.quarterTurns();
    const auto wide = static_cast<std::uint32_t>(turns % 2 == 0 ? frame->width : frame->height);
    const auto high = static_cast<std::uint32_t>(turns % 2 == 0 ? frame->height : frame->width);
    // The decoder refuses what is beyond `max_pixels`; this holds for those that do not ask.
    std::uint32_t* const pixels =
        std::uint64_t{wide} * high <= limits->pixels ? allocate(context, wide, high) : nullptr;
    if (!pixels) setReason(*reason, Kind::TooLarge, "frames of too many pixels");
    if (!pixels) return false;
    *actual = video.timeOf(*frame);
    if (draw(*frame, turns, pixels)) return true;
    setReason(*reason, Kind::Unsupported, "pixels of a kind that cannot be drawn");
    return false;
}

constexpr VideoModule kModule{
    .version = VideoModule::kVersion, .libraryVersion = av_version_info, .check = check, .frame = takeFrame};

}  // namespace

}  // namespace kx

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost*) {
    av_log_set_level(AV_LOG_QUIET);  // damaged files are reported by what the calls answer
    av_max_alloc(kx::kLargestAllocation);
    return &kx::kModule;
}

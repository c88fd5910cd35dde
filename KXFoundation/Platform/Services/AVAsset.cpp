// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Platform/Services/VideoModule.h>

namespace kx {

namespace {

constexpr VideoModule::Limits kLimits{.pixels = std::uint64_t{64} << 20, .milliseconds = 10'000};

Result<const VideoModule*> videoModule() {
    return openModule<VideoModule>("ffmpeg");
}

ErrorKind kindOf(VideoModule::Reason::Kind kind) {
    using Kind = VideoModule::Reason::Kind;
    switch (kind) {
        case Kind::Missing:
            return ErrorKind::Missing;
        case Kind::Corrupt:
            return ErrorKind::Corrupt;
        case Kind::TooLarge:
            return ErrorKind::TooLarge;
        case Kind::TimedOut:
            return ErrorKind::TimedOut;
        case Kind::Unsupported:
            return ErrorKind::Unsupported;
        case Kind::None:
            break;
    }
    return ErrorKind::Failed;
}

Error errorOf(const std::string& path, const VideoModule::Reason& reason) {
    return {kindOf(reason.kind), 0, path + ": " + reason.text};
}

bool canBePath(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

std::uint32_t* allocatePixels(void* context, std::uint32_t wide, std::uint32_t high) {
    auto& buffer = *static_cast<PixelBuffer*>(context);
    buffer = {wide, high, std::vector<std::uint32_t>(std::size_t{wide} * high)};
    return buffer.pixels.data();
}

}  // namespace

std::shared_ptr<AVURLAsset> AVURLAsset::assetWithURL(const NSURL& url) {
    return make<AVURLAsset>(url);
}

bool AVURLAsset::init(const NSURL& url) {
    if (url.isFileURL()) path_ = url.path();
    return Super::init();
}

std::shared_ptr<AVAssetImageGenerator> AVAssetImageGenerator::assetImageGeneratorWithAsset(
    std::shared_ptr<AVURLAsset> asset) {
    return make<AVAssetImageGenerator>(std::move(asset));
}

bool AVAssetImageGenerator::init(std::shared_ptr<AVURLAsset> asset) {
    asset_ = std::move(asset);
    return asset_ && Super::init();
}

Result<PixelBuffer> AVAssetImageGenerator::copyImageAtTime(CMTime time, CMTime* actualTime) const {
    const std::string& path = asset_->path();
    if (!time.isValid() || !canBePath(path)) return Error{ErrorKind::Missing, 0, path + ": no such frame"};
    auto module = videoModule();
    if (!module) return std::move(module).error();
    PixelBuffer buffer;
    VideoModule::Time actual{};
    VideoModule::Reason reason{};
    if (!(*module)->frame(path.c_str(), {time.value, time.timescale}, &kLimits, allocatePixels, &buffer,
                          &actual, &reason))
        return errorOf(path, reason);
    if (actualTime) *actualTime = CMTimeMake(actual.value, actual.timescale);
    return buffer;
}

Result<std::string> videoLibrary() {
    const auto module = videoModule();
    if (!module) return module.error();
    return "FFmpeg " + std::string((*module)->libraryVersion());
}

Result<void> checkVideo(const std::string& path) {
    if (!canBePath(path)) return Error{ErrorKind::Missing, 0, path};
    auto module = videoModule();
    if (!module) return std::move(module).error();
    VideoModule::Reason reason{};
    if (!(*module)->check(path.c_str(), &kLimits, &reason)) return errorOf(path, reason);
    return {};
}

}  // namespace kx

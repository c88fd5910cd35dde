// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Media/GIFFiles.h>
#include <KXFoundation/Media/KXGIFImageView.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

constexpr std::uint64_t kMostKept = 20;
constexpr std::size_t kMostAtOnce = 4;
constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 30;

constinit ProcessState<GIFFiles> files;

GIFFiles::Outcome decodeFile(const std::string& path) {
    GIFFiles::Outcome outcome;
    const auto contents = readImageFile(path, kLargestFile);
    if (!contents) return outcome;
    outcome.isReadable = true;
    KXGIFImageView::kx_animatedGIFWithData(*contents, [&](const auto& image) { outcome.image = image; });
    return outcome;
}

}  // namespace

GIFFiles& GIFFiles::shared() {
    return files.get();
}

GIFFiles::GIFFiles() : cache_(make<NSCache>()), parseQueue_("gifParseQueue", kMostAtOnce) {
    cache_->setCountLimit(kMostKept);
}

std::shared_ptr<NSImage> GIFFiles::kept(const std::string& path) const {
    return objectCast<NSImage>(cache_->objectForKey(path).asObject());
}

void GIFFiles::keep(const std::string& path, const std::shared_ptr<NSImage>& image) {
    cache_->setObject(Value(image), path);
}

GIFFiles::Outcome GIFFiles::decode(const std::string& path) {
    const auto info = FileSystem::slot().current().info(path);
    const auto file = info ? std::optional(*info) : std::nullopt;
    MutexLock lock(mutex_);
    if (const auto found = decodings_.find(path); found != decodings_.end() && found->second->file == file) {
        const auto decoding = found->second;
        while (!decoding->isDone) Executor::slot().current().wait(mutex_, done_);
        return decoding->outcome;
    }
    const auto decoding = decodings_[path] = std::make_shared<Decoding>();
    decoding->file = file;
    lock.unlock();
    Outcome outcome = decodeFile(path);
    lock.lock();
    decoding->outcome = outcome;
    decoding->isDone = true;
    const auto own = decodings_.find(path);
    if (own != decodings_.end() && own->second == decoding) decodings_.erase(own);
    Executor::slot().current().wake(done_);
    return outcome;
}

}  // namespace kx

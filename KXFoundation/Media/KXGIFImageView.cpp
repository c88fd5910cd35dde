// SPDX-License-Identifier: MIT

#include <utility>
#include <vector>

#include <KXFoundation/Media/GIFFiles.h>
#include <KXFoundation/Media/KXGIFImageView.h>
#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Platform/Graphics/ImageSource.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

namespace kx {

namespace {

std::shared_ptr<NSImage> frameImage(ImageSource& source, std::size_t index, float duration) {
    const Value properties = source.propertiesAtIndex(index);
    const auto side = [&](std::string_view key) {
        return static_cast<double>(properties[key].asInteger().value_or(0));
    };
    auto image = NSImage::initWithSize({side(ImageSource::kPixelWidth), side(ImageSource::kPixelHeight)});
    image->addRepresentation(source.imageRepAtIndex(index));
    NSImage_LoopCount::setDuration(image, duration);
    return image;
}

std::shared_ptr<NSImage> animation(const std::shared_ptr<ImageSource>& source) {
    const Value gif = source->properties()[ImageSource::kGIFDictionary];
    auto frames = std::make_shared<std::vector<std::shared_ptr<NSImage>>>();
    double total = 0;
    for (std::size_t i = 0; i < source->count(); ++i) {
        const float duration = KXGIFImageView::frameDurationAtIndex(i, source);
        total += duration;
        frames->push_back(frameImage(*source, i, duration));
    }
    auto image = NSImage::initWithSize({});
    NSImage_LoopCount::setImages(image, std::move(frames));
    NSImage_LoopCount::setDuration(image, total);
    NSImage_LoopCount::setLoopCount(image, gif[ImageSource::kLoopCount].asInteger().value_or(0));
    return image;
}

std::shared_ptr<NSImage> stillImage(ImageSource& source) {
    return NSImage::initWithBitmap(objectCast<NSBitmapImageRep>(source.imageRepAtIndex(0)));
}

}  // namespace

std::shared_ptr<KXGIFImageView> KXGIFImageView::initWithGIFPath(std::optional<std::string_view> path) {
    return make<KXGIFImageView>(path);
}

bool KXGIFImageView::init(std::optional<std::string_view> path) {
    if (!Super::init()) return false;
    setGIFPath(path);
    return true;
}

void KXGIFImageView::setFilePath(std::optional<std::string_view> path) {
    filePath_ = path;
}

void KXGIFImageView::setLoopCount(std::int64_t) {}

void KXGIFImageView::renderImageViewWithImg(const std::shared_ptr<NSImage>& image) {
    const ImageList frames = NSImage_LoopCount::images(image);
    if (!frames || frames->empty()) return setImage(image);
    setLoopCount(NSImage_LoopCount::loopCount(image));
}

void KXGIFImageView::setGIFPath(std::optional<std::string_view> path) {
    std::string key(path.value_or(""));  // the path may be a part of the view's own
    setFilePath(path);
    if (const auto image = GIFFiles::shared().kept(key)) return renderImageViewWithImg(image);
    decodeInBackground(std::move(key));
}

void KXGIFImageView::decodeInBackground(std::string path) {
    GIFFiles::shared().parseQueue().addOperation([view = self(), path = std::move(path)] {
        const GIFFiles::Outcome outcome = GIFFiles::shared().decode(path);
        DispatchQueue::main().async([view, path, outcome] {
            if (!outcome.isReadable) return view->setImage(nullptr);
            view->showDecoded(path, outcome.image);
        });
    });
}

void KXGIFImageView::showDecoded(const std::string& path, const std::shared_ptr<NSImage>& image) {
    if (path == filePath_ && image) {
        renderImageViewWithImg(image);
        GIFFiles::shared().keep(path, image);
    } else {
        setLoopCount(0);
        setImage(nullptr);
    }
}

void KXGIFImageView::kx_animatedGIFWithData(const Value& data, const Completion& complete) {
    std::shared_ptr<NSImage> image;
    if (const auto source = ImageSource::initWithData(data))
        image = source->count() > 1 ? animation(source) : stillImage(*source);
    if (complete) complete(image);
}

float KXGIFImageView::frameDurationAtIndex(std::uint64_t index, const std::shared_ptr<ImageSource>& source) {
    const Value gif = source ? source->propertiesAtIndex(index)[ImageSource::kGIFDictionary] : Value();
    const auto unclamped = gif[ImageSource::kUnclampedDelayTime].asReal();
    const auto delay = unclamped ? unclamped : gif[ImageSource::kDelayTime].asReal();
    const auto duration = static_cast<float>(delay.value_or(0.1));
    return duration < 0.011F ? 0.1F : duration;
}

}  // namespace kx

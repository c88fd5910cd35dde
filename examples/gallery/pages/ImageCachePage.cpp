// SPDX-License-Identifier: MIT

#include "pages/ImageCachePage.h"

#include <array>
#include <string>
#include <vector>

#include <KXFoundation/Cache/KXImageCache.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Views/NSImageView.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr NSSize kPicture{132, 88};
constexpr double kNameWidth = 190;
constexpr double kLine = 18;

struct Picture {
    const char* name;
    const char* extension;
    std::uint64_t mask;  ///< where it is stored
};
constexpr Picture kPictures[] = {
    {"harbour", "jpg", KXImageCache::kMemory},
    {"hills", "jpg", KXImageCache::kDisk},
    {"balloons", "png", KXImageCache::kBoth},
};
constexpr std::array kMasks{KXImageCache::kMemory, KXImageCache::kDisk, KXImageCache::kBoth};

std::shared_ptr<KXImageCache> openCache() {
    const auto caches = baseDirectory(BaseDirectory::Cache);
    return caches ? KXImageCache::initWithPath(*caches + "/org.kxfoundation.gallery.images") : nullptr;
}

std::string sourceText(std::uint64_t source) {
    switch (source) {
        case KXImageCache::kMemory:
            return text("image_cache.from_memory");
        case KXImageCache::kDisk:
            return text("image_cache.from_disk");
        default:
            return text("general.none");
    }
}

struct Found {
    std::shared_ptr<NSImage> image;
    std::uint64_t source = 0;
};

std::shared_ptr<NSView> line(const std::string& words, NSSize size) {
    auto view = make<NSView>(NSRect({}, size));
    const auto shown = label(words, 12);
    shown->setFrame(directed({{0, (size.height - kLine) / 2}, {size.width, kLine}}, size.width));
    view->addSubview(shown);
    return view;
}

std::shared_ptr<NSView> tile(const Found& found) {
    auto view = make<NSView>(NSRect(0, 0, kPicture.width, kPicture.height + kLine));
    auto image = NSImageView::imageViewWithImage(found.image);
    image->setImageScaling(NSImageScaling::ProportionallyUpOrDown);
    image->setFrame({{}, kPicture});
    view->addSubview(image);
    const auto source = label(sourceText(found.source), 11);
    source->setTextColor(NSColor::secondaryLabelColor());
    source->setFrame({0, kPicture.height + 2, kPicture.width, kLine - 2});
    view->addSubview(source);
    return view;
}

void addHeads(Column& column) {
    std::vector heads{line("", {kNameWidth, kLine})};
    for (const std::uint64_t mask : kMasks)
        heads.push_back(
            line(text("image_cache.asked") + " " + std::to_string(mask), {kPicture.width, kLine}));
    column.tableRow(heads, kLine);
}

}  // namespace

struct ImageCachePage::State : std::enable_shared_from_this<State> {
    const std::shared_ptr<KXImageCache> cache = openCache();
    using Row = std::array<Found, kMasks.size()>;
    std::array<Row, std::size(kPictures)> found;
    std::size_t rounds = 0;  // of reading, so far
    bool wasRead = false;

    void store() {
        for (const auto& [name, extension, mask] : kPictures) {
            const auto path = NSBundle::mainBundle()->pathForResource(name, extension);
            cache->setImage(NSImage::initWithContentsOfFile(path), name, mask);
        }
    }
    void clear() {
        for (const Picture& picture : kPictures) cache->removeImageForKey(picture.name);
    }

    /// Every picture from each choice of stores, one after the other: what is found on disk is in memory
    /// after that. The page is made anew with the last answer.
    void read(Gallery& gallery) {
        wasRead = true;
        ++rounds;
        readFrom(0, gallery);
    }
    void readFrom(std::size_t cell, Gallery& gallery) {
        if (cell == found.size() * kMasks.size()) return gallery.rebuild();
        const std::size_t i = cell / kMasks.size();
        const std::size_t j = cell % kMasks.size();
        cache->getImageForKey(kPictures[i].name, kMasks[j],
                              [=, this, weak = weak_from_this(), round = rounds, &gallery](
                                  const std::shared_ptr<NSImage>& image, std::uint64_t source) {
                                  const auto alive = weak.lock();
                                  if (!alive || round != rounds) return;
                                  found[i][j] = {image, source};
                                  readFrom(cell + 1, gallery);
                              });
    }
};

ImageCachePage::ImageCachePage() : state_(std::make_shared<State>()) {}
ImageCachePage::~ImageCachePage() = default;

void ImageCachePage::build(Column& column, Gallery& gallery) {
    column.title(text("image_cache.title"));
    column.paragraph(text("image_cache.explanation"));
    State& state = *state_;
    if (!state.cache) return column.paragraph(text("general.none"));
    if (!state.wasRead) state.read(gallery);
    const auto thenRead = [&state, &gallery](void (*change)(State&)) {
        return [&state, &gallery, change] {
            change(state);
            state.read(gallery);
        };
    };
    column.space(8);
    column.row({pushButton("image_cache.store", thenRead([](State& s) { s.store(); })),
                pushButton("image_cache.forget",
                           thenRead([](State& s) { s.cache->memoryCache()->removeAllObjects(); })),
                pushButton("button.clear", thenRead([](State& s) { s.clear(); }))});
    column.space(8);
    addHeads(column);
    for (std::size_t i = 0; i < state.found.size(); ++i) {
        const std::string name = text("image_cache.stored") + " " + std::to_string(kPictures[i].mask);
        std::vector cells{line(name, {kNameWidth, kPicture.height + kLine})};
        for (const Found& found : state.found[i]) cells.push_back(tile(found));
        column.tableRow(cells, kPicture.height + kLine);
    }
    column.space(8);
    column.pair(text("cache.memory"), std::to_string(state.cache->memoryCache()->totalCount()));
    column.pair(text("cache.cost"), std::to_string(state.cache->memoryCache()->totalCost()));
    column.pair(text("cache.disk"), std::to_string(state.cache->diskCache()->totalCount()));
}

void ImageCachePage::demonstrate(Gallery& gallery) {
    if (!state_->cache) return;
    state_->store();
    state_->read(gallery);
}

}  // namespace gallery

// SPDX-License-Identifier: MIT

#include "pages/AlbumPage.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Core/KXPhotoFileInfo.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Services/Photos/PHAsset.h>
#include <KXFoundation/Platform/Views/NSImageView.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr std::size_t kShownInRow = 4;
constexpr std::size_t kShown = 2 * kShownInRow;  // of the album, the latest
constexpr NSSize kThumbnail{160, 107};
constexpr double kNameHeight = 18;

struct Media {
    const char* name;
    const char* extension;
    std::uint64_t type;
};
constexpr Media kMedia[] = {
    {"harbour", "jpg", KXPhotoFileInfo::kImage},
    {"hills", "jpg", KXPhotoFileInfo::kImage},
    {"ferry", "mp4", KXPhotoFileInfo::kVideo},
};

struct Shown {
    std::string name;
    std::shared_ptr<NSImage> image;
};

Shown thumbnail(const std::string& path, bool isVideo) {
    return {std::filesystem::path(path).filename(),
            isVideo ? KXPhotoUtils::getThumbnailForMP4(path) : NSImage::initWithContentsOfFile(path)};
}

std::string pathOf(const Media& media) {
    return NSBundle::mainBundle()->pathForResource(media.name, media.extension).value_or("");
}

/// All that takes time to find out.
struct Contents {
    std::vector<Shown> bundle, album;
    std::size_t count = 0;
    std::string folder;
};

Contents load() {
    Contents contents;
    for (const Media& media : kMedia)
        contents.bundle.push_back(thumbnail(pathOf(media), media.type == KXPhotoFileInfo::kVideo));
    const auto assets = PHAsset::fetchAssetsInAssetCollection(KXPhotoUtils::getAlbum(KXAppUtils::appName()));
    contents.count = assets.size();
    for (std::size_t i = assets.size() - std::min(assets.size(), kShown); i < assets.size(); ++i)
        contents.album.push_back(
            thumbnail(assets[i]->path(), assets[i]->mediaType() == PHAssetMediaType::Video));
    if (!assets.empty()) contents.folder = std::filesystem::path(assets.back()->path()).parent_path();
    return contents;
}

std::vector<std::shared_ptr<KXPhotoFileInfo>> filesOfBundle() {
    std::vector<std::shared_ptr<KXPhotoFileInfo>> files;
    for (const Media& media : kMedia) {
        files.push_back(make<KXPhotoFileInfo>());
        files.back()->setUrl(NSURL::fileURLWithPath(pathOf(media)));
        files.back()->setType(media.type);
    }
    return files;
}

std::shared_ptr<NSView> tile(const Shown& shown) {
    auto view = make<NSView>(NSRect(0, 0, kThumbnail.width, kThumbnail.height + kNameHeight));
    auto image = NSImageView::imageViewWithImage(shown.image);
    image->setImageScaling(NSImageScaling::ProportionallyUpOrDown);
    image->setFrame({{}, kThumbnail});
    view->addSubview(image);
    const auto name = label(shown.name, 11);
    name->setTextColor(NSColor::secondaryLabelColor());
    name->setFrame({0, kThumbnail.height + 2, kThumbnail.width, kNameHeight - 2});
    view->addSubview(name);
    return view;
}

void addTiles(Column& column, const std::vector<Shown>& all) {
    for (std::size_t first = 0; first < all.size(); first += kShownInRow) {
        std::vector<std::shared_ptr<NSView>> row;
        for (std::size_t i = first; i < std::min(first + kShownInRow, all.size()); ++i)
            row.push_back(tile(all[i]));
        column.row(row, kThumbnail.height + kNameHeight);
    }
}

}  // namespace

struct AlbumPage::State : std::enable_shared_from_this<State> {
    std::optional<Contents> contents;  // absent until it is loaded
    std::optional<std::string> outcome;
    bool isExporting = false;

    /// Calls on the main thread, unless the page is gone by then.
    static void onMain(const std::weak_ptr<State>& state, std::function<void(State&)> action) {
        DispatchQueue::main().async([state, action = std::move(action)] {
            if (const auto alive = state.lock()) action(*alive);
        });
    }

    void refresh(Gallery& gallery) {
        DispatchQueue::shared().async([weak = weak_from_this(), &gallery] {
            onMain(weak, [loaded = load(), &gallery](State& state) {
                state.contents = loaded;
                gallery.rebuild();
            });
        });
    }

    /// Off the main thread: the album may have to be made first, and that is waited for.
    void exportFiles(Gallery& gallery) {
        if (std::exchange(isExporting, true)) return;
        DispatchQueue::shared().async([weak = weak_from_this(), &gallery] {
            KXPhotoUtils::createAssets(filesOfBundle(), KXPhotoUtils::defaultAlbum(),
                                       [weak, &gallery](bool success, const std::shared_ptr<NSError>& error) {
                                           onMain(weak, [success, error, &gallery](State& state) {
                                               state.noteOutcome(success, error);
                                               state.refresh(gallery);
                                           });
                                       });
        });
    }

    void noteOutcome(bool success, const std::shared_ptr<NSError>& error) {
        isExporting = false;
        outcome = success ? std::string() : error->description();
    }
};

AlbumPage::AlbumPage() : state_(std::make_shared<State>()) {}
AlbumPage::~AlbumPage() = default;

void AlbumPage::build(Column& column, Gallery& gallery) {
    if (!state_->contents) state_->refresh(gallery);
    const Contents contents = state_->contents.value_or(Contents());
    column.title(text("album.title"));
    column.paragraph(text("album.explanation"));
    column.caption(text("album.bundle"));
    addTiles(column, contents.bundle);
    column.row({pushButton("album.export", [state = state_, &gallery] { state->exportFiles(gallery); })});
    if (const auto& outcome = state_->outcome)
        column.pair(text("album.outcome"), outcome->empty() ? text("album.done") : *outcome);
    column.pair(text("album.count"), std::to_string(contents.count));
    column.pair(text("album.folder"),
                contents.folder.empty() ? text("general.none") : shownPath(contents.folder));
    column.space(4);
    addTiles(column, contents.album);
}

void AlbumPage::demonstrate(Gallery& gallery) {
    if (state_->contents && state_->contents->count == 0) state_->exportFiles(gallery);
}

}  // namespace gallery

// SPDX-License-Identifier: MIT

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include <unistd.h>

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/FileKeychain.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>

#include "PersistedThing.h"

namespace kx::testing {

namespace {

class Defaults final : public PersistedThing {
  public:
    bool save(const std::string& name, const std::string& text) override {
        defaults_->setObject(name, text);
        return defaults_->synchronize();
    }
    std::optional<std::string> load(const std::string& name) override {
        return defaults_->stringForKey(name);
    }

  private:
    std::shared_ptr<NSUserDefaults> defaults_ = make<NSUserDefaults>("org.example.app");
};

class Keychain final : public PersistedThing {
  public:
    bool save(const std::string& name, const std::string& text) override {
        static_cast<void>(keychain_.remove({name, name}));
        return keychain_.add({name, name}, text).ok();
    }
    std::optional<std::string> load(const std::string& name) override {
        auto found = keychain_.copy({name, name});
        return found ? std::optional(std::move(*found)) : std::nullopt;
    }

  private:
    FileKeychain keychain_{*baseDirectory(BaseDirectory::Data) + "/app",
                           *openModule<SodiumModule>("sodium").value()};
};

class DiskCache final : public PersistedThing {
  public:
    bool save(const std::string& name, const std::string& text) override {
        cache_->setObject(text, name);
        return load(name) == text && cache_->synchronize();
    }
    std::optional<std::string> load(const std::string& name) override {
        const Value found = cache_->objectForKey(name);
        const auto text = found.asString();
        return text ? std::optional(std::string(*text)) : std::nullopt;
    }

  private:
    std::shared_ptr<KXDiskCache> cache_ =
        KXDiskCache::initWithPath(*baseDirectory(BaseDirectory::Cache) + "/app");
};

/// Each save is a new album with two pictures of the text in it.
class PhotoLibrary final : public PersistedThing {
  public:
    PhotoLibrary() { static_cast<void>(store_.recover()); }

    bool save(const std::string& name, const std::string& text) override {
        PhotoChanges changes;
        changes.albums.push_back({newPhotoIdentifier(), name});
        for (const char* folder : {"a", "b"}) {
            const std::string source = data_ + "/from-" + std::to_string(::getpid()) + folder;
            std::filesystem::create_directories(source);
            std::ofstream(source + "/x.png") << kSignature << text;
            changes.assets.push_back({newPhotoIdentifier(), PHAssetMediaType::Image, source + "/x.png"});
            changes.members.push_back({changes.albums[0].identifier, changes.assets.back().identifier});
        }
        return store_.perform(changes).ok();
    }
    std::optional<std::string> load(const std::string& name) override {
        const auto albums = store_.albums();
        if (!albums) return std::nullopt;
        const auto album =
            std::ranges::find(albums->rbegin(), albums->rend(), name, &PhotoIndex::Album::title);
        if (album == albums->rend()) return std::nullopt;
        const auto assets = store_.assetsInAlbum(album->identifier);
        if (!assets) return std::nullopt;
        std::set<std::string> texts;
        for (const auto& asset : *assets) {
            std::ifstream file(asset.path);
            texts.insert({std::istreambuf_iterator<char>(file), {}});
        }
        const bool isTwice =
            assets->size() == 2 && texts.size() == 1 && texts.begin()->starts_with(kSignature);
        return isTwice ? texts.begin()->substr(kSignature.size()) : "an album that is not whole";
    }
    /// No album and no file without the other.
    bool isWhole() override {
        std::set<std::string> known;
        const auto albums = store_.albums();
        if (!albums) return false;
        for (const auto& album : *albums) {
            const auto assets = store_.assetsInAlbum(album.identifier);
            if (!assets || assets->size() != 2) return false;
            for (const auto& asset : *assets) known.insert(asset.path);
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(pictures_)) {
            if (entry.is_directory() ? std::filesystem::is_empty(entry) : known.erase(entry.path()) == 0)
                return false;
        }
        return known.empty();
    }

  private:
    static constexpr std::string_view kSignature{"\x89PNG\r\n\x1A\n", 8};
    const std::string data_ = *baseDirectory(BaseDirectory::Data);
    const std::string pictures_ = data_ + "/pictures";
    PhotoStore store_{data_ + "/photos", pictures_};
};

/// A picture whose blocks of eight pixels are the bits of the text, and its thumbnail.
class SavedImages final : public PersistedThing {
  public:
    SavedImages() { std::filesystem::create_directories(folder_); }

    bool save(const std::string& name, const std::string& text) override {
        const auto bitmap =
            NSBitmapImageRep::bitmapWithPixels(64, static_cast<std::uint32_t>(8 * text.size()));
        for (std::size_t at = 0; at < bitmap->pixels().size(); ++at)
            bitmap->pixels()[at] = text[at / 512] >> at % 64 / 8 & 1 ? 0xFFFF'FFFF : 0xFF00'0000;
        KXPhotoUtils::saveImage(NSImage::initWithBitmap(bitmap), folder_ + name, folder_ + name + ".small");
        return textIn(name) == text && textIn(name + ".small") == text;
    }
    std::optional<std::string> load(const std::string& name) override {
        return textIn(name + ".small") == kDamaged ? kDamaged : textIn(name);
    }

  private:
    static constexpr const char* kDamaged = "no picture";
    std::optional<std::string> textIn(const std::string& name) const {
        const auto bytes = readFile(FileSystem::slot().current(), folder_ + name, 1 << 20);
        if (!bytes) return std::nullopt;
        const auto image = NSImage::initWithData(std::as_bytes(std::span(*bytes)));
        if (!image) return kDamaged;
        const auto bitmap = image->bitmapAtScale(1);
        std::string text(bitmap->pixelsHigh() / 8, '\0');
        for (std::uint32_t bit = 0; bit < 8 * text.size(); ++bit) {
            const bool isSet = (bitmap->pixelAt(bit % 8 * 8 + 4, bit / 8 * 8 + 4) & 0xFF) > 127;
            text[bit / 8] = static_cast<char>(text[bit / 8] | (isSet ? 1 << bit % 8 : 0));
        }
        return text;
    }
    const std::string folder_ = *baseDirectory(BaseDirectory::Data) + "/saved/";
};

template <class Thing>
std::unique_ptr<PersistedThing> opened() {
    return std::make_unique<Thing>();
}

}  // namespace

const std::vector<PersistedKind>& persistedKinds() {
    static const std::vector<PersistedKind> kinds{{"defaults", opened<Defaults>},
                                                  {"keychain", opened<Keychain>, true},
                                                  {"diskCache", opened<DiskCache>},
                                                  {"photoLibrary", opened<PhotoLibrary>, false, false, true},
                                                  {"savedImages", opened<SavedImages>, false, true}};
    return kinds;
}

}  // namespace kx::testing

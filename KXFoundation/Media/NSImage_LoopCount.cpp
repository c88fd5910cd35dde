// SPDX-License-Identifier: MIT

#include <string_view>
#include <utility>

#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Runtime/Observation.h>

namespace kx {

namespace {

// Names for observers; their addresses are the keys that the values are kept under.
constexpr std::string_view kImages = "images", kDuration = "duration", kLoopCount = "loopCount";

/// A list as a value.
class HeldImages : public Subclass<HeldImages, NSObject> {
  public:
    bool init(ImageList images) {
        images_ = std::move(images);
        return Super::init();
    }
    [[nodiscard]] const ImageList& images() const noexcept { return images_; }

  private:
    ImageList images_;
};

void store(const std::shared_ptr<NSImage>& image, const std::string_view& key, Value value) {
    if (!image) return;
    const ChangeNotice notice(*image, key);
    setAssociatedValue(*image, &key, std::move(value));
}

Value stored(const std::shared_ptr<NSImage>& image, const std::string_view& key) {
    return image ? associatedValue(*image, &key) : Value();
}

}  // namespace

ImageList NSImage_LoopCount::images(const std::shared_ptr<NSImage>& image) {
    const auto held = objectCast<HeldImages>(stored(image, kImages).asObject());
    return held ? held->images() : nullptr;
}

void NSImage_LoopCount::setImages(const std::shared_ptr<NSImage>& image, ImageList images) {
    store(image, kImages, images ? Value(make<HeldImages>(std::move(images))) : Value());
}

float NSImage_LoopCount::duration(const std::shared_ptr<NSImage>& image) {
    return static_cast<float>(stored(image, kDuration).asReal().value_or(0));
}

void NSImage_LoopCount::setDuration(const std::shared_ptr<NSImage>& image, double seconds) {
    store(image, kDuration, seconds);
}

std::int64_t NSImage_LoopCount::loopCount(const std::shared_ptr<NSImage>& image) {
    return stored(image, kLoopCount).asInteger().value_or(0);
}

void NSImage_LoopCount::setLoopCount(const std::shared_ptr<NSImage>& image, std::int64_t count) {
    store(image, kLoopCount, count);
}

}  // namespace kx

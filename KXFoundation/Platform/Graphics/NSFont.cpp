// SPDX-License-Identifier: MIT

#include <cmath>
#include <cstdio>
#include <deque>
#include <mutex>

#include <KXFoundation/Platform/Graphics/FontFace.h>
#include <KXFoundation/Platform/Graphics/FontSource.h>
#include <KXFoundation/Platform/Graphics/LoadedFonts.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>

namespace kx {

namespace {

constexpr double kLargestSize = 2000;
constexpr const char* kSystemFamily = "sans-serif";

struct InternedFace {
    const FontFace* face;
    std::uint64_t number;
};

/// One lasting FontFace per distinct face. An application names a few dozen, so a walk finds one fast enough.
InternedFace intern(FontFace face) {
    static auto& mutex = *new std::mutex;
    static auto& faces = *new std::deque<FontFace>;
    const std::lock_guard lock(mutex);
    for (std::size_t i = 0; i < faces.size(); ++i) {
        if (faces[i] == face) return {&faces[i], i};
    }
    faces.push_back(std::move(face));
    return {&faces.back(), faces.size() - 1};
}

double usableSize(double size) {
    if (!(size > 0)) return NSFont::systemFontSize();  // also what is no number
    return size < kLargestSize ? size : kLargestSize;
}

/// The installed family that the name means, as the font spells it.
std::optional<FontFace> installedFace(std::string_view name) {
    const auto& families = FontSource::slot().current().loaded().families;
    const auto whole = families.find(squashedFamily(name));
    if (whole != families.end()) return FontFace{whole->second};
    FontFace face = parseFontName(name);
    const auto found = families.find(squashedFamily(face.family));
    if (found == families.end()) return std::nullopt;
    face.family = found->second;
    return face;
}

}  // namespace

bool NSFont::init(FontFace face, double size) {
    if (!Super::init()) return false;
    const InternedFace interned = intern(std::move(face));
    face_ = interned.face;
    pointSize_ = usableSize(size);
    identity_ = interned.number << 32 | static_cast<std::uint64_t>(std::llround(pointSize_ * 1024));
    return true;
}

std::shared_ptr<NSFont> NSFont::fontWithName(std::optional<std::string_view> name, double size) {
    if (!name || name->empty()) return nullptr;
    auto face = installedFace(*name);
    return face ? make<NSFont>(std::move(*face), size) : nullptr;
}

std::shared_ptr<NSFont> NSFont::fontWithNameOrFallback(std::optional<std::string_view> name, double size) {
    if (auto font = fontWithName(name, size)) return font;
    FontFace face = parseFontName(name.value_or(""));
    face.family = kSystemFamily;
    return make<NSFont>(std::move(face), size);
}

std::shared_ptr<NSFont> NSFont::systemFontOfSize(double size) {
    return make<NSFont>(FontFace{kSystemFamily}, size);
}

std::shared_ptr<NSFont> NSFont::boldSystemFontOfSize(double size) {
    return make<NSFont>(FontFace{kSystemFamily, 700}, size);
}

std::string NSFont::fontName() const {
    return fontNameOf(*face_);
}

const std::string& NSFont::familyName() const noexcept {
    return face_->family;
}

std::string NSFont::description() const {
    char size[32];
    std::snprintf(size, sizeof size, " %g>", pointSize_);
    return "<NSFont " + fontName() + size;
}

bool NSFont::isEqual(const NSObject& other) const {
    return other.isKindOfClass(classObject()) && identity_ == static_cast<const NSFont&>(other).identity_;
}

}  // namespace kx

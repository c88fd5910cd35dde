// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {

namespace {

thread_local NSAppearance threadAppearance = NSAppearance::Light;

double held(double component) noexcept {
    if (!(component > 0)) return 0;  // also what is no number
    return component < 1 ? component : 1;
}

ColorComponents held(ColorComponents c) noexcept {
    return {held(c.red), held(c.green), held(c.blue), held(c.alpha)};
}

constexpr ColorComponents rgb(unsigned code) {
    return {(code >> 16 & 255) / 255.0, (code >> 8 & 255) / 255.0, (code & 255) / 255.0, 1};
}

constexpr ColorComponents white(double level, double alpha) {
    return {level, level, level, alpha};
}

// The constants are shared and never destroyed: views may hold them until the very end of the process. The
// tag, a lambda's own type, gives each its own static.
template <class Tag>
std::shared_ptr<NSColor> shared(Tag, ColorComponents light, ColorComponents dark) {
    static auto& color = *new std::shared_ptr<NSColor>(make<NSColor>(light, dark));
    return color;
}

}  // namespace

NSAppearance currentAppearance() noexcept {
    return threadAppearance;
}

ScopedAppearance::ScopedAppearance(NSAppearance appearance) noexcept : former_(threadAppearance) {
    threadAppearance = appearance;
}

ScopedAppearance::~ScopedAppearance() {
    threadAppearance = former_;
}

bool NSColor::init(ColorComponents light, ColorComponents dark) {
    if (!Super::init()) return false;
    light_ = held(light);
    dark_ = held(dark);
    return true;
}

std::shared_ptr<NSColor> NSColor::colorWithRed(double red, double green, double blue, double alpha) {
    const ColorComponents components{red, green, blue, alpha};
    return make<NSColor>(components, components);
}

std::shared_ptr<NSColor> NSColor::colorWithWhite(double level, double alpha) {
    return colorWithRed(level, level, level, alpha);
}

std::shared_ptr<NSColor> NSColor::colorWithLight(ColorComponents light, ColorComponents dark) {
    return make<NSColor>(light, dark);
}

std::shared_ptr<NSColor> NSColor::colorWithAlphaComponent(double alpha) const {
    ColorComponents light = light_;
    ColorComponents dark = dark_;
    light.alpha = dark.alpha = alpha;
    return make<NSColor>(light, dark);
}

std::shared_ptr<NSColor> NSColor::clearColor() {
    return shared([] {}, {}, {});
}
std::shared_ptr<NSColor> NSColor::blackColor() {
    return shared([] {}, white(0, 1), white(0, 1));
}
std::shared_ptr<NSColor> NSColor::whiteColor() {
    return shared([] {}, white(1, 1), white(1, 1));
}

std::shared_ptr<NSColor> NSColor::windowBackgroundColor() {
    return shared([] {}, rgb(0xF4F4F6), rgb(0x1E1F22));
}
std::shared_ptr<NSColor> NSColor::controlBackgroundColor() {
    return shared([] {}, rgb(0xFFFFFF), rgb(0x2A2B2F));
}
std::shared_ptr<NSColor> NSColor::textColor() {
    return shared([] {}, rgb(0x1B1C1F), rgb(0xECEDEF));
}
std::shared_ptr<NSColor> NSColor::secondaryLabelColor() {
    return shared([] {}, rgb(0x5F6167), rgb(0xA9ABB2));
}
std::shared_ptr<NSColor> NSColor::placeholderTextColor() {
    return shared([] {}, rgb(0x696B72), rgb(0x9C9EA6));
}
std::shared_ptr<NSColor> NSColor::controlColor() {
    return shared([] {}, rgb(0xFFFFFF), rgb(0x3A3B40));
}
std::shared_ptr<NSColor> NSColor::separatorColor() {
    return shared([] {}, white(0, 0.14), white(1, 0.14));
}
std::shared_ptr<NSColor> NSColor::controlAccentColor() {
    return shared([] {}, rgb(0x2463D4), rgb(0x3870DA));
}
std::shared_ptr<NSColor> NSColor::alternateSelectedControlTextColor() {
    return shared([] {}, white(1, 1), white(1, 1));
}

std::string NSColor::description() const {
    const ColorComponents c = components();
    char text[96];
    std::snprintf(text, sizeof text, "<NSColor %.4g %.4g %.4g %.4g>", c.red, c.green, c.blue, c.alpha);
    return text;
}

bool NSColor::isEqual(const NSObject& other) const {
    if (!other.isKindOfClass(classObject())) return false;
    const auto& color = static_cast<const NSColor&>(other);
    return light_ == color.light_ && dark_ == color.dark_;
}

}  // namespace kx

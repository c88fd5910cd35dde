// SPDX-License-Identifier: MIT

// Short texts from people and services: colour codes, versions, addresses.
#include <compare>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Foundation/NumericCompare.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void checkColor(std::string_view code) {
    const auto color = kx::NSColor_HEX::colorWithHexString(code);
    require(color != nullptr);
    for (const double part : {color->redComponent(), color->greenComponent(), color->blueComponent()})
        require(part >= 0 && part <= 1);
}

void checkOrder(std::string_view one, std::string_view other) {
    require(kx::numericCompare(one, one) == 0);
    require(kx::numericCompare(one, other) == (0 <=> kx::numericCompare(other, one)));
}

void checkAddress(std::string_view text) {
    if (const auto url = kx::NSURL::URLWithString(text)) {
        require(url->absoluteString() == text);
        require(url->path().find('\0') == std::string::npos);
        require(url->scheme().size() + url->authority().size() <= text.size());
    }
    if (!text.starts_with('/') || text.find('\0') != std::string_view::npos) return;
    const kx::NSURL file = kx::NSURL::fileURLWithPath(text);
    require(file.isFileURL() && file.path() == text);
    require(kx::NSURL::URLWithString(file.absoluteString()) == file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkColor(text);
    checkOrder(text.substr(0, text.find('\n')), text.substr(std::min(text.find('\n'), text.size())));
    checkAddress(text);
    return 0;
}

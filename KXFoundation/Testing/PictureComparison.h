#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>

namespace kx::testing {

/// The greatest difference of two pixels in a channel.
[[nodiscard]] int distance(std::uint32_t a, std::uint32_t b);

/// How much two pictures may differ.
struct Tolerance {
    int channel = 0;         ///< a pixel differs if one of its four channels does by more than this
    std::size_t pixels = 0;  ///< how many pixels may
};

struct Difference {
    bool sameSize = false;
    std::size_t pixels = 0;  ///< how many differ
    int largest = 0;         ///< in any channel
    bool accepted = false;
};

[[nodiscard]] Difference compare(const NSBitmapImageRep& a, const NSBitmapImageRep& b,
                                 Tolerance tolerance = {});

/// Both pictures and, beside them, what differs: red on a faded copy of the first. For a person to look at.
[[nodiscard]] std::shared_ptr<NSBitmapImageRep> sideBySide(const NSBitmapImageRep& a,
                                                           const NSBitmapImageRep& b,
                                                           Tolerance tolerance = {});

/// Writes a PNG; false if it cannot.
bool writePng(const NSBitmapImageRep& bitmap, const std::string& path);

}  // namespace kx::testing

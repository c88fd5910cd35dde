// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx::testing {

/// How much two pictures may differ.
struct Tolerance {
    int channel = 0;         ///< a pixel differs if one of its four channels does by more than this
    std::size_t pixels = 0;  ///< how many pixels may
};

struct KX_EXPORT Difference {
    bool sameSize = false;
    std::size_t pixels = 0;  ///< how many differ
    int largest = 0;         ///< in any channel
    bool accepted = false;

    /// "26 pixels differ, by up to 42", for a person.
    [[nodiscard]] std::string describe() const;
};

/// The greatest difference of two pixels in a channel.
[[nodiscard]] KX_EXPORT int distance(std::uint32_t a, std::uint32_t b);

[[nodiscard]] KX_EXPORT Difference compare(const NSBitmapImageRep& a, const NSBitmapImageRep& b,
                                           Tolerance tolerance = {});

/// The picture against the one that was kept in a file: Missing if there is no such file, Corrupt if it is no
/// picture.
///
///     const auto difference = compareWithFile(*shown.picture(), "pictures/greeting.png", {.channel = 12});
///     EXPECT_TRUE(difference && difference->accepted);
[[nodiscard]] KX_EXPORT Result<Difference> compareWithFile(const NSBitmapImageRep& picture,
                                                           const std::string& path, Tolerance tolerance = {});

/// The picture in a file; Missing or Corrupt as above.
[[nodiscard]] KX_EXPORT Result<std::shared_ptr<NSBitmapImageRep>> readPicture(const std::string& path);

/// Writes a PNG.
KX_EXPORT Result<void> writePicture(const NSBitmapImageRep& picture, const std::string& path);

/// Both pictures and, beside them, what differs: red on a faded copy of the first. For a person to look at.
[[nodiscard]] KX_EXPORT std::shared_ptr<NSBitmapImageRep> sideBySide(const NSBitmapImageRep& a,
                                                                     const NSBitmapImageRep& b,
                                                                     Tolerance tolerance = {});

}  // namespace kx::testing

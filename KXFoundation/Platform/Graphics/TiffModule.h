// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

/// The table between the library and its TIFF module (Modules/TiffModule.cpp, over libtiff). Any thread.
namespace kx {

struct TiffModule {
    static constexpr std::uint32_t kVersion = 2;

    /// Pixels of that size in a place of the caller's, or nullptr to give up.
    using Allocate = std::uint32_t* (*)(void* context, std::uint32_t wide, std::uint32_t high);
    /// Takes the encoded file.
    using Take = void (*)(void* context, const void* data, std::size_t size);

    std::uint32_t version;
    /// Reads the first picture of the file as premultiplied 0xAARRGGBB, in the stored order of rows and
    /// columns; `orientation` is the file's, 1 to 8. False, and a line of at most `reasonSize` bytes, if that
    /// fails. Parts of the file of more than `mostPixels` are not unpacked.
    bool (*read)(const void* data, std::size_t size, std::uint64_t mostPixels, Allocate allocate,
                 void* context, std::uint32_t* orientation, char* reason, std::size_t reasonSize);
    /// Writes premultiplied pixels with their alpha, packed without loss but for colours under an alpha of 0.
    bool (*write)(const std::uint32_t* pixels, std::uint32_t wide, std::uint32_t high, Take take,
                  void* context, char* reason, std::size_t reasonSize);
};

}  // namespace kx

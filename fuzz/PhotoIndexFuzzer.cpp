// SPDX-License-Identifier: MIT

// The index of the photo library (docs/formats/photo-index.md). The first byte is 1 if what a kill has left
// in it is made good too; the rest is the file.
#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "InputText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const kx::testing::TemporaryDirectory folder;
    // An incoming file's name, but outside of the library: not its own to remove.
    const std::string foreign = folder.write(".kx-incoming-00112233445566778899aabbccddeeff", "kept");
    folder.write("Pictures/.kx-incoming-00112233445566778899aabbccddeeff", "left by a kill");
    folder.write("index/index", kx::fuzz::textOf(data + 1, size - 1));
    kx::PhotoStore store(folder / "index", folder / "Pictures");
    if ((data[0] & 1) != 0) static_cast<void>(store.recover());
    const auto albums = store.albums();
    for (std::size_t i = 0; albums && i < std::min<std::size_t>(albums->size(), 8); ++i)
        static_cast<void>(store.assetsInAlbum((*albums)[i].identifier));
    if (!std::filesystem::exists(foreign)) std::abort();
    return 0;
}

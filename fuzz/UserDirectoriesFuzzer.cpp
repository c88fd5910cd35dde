// SPDX-License-Identifier: MIT

// The desktop's file that names the user's folders.
#include <cstdlib>

#include <KXFoundation/Platform/Foundation/UserDirectories.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "InputText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const kx::testing::TemporaryDirectory folder;
    ::setenv("HOME", (folder / "home").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
    folder.write("config/user-dirs.dirs", kx::fuzz::textOf(data, size));
    for (const auto which : {kx::UserDirectory::Documents, kx::UserDirectory::Pictures}) {
        const auto found = kx::userDirectory(which);
        if (!found || !found->starts_with('/') || found->find('\0') != std::string::npos) std::abort();
    }
    return 0;
}

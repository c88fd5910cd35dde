// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Platform/Foundation/HTTPModule.h>
#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Graphics/TiffModule.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/SodiumModule.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>
#include <KXFoundation/Platform/Services/VideoModule.h>
#include <KXFoundation/Platform/Views/WindowModule.h>

template <class Table>
static bool opens(const char* name) {
    const auto table = kx::openModule<Table>(name);
    std::printf("%-8s%s\n", name, table ? "opened" : table.error().message().c_str());
    return table.ok();
}

int main() {
    const bool all[] = {opens<kx::HTTPModule>("curl"),     opens<kx::DesktopModule>("desktop"),
                        opens<kx::VideoModule>("ffmpeg"),  opens<kx::IcuModule>("icu"),
                        opens<kx::WindowModule>("sdl"),    opens<kx::SodiumModule>("sodium"),
                        opens<kx::SqliteModule>("sqlite"), opens<kx::TiffModule>("tiff")};
    for (const bool one : all)
        if (!one) return 1;
}

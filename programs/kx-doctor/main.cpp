// SPDX-License-Identifier: MIT

// Tells what of the desktop works here and, where something does not, why.
#include <cstdio>

#include <KXFoundation/Platform/Services/Capabilities.h>
#include <KXFoundation/Version.h>

int main(int argc, char** argv) {
    if (argc > 1) {
        const bool isAsked = std::string_view(argv[1]) == "--help";
        std::fputs(
            "usage: kx-doctor\nTells which services of the desktop applications can use on this machine.\n",
            isAsked ? stdout : stderr);
        return isAsked ? 0 : 2;
    }
    std::printf("KXFoundation %s\n", kx::KX_VERSION.data());
    for (const kx::Capability& capability : kx::capabilities()) {
        std::printf("%-12s%-8s%s\n", std::string(capability.name).c_str(),
                    capability.works ? "works" : "lacking", capability.detail.c_str());
    }
    return 0;
}

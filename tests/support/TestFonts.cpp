// SPDX-License-Identifier: MIT

#include <cstdio>
#include <cstdlib>

#include <KXFoundation/Platform/Graphics/FontSource.h>

namespace {

/// Draws with the few named font files that golden pictures are made with.
bool useTestFonts() {
    const auto outcome = kx::Fonts::useConfiguration(KX_TEST_FONTS);
    if (outcome) return true;
    std::fprintf(stderr, "%s\n", outcome.error().message().c_str());
    std::exit(1);
}

// Every test program of the UI library uses them from its start.
[[maybe_unused]] const bool inUse = useTestFonts();

}  // namespace

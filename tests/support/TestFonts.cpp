#include "support/TestFonts.h"

#include <cstdio>
#include <cstdlib>

#include <KXFoundation/Platform/Graphics/FontSource.h>

namespace kx::testing {

void useTestFonts() {
    const auto outcome = Fonts::useConfiguration(KX_TEST_FONTS);
    if (outcome) return;
    std::fprintf(stderr, "%s\n", outcome.error().message().c_str());
    std::exit(1);
}

namespace {
// Every test program of the UI library uses them from its start.
[[maybe_unused]] const bool inUse = (useTestFonts(), true);
}  // namespace

}  // namespace kx::testing

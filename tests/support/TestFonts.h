#pragma once

namespace kx::testing {

/// Draws with the few named font files that golden pictures are made with, from now on.
void useTestFonts();

}  // namespace kx::testing

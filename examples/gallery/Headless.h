#pragma once

#include <string>

namespace gallery {

/// Draws pages without a display, each in English, Arabic, Simplified Chinese and German, as
/// `directory/<page>-<language>.png`, with `scale` pixels to the point; all of them if `page` is empty. The
/// user's settings stay as they are. The program's exit status: 0, or 1 with a line on standard error.
int drawPages(const std::string& directory, const std::string& page, double scale);

}  // namespace gallery

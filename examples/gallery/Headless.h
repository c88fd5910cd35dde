// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Graphics/NSAppearance.h>

namespace gallery {

class Gallery;

/// Draws the page that is shown, after it has done what a person would do on it. The window has a surface.
void drawDemonstration(Gallery& gallery);

/// Draws pages without a display, each in English, Arabic, Simplified Chinese and German, as
/// `directory/<page>-<language>.png`, with `scale` pixels to the point; all of them if `page` is empty.
/// Writes settings and pictures of the user's: for a TemporaryHome. The program's exit status: 0, or 1 with a
/// line on standard error.
int drawPages(const std::string& directory, const std::string& page, double scale, kx::NSAppearance look);

}  // namespace gallery

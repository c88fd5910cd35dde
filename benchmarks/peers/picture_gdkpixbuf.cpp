// SPDX-License-Identifier: MIT

#include <gdk-pixbuf/gdk-pixbuf.h>

#include "picture_peers.h"

namespace kx::peers {

namespace {

GdkPixbuf* over(const Pixels& pixels) {
    return gdk_pixbuf_new_from_data(pixels.bytes, GDK_COLORSPACE_RGB, TRUE, 8, pixels.wide, pixels.high,
                                    pixels.wide * 4, nullptr, nullptr);
}

}  // namespace

void resizeWithGdkPixbuf(const Pixels& from, const Pixels& to) {
    GdkPixbuf* const source = over(from);
    GdkPixbuf* const target = over(to);
    gdk_pixbuf_scale(source, target, 0, 0, to.wide, to.high, 0, 0, double(to.wide) / from.wide,
                     double(to.high) / from.high, GDK_INTERP_BILINEAR);
    g_object_unref(source);
    g_object_unref(target);
}

std::vector<std::uint8_t> thumbnailWithGdkPixbuf(const char* path, int wide) {
    GdkPixbuf* const pixbuf = gdk_pixbuf_new_from_file_at_scale(path, wide, -1, TRUE, nullptr);
    if (!pixbuf) return {};
    std::vector<std::uint8_t> rgb;
    const guint8* row = gdk_pixbuf_read_pixels(pixbuf);
    for (int y = 0; y < gdk_pixbuf_get_height(pixbuf); ++y, row += gdk_pixbuf_get_rowstride(pixbuf))
        rgb.insert(rgb.end(), row, row + 3 * gdk_pixbuf_get_width(pixbuf));
    g_object_unref(pixbuf);
    return rgb;
}

}  // namespace kx::peers

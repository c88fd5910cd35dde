// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "Column.h"

namespace gallery {

class Gallery;

/// One page of the gallery. It lives while it is shown; its controls are made anew after every change of
/// language: what a page binds to a key is looked up once, when the control is made.
class Page {
  public:
    virtual ~Page() = default;

    /// Fills the page from the top down. `gallery` outlives the page.
    virtual void build(Column& column, Gallery& gallery) = 0;

    /// Does what a person would do on the page, for a picture of it without one. The page has been built.
    virtual void demonstrate(Gallery& /*gallery*/) {}
};

/// The table of pages, in the order of the side list.
struct PageEntry {
    std::string_view name;      ///< of files and of --page
    std::string_view titleKey;  ///< in the string tables
    std::unique_ptr<Page> (*make)();
};
std::span<const PageEntry> pages();

}  // namespace gallery

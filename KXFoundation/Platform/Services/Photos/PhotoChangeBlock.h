// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Services/Photos/PhotoChanges.h>

namespace kx {

/// Collects what the change block that runs on this thread asks for. Private to Services.
class PhotoChangeBlock {
  public:
    PhotoChangeBlock();
    ~PhotoChangeBlock();
    PhotoChangeBlock(const PhotoChangeBlock&) = delete;
    PhotoChangeBlock& operator=(const PhotoChangeBlock&) = delete;

    /// The one of this thread; nullptr, and a caller error that names `request`, outside of any.
    static PhotoChangeBlock* current(const char* request);

    PhotoChanges changes;

  private:
    PhotoChangeBlock* const outer_;
};

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSImage;

/// What an image cache answers about images.
class KX_EXPORT KXImageCacheProtocal {
  public:
    virtual ~KXImageCacheProtocal() = default;

    /// What the image counts against a memory store's cost limit.
    [[nodiscard]] virtual std::uint64_t imageCost(const std::shared_ptr<NSImage>& image) = 0;

  protected:
    KXImageCacheProtocal() = default;
    KXImageCacheProtocal(const KXImageCacheProtocal&) = default;
    KXImageCacheProtocal& operator=(const KXImageCacheProtocal&) = default;
};

}  // namespace kx

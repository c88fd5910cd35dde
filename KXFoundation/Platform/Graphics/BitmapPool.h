// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

/// Private to Graphics.
namespace kx {

/// Bitmaps of one size that come back when their last user lets go of them: a large one from the system costs
/// as much as decoding into it. Any thread.
class BitmapPool : public std::enable_shared_from_this<BitmapPool> {
  public:
    BitmapPool(std::uint32_t wide, std::uint32_t high) noexcept : wide_(wide), high_(high) {}

    /// With what it held before; none if there can be no bitmap of that size. May outlive the pool.
    [[nodiscard]] std::shared_ptr<NSBitmapImageRep> take();

  private:
    static constexpr std::size_t kKept = 2;

    void giveBack(std::shared_ptr<NSBitmapImageRep> bitmap);

    const std::uint32_t wide_, high_;
    Mutex mutex_;
    std::vector<std::shared_ptr<NSBitmapImageRep>> free_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx

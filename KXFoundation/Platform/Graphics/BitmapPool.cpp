// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Graphics/BitmapPool.h>

namespace kx {

std::shared_ptr<NSBitmapImageRep> BitmapPool::take() {
    std::shared_ptr<NSBitmapImageRep> bitmap;
    {
        const MutexLock lock(mutex_);
        if (!free_.empty()) {
            bitmap = std::move(free_.back());
            free_.pop_back();
        }
    }
    if (!bitmap) bitmap = NSBitmapImageRep::bitmapWithPixels(wide_, high_);
    if (!bitmap) return nullptr;
    NSBitmapImageRep* const lent = bitmap.get();
    return {lent, [pool = weak_from_this(), bitmap = std::move(bitmap)](NSBitmapImageRep*) mutable {
                if (const auto owner = pool.lock()) owner->giveBack(std::move(bitmap));
            }};
}

void BitmapPool::giveBack(std::shared_ptr<NSBitmapImageRep> bitmap) {
    const MutexLock lock(mutex_);
    if (free_.size() < kKept) free_.push_back(std::move(bitmap));
}

}  // namespace kx

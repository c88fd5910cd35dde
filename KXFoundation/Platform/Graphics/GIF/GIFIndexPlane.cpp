// SPDX-License-Identifier: MIT

#include <numeric>

#include <KXFoundation/Platform/Graphics/GIF/GIFIndexPlane.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFLZW.h>

namespace kx {

struct GIFIndexPlane::Plane {
    GIFLZW lzw;
    std::unique_ptr<std::uint8_t[]> bytes;  // the literals, the indices, the slack; not cleared
    std::size_t room = 0;                   // for indices
    std::size_t reached = 0;
};

GIFIndexPlane::GIFIndexPlane(GIFLimits limits)
    : maxPixels_(limits.pixels), plane_(std::make_unique<Plane>()) {}
GIFIndexPlane::GIFIndexPlane(GIFIndexPlane&&) noexcept = default;
GIFIndexPlane& GIFIndexPlane::operator=(GIFIndexPlane&&) noexcept = default;
GIFIndexPlane::~GIFIndexPlane() = default;

Result<void> GIFIndexPlane::unpack(const GIFFrame& frame) {
    plane_->reached = 0;
    const std::uint64_t count = frame.rect.area();
    if (count == 0) return {};
    if (count > maxPixels_) return Error{ErrorKind::TooLarge, 0, "GIF frame"};
    if (frame.minimumCodeSize < 1 || frame.minimumCodeSize > 8)
        return Error{ErrorKind::Corrupt, 0, "GIF code size"};
    reserve(count);

    switch (plane_->lzw.unpack(frame.packed, frame.minimumCodeSize, plane_->bytes.get(), count,
                               plane_->reached)) {
        case GIFLZW::Outcome::Complete:
            return {};
        case GIFLZW::Outcome::Ended:
            return Error{ErrorKind::Ended, 0, "GIF frame data"};
        case GIFLZW::Outcome::Corrupt:
            break;
    }
    return Error{ErrorKind::Corrupt, 0, "GIF frame data"};
}

std::span<const std::uint8_t> GIFIndexPlane::indices() const noexcept {
    return {plane_->bytes.get() + (plane_->bytes ? GIFLZW::kLiterals : 0), plane_->reached};
}

void GIFIndexPlane::reserve(std::size_t count) {
    if (count <= plane_->room) return;
    plane_->bytes.reset();  // before the larger one is taken
    plane_->bytes =
        std::make_unique_for_overwrite<std::uint8_t[]>(GIFLZW::kLiterals + count + GIFLZW::kSlack);
    plane_->room = count;
    std::iota(plane_->bytes.get(), plane_->bytes.get() + GIFLZW::kLiterals, std::uint8_t{0});
}

}  // namespace kx

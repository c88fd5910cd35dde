// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// What the frames of all animations of the process hold: a share of it, given back by its destructor. Beyond
/// what each file that is shown needs for that, everything is taken within the budget: frames kept whole, and
/// streams of their own for several players. Any thread.
class KX_EXPORT FrameMemory {
  public:
    /// For all animations together; several frames of a full-HD screen.
    static constexpr std::uint64_t kBudget = std::uint64_t{56} << 20;

    /// A share of so many bytes; none if the budget does not allow it.
    [[nodiscard]] static std::optional<FrameMemory> within(std::uint64_t bytes) noexcept;
    /// The same, whatever the budget says.
    [[nodiscard]] static FrameMemory regardless(std::uint64_t bytes) noexcept;

    /// Bytes, of all shares.
    [[nodiscard]] static std::uint64_t inUse() noexcept;

    FrameMemory(FrameMemory&& other) noexcept : bytes_(std::exchange(other.bytes_, 0)) {}
    FrameMemory& operator=(FrameMemory&&) = delete;
    ~FrameMemory();

  private:
    explicit FrameMemory(std::uint64_t bytes) noexcept : bytes_(bytes) {}

    std::uint64_t bytes_;
};

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <csetjmp>
#include <cstddef>
#include <span>

#include <KXFoundation/Platform/Runtime/Export.h>

/// Reading a mapped file. Memory over a file that another program cut short, or whose device fails, raises
/// SIGBUS when it is touched; here that becomes an answer.
namespace kx {

/// One region that the calling thread is reading.
struct GuardedRegion {
    std::span<const std::byte> bytes;
    sigjmp_buf back;
    GuardedRegion* outer;
};

KX_EXPORT void enterGuardedRegion(GuardedRegion& region) noexcept;
KX_EXPORT void leaveGuardedRegion(GuardedRegion& region) noexcept;

/// Calls read(), which touches `mapped` and may write elsewhere, but owns nothing that needs a destructor and
/// takes no lock. False if the bytes could not be had; read() then ended at that point. The first call
/// installs a handler for SIGBUS, which hands every other one to the handler before it.
template <class Read>
[[nodiscard]] bool guardedRead(std::span<const std::byte> mapped, Read&& read) noexcept {
    GuardedRegion region;
    region.bytes = mapped;
    if (sigsetjmp(region.back, 0) != 0) {
        leaveGuardedRegion(region);
        return false;
    }
    enterGuardedRegion(region);
    read();
    leaveGuardedRegion(region);
    return true;
}

struct GuardedPagesSlot;

/// For a mapped page that is touched too often for a guardedRead() each time. As long as this lives, the
/// pages turn into zeros, which this process has for itself, at the first access to bytes that cannot be had
/// any more: whoever read or wrote looks afterwards whether something is there that is never zero.
class KX_EXPORT GuardedPages {
  public:
    explicit GuardedPages(std::span<std::byte> mapped);
    ~GuardedPages();
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

  private:
    GuardedPagesSlot& slot_;
};

}  // namespace kx

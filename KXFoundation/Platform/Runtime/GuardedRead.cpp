// SPDX-License-Identifier: MIT

#include <atomic>
#include <cerrno>
#include <csignal>

#include <signal.h>
#include <sys/mman.h>

#include <KXFoundation/Platform/Runtime/GuardedRead.h>

namespace kx {

/// Never freed, but taken again: the handler may be walking over it.
struct GuardedPagesSlot {
    std::atomic<bool> isTaken{true};
    std::atomic<std::byte*> start{nullptr};
    std::atomic<std::size_t> size{0};
    GuardedPagesSlot* next = nullptr;
};

namespace {

constinit std::atomic<GuardedPagesSlot*> firstSlot{nullptr};

GuardedPagesSlot& takeSlot() {
    GuardedPagesSlot* const first = firstSlot.load(std::memory_order_acquire);
    for (GuardedPagesSlot* slot = first; slot; slot = slot->next) {
        if (!slot->isTaken.exchange(true, std::memory_order_acquire)) return *slot;
    }
    auto* const made = new GuardedPagesSlot;
    made->next = first;
    while (!firstSlot.compare_exchange_weak(made->next, made, std::memory_order_acq_rel)) {
    }
    return *made;
}

/// Whether the address lay in guarded pages, which are zeros now.
bool turnIntoZeros(const std::byte* address) {
    for (auto* slot = firstSlot.load(std::memory_order_acquire); slot; slot = slot->next) {
        std::byte* const start = slot->start.load(std::memory_order_acquire);
        const std::size_t size = slot->size.load(std::memory_order_relaxed);
        if (!start || address < start || address >= start + size) continue;
        constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED;
        return ::mmap(start, size, PROT_READ | PROT_WRITE, kFlags, -1, 0) != MAP_FAILED;
    }
    return false;
}

constinit thread_local GuardedRegion* innermost = nullptr;
struct sigaction former;

void handToFormer(int number, siginfo_t* info, void* context) {
    if ((former.sa_flags & SA_SIGINFO) != 0) return former.sa_sigaction(number, info, context);
    if (former.sa_handler != SIG_DFL && former.sa_handler != SIG_IGN) return former.sa_handler(number);
    ::signal(number, SIG_DFL);  // and the access, made again, ends the process as it would have
}

void handle(int number, siginfo_t* info, void* context) {
    const auto* address = static_cast<const std::byte*>(info->si_addr);
    for (GuardedRegion* region = innermost; region; region = region->outer) {
        const std::byte* const start = region->bytes.data();
        if (address >= start && address < start + region->bytes.size()) siglongjmp(region->back, 1);
    }
    const int error = errno;
    const bool isDone = turnIntoZeros(address);
    errno = error;
    if (!isDone) handToFormer(number, info, context);
}

/// SA_NODEFER: the handler is left by a jump, which must not leave the signal blocked.
bool install() noexcept {
    struct sigaction action = {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_ONSTACK;
    ::sigemptyset(&action.sa_mask);
    return ::sigaction(SIGBUS, &action, &former) == 0;
}

void installOnce() noexcept {
    static const bool installed = install();
    static_cast<void>(installed);
}

}  // namespace

GuardedPages::GuardedPages(std::span<std::byte> mapped) : slot_(takeSlot()) {
    installOnce();
    slot_.size.store(mapped.size(), std::memory_order_relaxed);
    slot_.start.store(mapped.data(), std::memory_order_release);
}

GuardedPages::~GuardedPages() {
    slot_.start.store(nullptr, std::memory_order_release);
    slot_.isTaken.store(false, std::memory_order_release);
}

void enterGuardedRegion(GuardedRegion& region) noexcept {
    installOnce();
    region.outer = innermost;
    innermost = &region;
}

void leaveGuardedRegion(GuardedRegion& region) noexcept {
    innermost = region.outer;
}

}  // namespace kx

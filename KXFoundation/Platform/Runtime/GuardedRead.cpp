#include <KXFoundation/Platform/Runtime/GuardedRead.h>

#include <csignal>

#include <signal.h>

namespace kx {

namespace {

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
    handToFormer(number, info, context);
}

/// SA_NODEFER: the handler is left by a jump, which must not leave the signal blocked.
bool install() noexcept {
    struct sigaction action = {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_ONSTACK;
    ::sigemptyset(&action.sa_mask);
    return ::sigaction(SIGBUS, &action, &former) == 0;
}

}  // namespace

void enterGuardedRegion(GuardedRegion& region) noexcept {
    static const bool installed = install();
    static_cast<void>(installed);
    region.outer = innermost;
    innermost = &region;
}

void leaveGuardedRegion(GuardedRegion& region) noexcept {
    innermost = region.outer;
}

}  // namespace kx

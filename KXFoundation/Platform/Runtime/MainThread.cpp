#include <atomic>

#include <pthread.h>

#include <KXFoundation/Platform/Runtime/MainThread.h>

namespace kx {

namespace {
std::atomic<pthread_t> mainThread{pthread_self()};  // the library is loaded on the first thread
}

bool isMainThread() noexcept {
    return pthread_equal(mainThread.load(std::memory_order_relaxed), pthread_self());
}

void adoptMainThread() noexcept {
    mainThread.store(pthread_self(), std::memory_order_relaxed);
}

}  // namespace kx

#include <algorithm>
#include <system_error>
#include <thread>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

namespace kx {

namespace {

constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);

/// The thread that opens the module for whoever asks, and those who wait for it.
class Opening {
  public:
    Result<const DesktopModule*> waitFor(std::chrono::milliseconds patience) {
        const auto latest = std::chrono::steady_clock::now() + patience;
        const MutexLock lock(mutex_);
        if (!hasBegun_) begin();
        while (!isOver_ && std::chrono::steady_clock::now() < latest) ended_.waitUntil(mutex_, latest);
        if (!isOver_) return Error{ErrorKind::TimedOut, 0, "desktop module"};
        if (!module_) return Error{ErrorKind::Unsupported, 0, "desktop module"};
        return module_;
    }

  private:
    void begin() KX_REQUIRES(mutex_) {
        try {
            std::thread([this] { open(); }).detach();
            hasBegun_ = true;
        } catch (const std::system_error&) {  // the next one to ask tries again
        }
    }
    void open() {
        const DesktopModule* const opened = desktopModule();
        const MutexLock lock(mutex_);
        module_ = opened;
        isOver_ = true;
        ended_.notifyAll();
    }

    Mutex mutex_;
    Condition ended_;
    bool hasBegun_ KX_GUARDED_BY(mutex_) = false;
    bool isOver_ KX_GUARDED_BY(mutex_) = false;
    const DesktopModule* module_ KX_GUARDED_BY(mutex_) = nullptr;
};

}  // namespace

const DesktopModule* desktopModule() {
    const auto module = openModule<DesktopModule>("desktop");
    return module ? *module : nullptr;
}

Result<const DesktopModule*> desktopModuleWithin(std::chrono::milliseconds& patience) {
    static auto& opening = *new Opening;
    patience = std::clamp<std::chrono::milliseconds>(patience, std::chrono::milliseconds(0), kLongest);
    const Clock& clock = Clock::slot().current();
    const auto start = clock.now();
    auto module = opening.waitFor(patience);
    const auto spent = std::chrono::ceil<std::chrono::milliseconds>(clock.now() - start);
    patience = std::max(patience - spent, std::chrono::milliseconds(0));
    return module;
}

}  // namespace kx

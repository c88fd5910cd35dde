// SPDX-License-Identifier: MIT

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

namespace kx {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLongest = std::chrono::hours(1);

/// The thread that opens the module for whoever asks, and those who wait for it.
class Opening {
  public:
    Result<const DesktopModule*> waitUntil(steady_clock::time_point latest) {
        const MutexLock lock(mutex_);
        if (!hasBegun_) begin();
        while (hasBegun_ && !isOver_ && steady_clock::now() < latest) ended_.waitUntil(mutex_, latest);
        if (!isOver_) return Error{ErrorKind::TimedOut, 0, "desktop module"};
        if (!module_) return Error{ErrorKind::Unsupported, 0, "desktop module"};
        return module_;
    }

  private:
    void begin() KX_REQUIRES(mutex_) {
        try {
            std::thread([this] { open(); }).detach();
            hasBegun_ = true;
        } catch (const std::system_error&) {  // nothing to wait for; the next one to ask tries again
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

Result<const DesktopModule*> desktopModuleWithin(milliseconds& patience) {
    static auto& opening = *new Opening;
    const auto latest = steady_clock::now() + std::clamp(patience, milliseconds(0), kLongest);
    auto module = opening.waitUntil(latest);
    const auto left = std::chrono::floor<milliseconds>(latest - steady_clock::now());
    patience = std::max(left, milliseconds(0));
    return module;
}

}  // namespace kx

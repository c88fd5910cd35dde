// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/MemoryPressure.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

namespace {

class Descriptor {
  public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int number() const noexcept { return number_; }

  private:
    const int number_;
};

/// Linux' pressure stall information (Documentation/accounting/psi.rst): a trigger written to the file makes
/// it ready for POLLPRI when tasks stalled for memory that long within the window.
class PressureFile final : public MemoryPressure {
  public:
    ~PressureFile() override {
        ::eventfd_write(stop_.number(), 1);
        if (thread_.joinable()) thread_.join();
    }

    std::shared_ptr<void> observe(Observer observer) override {
        auto kept = std::make_shared<Observer>(std::move(observer));
        const MutexLock lock(mutex_);
        std::erase_if(observers_, [](const auto& former) { return former.expired(); });
        observers_.push_back(kept);
        if (!thread_.joinable() && setTrigger()) thread_ = std::thread([this] { serve(); });
        return kept;
    }

  private:
    bool setTrigger() const {
        // A process without privileges may use windows of whole two seconds.
        constexpr std::string_view kTrigger = "some 200000 2000000";
        return file_.number() >= 0 &&
               ::write(file_.number(), kTrigger.data(), kTrigger.size() + 1) > 0;  // with its zero
    }

    void serve() {
        pollfd ready[] = {{file_.number(), POLLPRI, 0}, {stop_.number(), POLLIN, 0}};
        for (;;) {
            if (::poll(ready, 2, -1) < 0 && errno != EINTR) return;
            if (ready[1].revents != 0 || (ready[0].revents & POLLERR) != 0) return;
            if ((ready[0].revents & POLLPRI) != 0) tellAll();
        }
    }

    void tellAll() {
        std::vector<std::shared_ptr<Observer>> told;
        {
            const MutexLock lock(mutex_);
            for (const auto& observer : observers_) {
                if (auto kept = observer.lock()) told.push_back(std::move(kept));
            }
        }
        for (const auto& observer : told) (*observer)();
    }

    const Descriptor file_{::open("/proc/pressure/memory", O_RDWR | O_NONBLOCK | O_CLOEXEC)};
    const Descriptor stop_{::eventfd(0, EFD_CLOEXEC)};
    Mutex mutex_;
    std::vector<std::weak_ptr<Observer>> observers_ KX_GUARDED_BY(mutex_);
    std::thread thread_ KX_GUARDED_BY(mutex_);
};

}  // namespace

PortSlot<MemoryPressure>& MemoryPressure::slot() {
    static constinit PortSlot<MemoryPressure> slot;
    return slot;
}

std::shared_ptr<MemoryPressure> MemoryPressure::makeDefault() {
    return std::make_shared<PressureFile>();
}

}  // namespace kx

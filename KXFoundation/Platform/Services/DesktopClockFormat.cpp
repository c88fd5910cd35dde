// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/DesktopClockFormat.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

namespace kx {

namespace {

/// Where a desktop keeps its choice. Others have none beside the locale; a schema that is installed without
/// its desktop says nothing about the user.
struct ClockKey {
    std::string_view desktop;  // in XDG_CURRENT_DESKTOP
    const char* schema;
    const char* key;
};
constexpr ClockKey kClockKeys[] = {
    {"GNOME", "org.gnome.desktop.interface", "clock-format"},
    {"Unity", "org.gnome.desktop.interface", "clock-format"},
    {"Budgie", "org.gnome.desktop.interface", "clock-format"},
    {"Pantheon", "org.gnome.desktop.interface", "clock-format"},
    {"X-Cinnamon", "org.cinnamon.desktop.interface", "clock-use-24h"},
};

const ClockKey* clockKeyFor(const Environment& environment) {
    const std::string desktops = ':' + environment.variable("XDG_CURRENT_DESKTOP").value_or("") + ':';
    const auto found = std::ranges::find_if(kClockKeys, [&](const ClockKey& row) {
        return desktops.find(':' + std::string(row.desktop) + ':') != desktops.npos;
    });
    return found == std::end(kClockKeys) ? nullptr : &*found;
}

/// What the module's thread writes and every thread reads.
class Following {
  public:
    void begin(const std::string& address, const ClockKey& row) {
        const DesktopModule* module = desktopModule();
        const MutexLock lock(mutex_);
        if (hasEnded_ || !module) return;
        table_ = module->clockFormat;
        handle_ = table_->follow(address.c_str(), row.schema, row.key, &Following::take, this);
    }
    void end() {
        const MutexLock lock(mutex_);
        hasEnded_ = true;
        if (handle_) table_->stop(handle_);
        handle_ = nullptr;
    }
    [[nodiscard]] ClockFormat format() const noexcept { return format_.load(std::memory_order_acquire); }

  private:
    static void take(void* self, std::uint32_t format) {
        const bool isKnown = format <= static_cast<std::uint32_t>(ClockFormat::TwentyFourHour);
        static_cast<Following*>(self)->format_.store(
            isKnown ? static_cast<ClockFormat>(format) : ClockFormat::Unset, std::memory_order_release);
    }

    std::atomic<ClockFormat> format_{ClockFormat::Unset};
    Mutex mutex_;
    const DesktopClockFormat* table_ KX_GUARDED_BY(mutex_) = nullptr;
    void* handle_ KX_GUARDED_BY(mutex_) = nullptr;
    bool hasEnded_ KX_GUARDED_BY(mutex_) = false;
};

/// The desktop's setting. The module is opened in the background, and only where a desktop with such a
/// setting and a bus to ask it on are there.
class DesktopClock final : public ClockFormatSetting {
  public:
    DesktopClock() {
        const ClockKey* const row = clockKeyFor(Environment::slot().current());
        if (!row) return;
        if (const auto address = sessionBusAddress()) {
            DispatchQueue::shared().async(
                [following = following_, address = *address, row] { following->begin(address, *row); });
        }
    }
    ~DesktopClock() override { following_->end(); }
    DesktopClock(const DesktopClock&) = delete;
    DesktopClock& operator=(const DesktopClock&) = delete;

    ClockFormat clockFormat() const noexcept override { return following_->format(); }

  private:
    std::shared_ptr<Following> following_ = std::make_shared<Following>();
};

}  // namespace

std::shared_ptr<ClockFormatSetting> ClockFormatSetting::makeDefault() {
    return std::make_shared<DesktopClock>();
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <algorithm>
#include <string>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/DesktopAnnouncer.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/ScreenReader.h>

namespace kx {

namespace {

std::string applicationName() {
    const auto bundle = NSBundle::mainBundle();
    const Value information = bundle->infoDictionary();
    if (const auto name = information["CFBundleDisplayName"].asString()) return std::string(*name);
    return bundle->bundleIdentifier().value_or(programName());
}

/// The first part of the text that is no longer than that, ending with a whole letter.
std::string beginning(std::string_view text, std::size_t longest) {
    const auto isInsideLetter = [&](std::size_t at) {
        return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
    };
    std::size_t end = std::min(text.size(), longest);
    while (end > 0 && isInsideLetter(end)) --end;
    return std::string(text.substr(0, end));
}

/// The connection, which is made anew for the next text once the desktop's has ended. Belongs to one queue.
class Announcing {
  public:
    Announcing() = default;
    ~Announcing() { close(); }
    Announcing(const Announcing&) = delete;
    Announcing& operator=(const Announcing&) = delete;

    void announce(const std::string& text) {
        if (announcer_ && table_->announce(announcer_, text.c_str())) return;
        close();
        open();
        if (announcer_) table_->announce(announcer_, text.c_str());
    }

  private:
    static void failed(void*, const char* why) {
        logError("announce to the accessibility bus", Error{ErrorKind::Denied, 0, why});
    }

    void open() {
        const auto bus = sessionBusAddress();
        if (!bus) return;  // nobody to ask: the module need not be opened
        const DesktopModule* module = desktopModule();
        if (!module) return;
        table_ = module->announcer;
        announcer_ = table_->open(bus->c_str(), applicationName().c_str(), failed, nullptr);
    }
    void close() {
        if (announcer_) table_->close(announcer_);
        announcer_ = nullptr;
    }

    const DesktopAnnouncer* table_ = nullptr;
    void* announcer_ = nullptr;
};

class DesktopScreenReader final : public ScreenReader {
  public:
    void announce(std::string_view text) override {
        constexpr std::size_t kLongest = 4096;
        if (text.empty()) return;
        queue_->async(
            [announcing = announcing_, begun = beginning(text, kLongest)] { announcing->announce(begun); });
    }

  private:
    std::shared_ptr<DispatchQueue> queue_ = DispatchQueue::serial("kx.screen-reader");
    std::shared_ptr<Announcing> announcing_ = std::make_shared<Announcing>();
};

}  // namespace

PortSlot<ScreenReader>& ScreenReader::slot() {
    static constinit PortSlot<ScreenReader> slot;
    return slot;
}

std::shared_ptr<ScreenReader> ScreenReader::makeDefault() {
    return std::make_shared<DesktopScreenReader>();
}

}  // namespace kx

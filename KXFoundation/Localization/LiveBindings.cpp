// SPDX-License-Identifier: MIT

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LiveBindings.h>
#include <KXFoundation/Localization/SelectionHook.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/BeforeDisplay.h>
#include <KXFoundation/Platform/Views/NSApplication.h>

namespace kx::live {

namespace {

constexpr std::array<char, 5> kSlots{};  // the addresses are the keys

const void* keyOf(Slot slot) {
    return &kSlots[static_cast<std::size_t>(slot)];
}

class KXLiveBinding : public Subclass<KXLiveBinding, NSObject> {
  public:
    bool init(const std::shared_ptr<NSObject>& object, Apply apply) {
        object_ = object;
        apply_ = std::move(apply);
        return Super::init();
    }
    void run() const {
        const auto object = object_.lock();
        if (object && apply_) apply_(*object);
    }

  private:
    std::weak_ptr<NSObject> object_;
    Apply apply_;
};

/// What bound controls depend on.
struct Language {
    std::string code;
    bool isRTL = false;

    static Language present() {
        const bool isRTL = KXLocalizationUtils::isRTL();  // which reloads the selection
        return {KXLocalizationUtils::selectLanguage(), isRTL};
    }
    bool operator==(const Language&) const = default;
};

/// A selection is told by the hook, which wakes the main thread. That the system asks for another language is
/// found before the next drawing, where a switch is applied that no block has come to yet.
class Bindings {
  public:
    void add(const std::shared_ptr<KXLiveBinding>& binding);
    void followSwitch();
    void followSwitchBeforeDisplay() {
        if (announced_ || NSLocale::settingsVersion() != settings_) followSwitch();
    }
    void announce();

  private:
    void start();
    void forgetDead();

    std::atomic<bool> started_{false};
    std::atomic<bool> announced_{false};
    std::uint64_t settings_ = 0;  // the rest: main thread only
    Language shown_;
    std::vector<std::weak_ptr<KXLiveBinding>> bindings_;
    std::size_t mostBeforeForgetting_ = 0;
};

constinit ProcessState<Bindings> bindings;

void Bindings::start() {
    if (started_) return;
    settings_ = NSLocale::settingsVersion();
    shown_ = Language::present();
    started_ = true;
    addBeforeDisplay([] { bindings.get().followSwitchBeforeDisplay(); });
    languages::selectionHook = [] { bindings.get().announce(); };
}

void Bindings::add(const std::shared_ptr<KXLiveBinding>& binding) {
    start();
    if (bindings_.size() >= mostBeforeForgetting_) forgetDead();
    bindings_.emplace_back(binding);
}

void Bindings::forgetDead() {
    std::erase_if(bindings_, [](const auto& binding) { return binding.expired(); });
    mostBeforeForgetting_ = 2 * bindings_.size() + 32;
}

/// Any thread.
void Bindings::announce() {
    if (!started_ || announced_.exchange(true)) return;
    DispatchQueue::main().async([] { bindings.get().followSwitch(); });
}

void Bindings::followSwitch() {
    announced_ = false;
    settings_ = NSLocale::settingsVersion();
    Language now = Language::present();
    if (now == shown_) return;
    shown_ = std::move(now);
    forgetDead();
    const auto all = bindings_;  // what is applied may bind
    for (const auto& weak : all) {
        if (const auto binding = weak.lock()) binding->run();
    }
}

std::shared_ptr<KXLiveBinding> bindingOf(const NSObject& object, Slot slot) {
    return std::static_pointer_cast<KXLiveBinding>(associatedValue(object, keyOf(slot)).asObject());
}

}  // namespace

void attach(const std::shared_ptr<NSObject>& object, Slot slot, Apply apply) {
    if (!NSApplication::isMainThread()) return callerError("LiveLanguage: a binding off the main thread");
    const bool follows = static_cast<bool>(apply);
    const auto binding = make<KXLiveBinding>(object, std::move(apply));
    setAssociatedValue(*object, keyOf(slot), Value(std::shared_ptr<NSObject>(binding)));
    if (follows) bindings.get().add(binding);
    binding->run();
}

void detach(NSObject& object, Slot slot) {
    setAssociatedValue(object, keyOf(slot), {});
}

bool isAttached(const NSObject& object, Slot slot) {
    return bindingOf(object, slot) != nullptr;
}

void applyAgain(const NSObject& object) {
    for (std::size_t slot = 0; slot < kSlots.size(); ++slot) {
        if (const auto binding = bindingOf(object, static_cast<Slot>(slot))) binding->run();
    }
}

}  // namespace kx::live

// SPDX-License-Identifier: MIT

// The user's choice: kept in the defaults, resolved through the tables, loaded again by every look-up.
#include <algorithm>
#include <chrono>
#include <cstdint>

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LanguageSteps.h>
#include <KXFoundation/Localization/LanguageTables.h>
#include <KXFoundation/Localization/SelectionHook.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

using namespace languages;

/// How long a choice that could not be written waits for the next try: longer each time, for a try can last
/// as long as another process holds the file.
constexpr std::chrono::seconds kShortestPause(5), kLongestPause(600);

/// Everything that decides what a reload leaves behind. A reload that would find the same again is skipped:
/// it would store what is stored already, in the variables and in the defaults. (Whether this is the Orvik
/// application is decided by the main bundle, which is read once in a process.)
struct Reloaded {
    std::uint64_t settings = 0;
    std::uint64_t defaults = 0;  // versions begin at 1: equal to none before the first reload
    std::optional<std::string> language;
    std::optional<std::string> mode;
    std::shared_ptr<NSBundle>
        bundle;  // compared only while the system is followed: else a reload leaves it alone
    std::optional<std::chrono::nanoseconds> retry;  // when to write again what could not be written
    std::chrono::seconds pause = kShortestPause;

    [[nodiscard]] bool holds() const {
        return defaults == NSUserDefaults::standardUserDefaults().version() &&
               settings == NSLocale::settingsVersion() && language == kx::selectLanguage &&
               mode == selectLog && (bundle == selectLanguageBundle || mode != kFollowSystem) &&
               (!retry || Clock::slot().current().now() < *retry);
    }

    /// The versions are those from before the values were read: a change that came between is seen next time.
    void note(std::uint64_t settingsBefore, std::uint64_t defaultsBefore) {
        settings = settingsBefore;
        defaults = defaultsBefore;
        language = kx::selectLanguage;
        mode = selectLog;
        bundle = selectLanguageBundle;
    }

    /// Whoever follows the system has every reload write the choice down.
    void noteFlush(bool flushed) {
        retry.reset();
        if (!flushed) retry = Clock::slot().current().now() + pause;
        pause = flushed ? kShortestPause : std::min(2 * pause, kLongestPause);
    }
};

constinit ProcessState<Reloaded> lastReload;

std::string systemSelection() {
    const std::vector<std::string> preferred = NSLocale::preferredLanguages();
    if (preferred.empty()) return std::string(kDefault);
    const std::string& tag = preferred.front();
    if (tag == kBrazilian) return tag;
    return std::string(
        languageFor(kSystemLanguages, &SystemLanguage::selectionPrefix, tag, KXAppUtils::isOrvikApp())
            .value_or(kDefault));
}

std::string fixedSelection(std::string_view language) {
    return std::string(
        languageFor(kAliases, &Alias::prefix, language, KXAppUtils::isOrvikApp()).value_or(language));
}

Value stored(const std::optional<std::string>& text) {
    return text ? Value(*text) : Value();
}

bool keepSelection() {
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    defaults.setObjects({{kSelectLanguage, stored(kx::selectLanguage)}, {kSelectLog, stored(selectLog)}});
    return defaults.synchronize();
}

/// Answers whether the choice could be written.
bool choose(std::optional<std::string_view> language) {
    const bool follows = language == kAuto;
    std::optional<std::string> selected;
    if (follows) {
        selected = systemSelection();
    } else if (language) {
        selected = fixedSelection(*language);
    }
    selectLog = follows ? kFollowSystem : kNotFollowSystem;
    kx::selectLanguage = std::move(selected);
    const bool isKept = keepSelection();
    selectLanguageBundle = kx::selectLanguage ? mainBundleFolder(*kx::selectLanguage) : nullptr;
    if (const auto hook = selectionHook.load(std::memory_order_acquire)) hook();
    return isKept;
}

}  // namespace

constinit std::atomic<void (*)()> languages::selectionHook{nullptr};

std::optional<std::string> KXLocalizationUtils::setSelectLanguage(std::optional<std::string_view> language) {
    choose(language);
    return kx::selectLanguage;
}

std::string KXLocalizationUtils::selectLanguage() {
    if (kx::selectLanguage && *kx::selectLanguage != kAuto) return *kx::selectLanguage;
    return currentPreferredLanguage();
}

bool languages::selectionHolds() {
    return lastReload.get().holds();
}

void languages::reloadSelection() {
    Reloaded& reloaded = lastReload.get();
    if (reloaded.holds()) return;
    NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
    const std::uint64_t settingsBefore = NSLocale::settingsVersion();
    const std::uint64_t defaultsBefore = defaults.version();
    kx::selectLanguage = defaults.stringForKey(kSelectLanguage);
    selectLog = defaults.stringForKey(kSelectLog);
    const bool isKept = selectLog != kFollowSystem || choose(kAuto);
    reloaded.note(settingsBefore, defaultsBefore);
    reloaded.noteFlush(isKept);
}

}  // namespace kx

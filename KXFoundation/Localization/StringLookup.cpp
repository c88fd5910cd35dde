// SPDX-License-Identifier: MIT

// From a key to the text of the selected language, then of the default one.
#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/LanguageSteps.h>
#include <KXFoundation/Localization/LanguageTables.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>

namespace kx {

namespace {

using namespace languages;
using TableName = std::optional<std::string_view>;

/// What a bundle's table answers: the text, or the key itself; nothing without a bundle.
std::optional<std::string_view> ask(const NSBundle* bundle, std::string_view key, TableName table) {
    if (!bundle) return std::nullopt;
    return bundle->lookUp(key, table).value_or(key);
}

std::optional<std::string> answer(const NSBundle* chosen, const NSBundle* fallback, std::string_view key,
                                  TableName table) {
    std::optional<std::string_view> text = ask(chosen, key, table);
    if (!text || *text == key) text = ask(fallback, key, table);
    return std::optional<std::string>(text);
}

/// Makes a kept bundle where there is none, over the main bundle's folder for the language.
const NSBundle* kept(std::shared_ptr<NSBundle>& bundle, std::string_view language) {
    if (!bundle) bundle = mainBundleFolder(language);
    return bundle.get();
}

const NSBundle* keptCurrent() {
    return currentLanguageBundle ? currentLanguageBundle.get()
                                 : kept(currentLanguageBundle, currentPreferred());
}

/// The look-up in the selection as it is.
std::optional<std::string> lookUp(const NSBundle* bundle, std::string_view key, TableName tableName) {
    const auto& selection = kx::selectLanguage;
    if (bundle) {
        const auto fallback = bundleFolder(*bundle, kDefault);
        const std::string_view preferred = currentPreferred();  // computed with or without a selection
        const auto chosen = bundleFolder(*bundle, selection ? std::string_view(*selection) : preferred);
        return answer(chosen.get(), fallback.get(), key, tableName);
    }
    const NSBundle* fallback = kept(defaultLanguageBundle, kDefault);
    const NSBundle* current = keptCurrent();
    const NSBundle* chosen = selection ? kept(selectLanguageBundle, *selection) : current;
    return answer(chosen, fallback, key, tableName);
}

}  // namespace

std::shared_ptr<NSBundle> languages::bundleFolder(const NSBundle& bundle, std::string_view language) {
    const auto path = bundle.pathForResource(language, "lproj");
    return path ? make<NSBundle>(*path) : nullptr;
}

std::shared_ptr<NSBundle> languages::mainBundleFolder(std::string_view language) {
    return bundleFolder(*NSBundle::mainBundle(), language);
}

std::optional<std::string> KXLocalizationUtils::localizedStringForKey(std::string_view key,
                                                                      TableName tableName) {
    return localizedStringInBundle(nullptr, key, tableName);
}

std::optional<std::string> KXLocalizationUtils::localizedStringInBundle(
    const std::shared_ptr<NSBundle>& bundle, std::string_view key, TableName tableName) {
    if (selectionHolds()) return lookUp(bundle.get(), key, tableName);
    // Copies: the arguments may lie in the variables that a reload writes.
    const auto ownBundle = bundle;
    const std::string ownKey(key);
    const auto ownTable = tableName ? std::optional<std::string>(*tableName) : std::nullopt;
    reloadSelection();
    return lookUp(ownBundle.get(), ownKey, ownTable);
}

}  // namespace kx

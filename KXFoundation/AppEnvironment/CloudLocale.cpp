// SPDX-License-Identifier: MIT

// The region of the cloud service: from the system's language, or from what the user selected.
#include <algorithm>

#include <KXFoundation/AppEnvironment/CloudLocales.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace kx {

namespace {

using cloud::Row;

/// One application's view of the tables.
struct CloudTables {
    bool orvik;

    [[nodiscard]] bool isOffered(std::string_view locale) const {
        return std::ranges::find(cloud::kLocales, locale) != cloud::kLocales.end() &&
               !(orvik && locale == cloud::kNotForOrvik);
    }

    [[nodiscard]] std::optional<std::string_view> find(const auto& rows, std::string_view key) const {
        const auto row = std::ranges::find(rows, key, &Row::key);
        if (row == rows.end()) return std::nullopt;
        return orvik ? row->orvikLocale : row->locale;
    }

    [[nodiscard]] std::optional<std::string_view> firstOfLanguage(std::string_view language) const {
        for (const std::string_view locale : cloud::kLocales) {
            if (locale.substr(0, 2) == language && isOffered(locale)) return locale;
        }
        return std::nullopt;
    }
};

std::string join(std::string_view language, std::string_view rest) {
    return std::string(language).append("_").append(rest);
}

std::string cloudLocaleOfTag(std::string_view tag, const CloudTables& tables) {
    const std::size_t firstDash = tag.find('-');
    if (firstDash == tag.npos) return std::string(cloud::kDefaultLocale);
    const std::string_view language = tag.substr(0, firstDash);
    const std::string_view afterLanguage = tag.substr(firstDash + 1);
    const std::string_view second = afterLanguage.substr(0, afterLanguage.find('-'));
    const std::string_view last = tag.substr(tag.rfind('-') + 1);

    if (std::string exact = join(language, last); tables.isOffered(exact)) return exact;
    const auto byScript = tables.find(cloud::kByScript, join(language, second));
    if (byScript && tables.isOffered(*byScript)) return std::string(*byScript);
    return std::string(tables.firstOfLanguage(language).value_or(cloud::kDefaultLocale));
}

}  // namespace

std::string KXAppUtils::currentCloudLocale() {
    const std::vector<std::string> languages = NSLocale::preferredLanguages();
    if (languages.empty()) return std::string(cloud::kDefaultLocale);
    return cloudLocaleOfTag(languages.front(), {isOrvikApp()});
}

std::optional<std::string> KXAppUtils::getCloudLocaleBySelectedCountryBykey(
    std::optional<std::string_view> key) {
    if (!key) return std::nullopt;
    return std::optional<std::string>(CloudTables{isOrvikApp()}.find(cloud::kBySelectionKey, *key));
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <algorithm>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/PosixLocaleName.h>
#include <KXFoundation/Platform/Runtime/Environment.h>

namespace kx {

namespace {

constexpr std::size_t kLongestVariable = 4096;
constexpr std::string_view kPlainLocale = "C";

/// The first of the variables that is set, "C" if none is, as setlocale(3) has it.
std::string firstSet(const Environment& environment, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (auto value = environment.variable(name)) return *std::move(value);
    }
    return std::string(kPlainLocale);
}

bool contains(const std::vector<std::string>& tags, const std::string& tag) {
    return std::ranges::find(tags, tag) != tags.end();
}

void addOnce(std::vector<std::string>& tags, const std::string& tag) {
    if (!contains(tags, tag)) tags.push_back(tag);
}

/// Whether `locale` is `name` and the region that it lacks, in no other script.
bool addsRegion(std::string_view locale, std::string_view name) {
    const auto whole = parsePosixLocaleName(locale), part = parsePosixLocaleName(name);
    return whole && part && part->language == whole->language && part->script == whole->script &&
           part->region.empty() && part->variant.empty() && !whole->region.empty();
}

/// The locale whose messages are the program's own, English ones.
bool isPlain(std::string_view locale) noexcept {
    return locale == kPlainLocale || locale == "POSIX";
}

/// LANGUAGE is a list for messages that counts only where the locale is not plain (gettext manual,
/// section 2.3.3), and ends where a plain one stands in it, which is English. A language without a region in
/// it is that of the locale, if it is the same one: "de" with the locale "de_AT" is "de-AT".
std::vector<std::string> languagesOf(const Environment& environment) {
    std::vector<std::string> tags;
    const std::string locale = firstSet(environment, {"LC_ALL", "LC_MESSAGES", "LANG"});
    if (isPlain(locale)) return tags;
    const std::string list = environment.variable("LANGUAGE").value_or("");
    std::string_view rest = list.size() <= kLongestVariable ? std::string_view(list) : std::string_view();
    const auto localeTag = languageTagForPosixName(locale);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        const std::string_view name = rest.substr(0, end);
        if (isPlain(name)) {
            addOnce(tags, "en");
            return tags;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const auto tag = languageTagForPosixName(name);
        if (!tag) continue;
        const bool isOfLocale = addsRegion(locale, name);
        addOnce(tags, isOfLocale && !contains(tags, *localeTag) ? *localeTag : *tag);
    }
    if (localeTag) addOnce(tags, *localeTag);
    return tags;
}

std::string identifierOf(const Environment& environment) {
    const auto name = parsePosixLocaleName(firstSet(environment, {"LC_ALL", "LC_TIME", "LANG"}));
    return name ? localeIdentifierFor(*name) : "en_US";
}

/// A process's variables do not change from outside: they are read once.
class EnvironmentLocale final : public LocaleSettings {
  public:
    std::vector<std::string> preferredLanguages() const override { return languages_; }
    std::string localeIdentifier() const override { return identifier_; }
    std::uint64_t version() const noexcept override { return 1; }

  private:
    std::vector<std::string> languages_ = languagesOf(Environment::slot().current());
    std::string identifier_ = identifierOf(Environment::slot().current());
};

}  // namespace

std::shared_ptr<LocaleSettings> LocaleSettings::makeDefault() {
    return std::make_shared<EnvironmentLocale>();
}

}  // namespace kx

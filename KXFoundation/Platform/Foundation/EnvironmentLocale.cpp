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

void addLanguage(std::vector<std::string>& tags, std::string_view name) {
    auto tag = languageTagForPosixName(name);
    if (tag && std::ranges::find(tags, *tag) == tags.end()) tags.push_back(*std::move(tag));
}

/// LANGUAGE is a list for messages that counts only where the locale is not plain (gettext manual,
/// section 2.3.3).
std::vector<std::string> languagesOf(const Environment& environment) {
    std::vector<std::string> tags;
    const std::string locale = firstSet(environment, {"LC_ALL", "LC_MESSAGES", "LANG"});
    if (locale == kPlainLocale || locale == "POSIX") return tags;
    const std::string list = environment.variable("LANGUAGE").value_or("");
    std::string_view rest = list.size() <= kLongestVariable ? std::string_view(list) : std::string_view();
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        addLanguage(tags, rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    addLanguage(tags, locale);
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

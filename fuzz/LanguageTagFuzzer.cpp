// SPDX-License-Identifier: MIT

// The names of locales in the environment, one by one and as a list.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Testing/FakeEnvironment.h>

#include "InputText.h"

namespace {

bool isOfTag(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

bool isOfIdentifier(char c) {
    return c == '_' || (isOfTag(c) && c != '-');
}

void checkTag(std::string_view tag) {
    if (!std::ranges::all_of(tag, isOfTag)) std::abort();
    if (!kx::make<kx::NSLocale>(tag)->languageCode()) std::abort();
    const bool hasVariant = tag.ends_with("-valencia");  // names have no place for it but after the '@'
    if (!hasVariant && kx::languageTagForPosixName(tag) != tag) std::abort();
}

void checkSettings(std::string_view variables) {
    const auto environment = std::make_shared<kx::testing::FakeEnvironment>();
    environment->set("LANGUAGE", variables).set("LANG", variables.substr(0, variables.find(':')));
    const kx::ScopedPort<kx::Environment> scope(environment);
    const auto settings = kx::LocaleSettings::makeDefault();
    const auto languages = settings->preferredLanguages();
    for (auto tag = languages.begin(); tag != languages.end(); ++tag) {
        checkTag(*tag);
        if (std::find(languages.begin(), tag, *tag) != tag) std::abort();
    }
    if (!std::ranges::all_of(settings->localeIdentifier(), isOfIdentifier)) std::abort();
    if (!kx::make<kx::NSLocale>(settings->localeIdentifier())->languageCode()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = kx::fuzz::textOf(data, size);
    if (const auto tag = kx::languageTagForPosixName(text)) checkTag(*tag);
    checkSettings(text);
    return 0;
}

// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx::testing {

/// One application, as if just started, whose user prefers these languages.
struct ApplicationRun {
    explicit ApplicationRun(std::vector<std::string> preferred = {"en-US"},
                            std::string_view name = "Harbour") {
        platform.locale().setPreferredLanguages(std::move(preferred));
        platform.bundle().setInfo("CFBundleDisplayName", name);
    }

    ApplicationRun& localizedIn(const std::vector<std::string_view>& languages) {
        for (const std::string_view code : languages) platform.bundle().addLocalization(code);
        return *this;
    }

    void restart() { platform.restart(); }

    ScopedPlatform platform;
};

}  // namespace kx::testing

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include <unicode/ures.h>
#include <unicode/ustring.h>

namespace peers {

/// ICU's way to an application's texts: a compiled resource bundle, mapped into memory.
class IcuTexts {
  public:
    explicit IcuTexts(const std::string& folder) {
        UErrorCode status = U_ZERO_ERROR;
        bundle_ = ures_open(folder.c_str(), "en", &status);
        if (U_FAILURE(status)) {
            std::fprintf(stderr, "%s: %s\n", folder.c_str(), u_errorName(status));
            std::abort();
        }
    }
    ~IcuTexts() { ures_close(bundle_); }
    IcuTexts(const IcuTexts&) = delete;
    IcuTexts& operator=(const IcuTexts&) = delete;

    /// The text, in place, in UTF-16; empty if the key has none.
    [[nodiscard]] std::u16string_view lookUp(const std::string& key) const {
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t length = 0;
        const UChar* const text = ures_getStringByKey(bundle_, key.c_str(), &length, &status);
        return U_SUCCESS(status) ? std::u16string_view(text, static_cast<std::size_t>(length))
                                 : std::u16string_view();
    }

    /// The same as UTF-8, to compare answers with.
    [[nodiscard]] std::string utf8(const std::string& key) const {
        const std::u16string_view text = lookUp(key);
        std::string converted(text.size() * 3, '\0');
        UErrorCode status = U_ZERO_ERROR;
        std::int32_t length = 0;
        u_strToUTF8(converted.data(), static_cast<std::int32_t>(converted.size()), &length, text.data(),
                    static_cast<std::int32_t>(text.size()), &status);
        converted.resize(static_cast<std::size_t>(length));
        return converted;
    }

  private:
    UResourceBundle* bundle_ = nullptr;
};

}  // namespace peers

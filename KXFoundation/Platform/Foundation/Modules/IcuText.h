// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <unicode/bytestream.h>
#include <unicode/unistr.h>

#include <KXFoundation/Platform/Foundation/IcuModule.h>

/// Texts between ICU and the library. Private to the module.
namespace kx {

class IcuTextSink final : public icu::ByteSink {
  public:
    explicit IcuTextSink(const IcuText& text) : text_(text) {}
    void Append(const char* bytes, std::int32_t count) override {
        text_.append(text_.context, bytes, static_cast<std::size_t>(count));
    }

  private:
    const IcuText& text_;
};

inline void append(const icu::UnicodeString& text, const IcuText& into) {
    IcuTextSink sink(into);
    text.toUTF8(sink);
}

inline void append(std::string_view text, const IcuText& into) {
    into.append(into.context, text.data(), text.size());
}

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// How an operation ended: a code of 0 or more is success, a negative one failure; an absent error is success
/// too. Fill it on one thread, then share it read-only.
class KX_EXPORT KXError : public Subclass<KXError, NSObject> {
  public:
    [[nodiscard]] static std::shared_ptr<KXError> errorWithCode(std::int32_t code);

    /// Code 0, no message.
    bool init() { return Super::init(); }
    bool init(std::int32_t code);

    [[nodiscard]] std::int32_t code() const noexcept { return code_; }
    void setCode(std::int32_t code) noexcept { code_ = code; }

    /// A text for a person, absent until set; valid until the next setMessage.
    [[nodiscard]] const std::optional<std::string>& message() const noexcept { return message_; }
    void setMessage(std::optional<std::string_view> message) { message_ = message; }

  private:
    std::int32_t code_ = 0;
    std::optional<std::string> message_;
};

/// The one rule for outcomes: false only for an error that is there and has a negative code.
[[nodiscard]] inline bool isSuccess(const KXError* error) noexcept {
    return !error || error->code() >= 0;
}

}  // namespace kx

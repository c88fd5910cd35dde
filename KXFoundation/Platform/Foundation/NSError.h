// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// The domain of errors that the system reported; their code is an errno value, 0 if it gave none.
inline constexpr std::string_view NSPOSIXErrorDomain = "NSPOSIXErrorDomain";

/// An error as it is handed to an application. Immutable; any thread.
class KX_EXPORT NSError : public Subclass<NSError, NSObject> {
  public:
    [[nodiscard]] static std::shared_ptr<NSError> errorWithDomain(std::string_view domain, std::int64_t code,
                                                                  Value userInfo = {});
    /// What the world did, as an error of NSPOSIXErrorDomain; its text is in the description. Its code is the
    /// system's error, or the nearest to its kind: never 0.
    [[nodiscard]] static std::shared_ptr<NSError> errorWithError(const Error& error);

    bool init(std::string_view domain, std::int64_t code, Value userInfo);

    [[nodiscard]] const std::string& domain() const noexcept { return domain_; }
    [[nodiscard]] std::int64_t code() const noexcept { return code_; }
    /// A dictionary; null if the error carries nothing.
    [[nodiscard]] const Value& userInfo() const noexcept { return userInfo_; }

    [[nodiscard]] std::string description() const override;
    /// The same domain, code and user information.
    [[nodiscard]] bool isEqual(const NSObject& other) const override;

  private:
    std::string domain_;
    std::int64_t code_ = 0;
    Value userInfo_;
};

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <KXFoundation/Platform/Runtime/Export.h>

/// What the world does to an operation: a Result holds either its value or the Error that kept it from having
/// one. "Absent" is no error (nullptr, std::nullopt); a mistake of the caller is not one either
/// (CallerError.h).
namespace kx {

enum class ErrorKind : std::uint8_t {
    Missing,      ///< no such file, item or host
    Corrupt,      ///< the data breaks its own format
    Ended,        ///< the data stops before its format says so
    TooLarge,     ///< beyond a limit of ours
    Denied,       ///< no permission, or a read-only place
    Full,         ///< no room left on the device
    Busy,         ///< somebody else holds it
    TimedOut,     ///< no answer within the time given
    Unsupported,  ///< this machine or build cannot do it
    Failed,       ///< anything else the system reports
};

[[nodiscard]] KX_EXPORT std::string_view errorKindName(ErrorKind kind) noexcept;

/// One of an application's own: `Error{ErrorKind::Failed, 0, "asking for berths"}`.
struct KX_EXPORT Error {
    ErrorKind kind = ErrorKind::Failed;
    int systemError = 0;  ///< the errno behind it, 0 if there was none
    std::string where;    ///< what was being done, for the log line

    /// The error for an errno value, with the kind that fits it.
    [[nodiscard]] static Error fromErrno(int systemError, std::string where);

    /// One line for a person: where, kind, and the system's own text.
    [[nodiscard]] std::string message() const;
};

template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool ok() const noexcept { return state_.index() == 0; }
    explicit operator bool() const noexcept { return ok(); }

    /// The value; only for a result that is ok.
    T& value() & { return std::get<0>(state_); }
    const T& value() const& { return std::get<0>(state_); }
    T&& value() && { return std::get<0>(std::move(state_)); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T&& operator*() && { return std::move(*this).value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    /// The error; only for a result that is not ok.
    const Error& error() const& { return std::get<1>(state_); }
    Error&& error() && { return std::get<1>(std::move(state_)); }

  private:
    std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    Result(Error error) : state_(std::move(error)) {}

    [[nodiscard]] bool ok() const noexcept { return state_.index() == 0; }
    explicit operator bool() const noexcept { return ok(); }
    const Error& error() const& { return std::get<1>(state_); }
    Error&& error() && { return std::get<1>(std::move(state_)); }

  private:
    std::variant<std::monostate, Error> state_;
};

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Reports a mistake of the caller (an index out of range, a required callback missing) as one fault line:
/// callerError("KXList: index 7 of 3"). The operation then changes nothing and answers none, 0 or false.
/// In strict mode it prints a backtrace and aborts instead. Any thread.
KX_EXPORT void callerError(std::string_view what);

/// Strict mode: every caller error aborts. Off unless switched on; meant for tests and debug builds.
KX_EXPORT void setStrictMode(bool strict) noexcept;
[[nodiscard]] KX_EXPORT bool strictMode() noexcept;

}  // namespace kx

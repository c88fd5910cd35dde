// SPDX-License-Identifier: MIT
#pragma once

/// Which sanitizers this is compiled for, with g++ or clang.
namespace kx {

#if defined(__has_feature)
inline constexpr bool kAddressSanitizer = __has_feature(address_sanitizer);
inline constexpr bool kThreadSanitizer = __has_feature(thread_sanitizer);
#else
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif
#ifdef __SANITIZE_THREAD__
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif
#endif

}  // namespace kx

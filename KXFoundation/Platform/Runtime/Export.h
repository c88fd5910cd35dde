// SPDX-License-Identifier: MIT
#pragma once

#if __cplusplus < 202002L
#error "KXFoundation needs C++20: -std=c++20"
#endif

/// Marks what the shared libraries export; everything else in them is hidden.
#define KX_EXPORT __attribute__((visibility("default")))

// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the shared libraries export; everything else in them is hidden.
#define KX_EXPORT __attribute__((visibility("default")))

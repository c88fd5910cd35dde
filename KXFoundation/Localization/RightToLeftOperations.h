// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Views/ViewOperations.h>

/// The names under which the library's replacements stand in the classes' tables. Once they are exchanged at
/// load (LoadTimeInterceptions.cpp), these names reach the platform's own implementations. Private to
/// Localization.
namespace kx {

inline constinit Operation<void(NSTextAlignment)> rtlSetTextAlignmentOperation{"rtl_setTextAlignment:"};
inline constinit Operation<bool(NSRect)> rtlInitWithFrameOperation{"rtl_initWithFrame:"};
inline constinit Operation<bool(NSCoder&)> rtlInitWithCoderOperation{"rtl_initWithCoder:"};

}  // namespace kx

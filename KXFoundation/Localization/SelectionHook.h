// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include <KXFoundation/Platform/Runtime/Export.h>

/// How live texts learn of a selection, from the library that has no views. Private to Localization.
namespace kx::languages {

/// Called at the end of every KXLocalizationUtils::setSelectLanguage(), on its thread; none at first.
KX_EXPORT extern std::atomic<void (*)()> selectionHook;

}  // namespace kx::languages

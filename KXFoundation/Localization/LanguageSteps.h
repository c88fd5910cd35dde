// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSBundle.h>

/// The steps that the operations of KXLocalizationUtils share, without copies of their answers. Private to
/// Localization.
namespace kx::languages {

/// Whether a reload would find the selection as it is. Free of system calls and allocations.
[[nodiscard]] bool selectionHolds();
/// Loads the selection from the user defaults and, where it follows the system, resolves it afresh; nothing
/// to do while it holds.
void reloadSelection();

/// As the operations of these names; valid until the variables that they answer from are written.
[[nodiscard]] const std::string& currentUse();
[[nodiscard]] std::string_view currentPreferred();

/// The main bundle's folder for a language, none if it has no such folder.
[[nodiscard]] std::shared_ptr<NSBundle> mainBundleFolder(std::string_view language);
/// The same for any bundle.
[[nodiscard]] std::shared_ptr<NSBundle> bundleFolder(const NSBundle& bundle, std::string_view language);

}  // namespace kx::languages

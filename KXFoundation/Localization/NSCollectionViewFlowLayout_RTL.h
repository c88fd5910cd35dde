// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSCollectionViewFlowLayout;

/// Flow layouts mirror their rows in a right-to-left language: the library gives the class's query this
/// answer when it is loaded, so that every layout that does not override it follows the language.
struct KX_EXPORT NSCollectionViewFlowLayout_RTL {
    NSCollectionViewFlowLayout_RTL() = delete;

    /// What the layout's own query answers: KXLocalizationUtils::isRTL() unless a subclass says otherwise.
    [[nodiscard]] static bool flipsHorizontallyInOppositeLayoutDirection(
        const std::shared_ptr<NSCollectionViewFlowLayout>& layout);
};

}  // namespace kx

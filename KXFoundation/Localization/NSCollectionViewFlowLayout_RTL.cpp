// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/NSCollectionViewFlowLayout_RTL.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>

namespace kx {

bool NSCollectionViewFlowLayout_RTL::flipsHorizontallyInOppositeLayoutDirection(
    const std::shared_ptr<NSCollectionViewFlowLayout>& layout) {
    return layout && layout->flipsHorizontallyInOppositeLayoutDirection();
}

}  // namespace kx

// SPDX-License-Identifier: MIT

// One layout of the UI library, made and asked.
#include <cstdio>

#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>

int main() {
    const auto layout = kx::make<kx::NSCollectionViewFlowLayout>();
    layout->setItemSize({48, 24});
    std::printf("%g\n", layout->itemSize().width);
}

// SPDX-License-Identifier: MIT

#include <array>
#include <random>

#include <KXFoundation/Platform/Services/Photos/PhotoChanges.h>

namespace kx {

std::string newPhotoIdentifier() {
    constexpr char kDigits[] = "0123456789abcdef";
    std::random_device random;  // the kernel's own
    std::string identifier;
    for (int word = 0; word < 4; ++word) {
        auto bits = random();
        for (int digit = 0; digit < 8; ++digit, bits >>= 4) identifier.push_back(kDigits[bits & 0xF]);
    }
    return identifier;
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <md5.h>
#include <sys/types.h>  // md5.h needs it

#include <KXFoundation/Platform/Foundation/MD5.h>

namespace kx {

std::array<std::byte, 16> md5(std::span<const std::byte> bytes) noexcept {
    std::array<std::byte, 16> digest;
    static_assert(MD5_DIGEST_LENGTH == sizeof digest);
    MD5_CTX context;
    MD5Init(&context);
    MD5Update(&context, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    MD5Final(reinterpret_cast<std::uint8_t*>(digest.data()), &context);
    return digest;
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace kx {

unsigned long long xxh3Avx2(const void* bytes, unsigned long size);

/// XXH3 compiled for processors with AVX2. Nothing of the standard library is called here: a copy of it that
/// was compiled for AVX2 could be the one that the linker keeps for all.
unsigned long long xxh3Avx2(const void* bytes, unsigned long size) {
    return XXH3_64bits(bytes, size);
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <KXFoundation/Platform/Foundation/ZoneRules.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "InputText.h"

namespace {

constexpr std::int64_t kFarthest = 48 * 3600;

bool isNear(std::int64_t one, std::int64_t other) {
    return std::abs(one - other) <= kFarthest;
}

void check(const kx::ZoneRules& rules, std::int64_t utc) {
    const std::int64_t offset = rules.offsetAt(utc);
    const auto instants = rules.instantsAt(utc + offset);
    const bool isKept = isNear(offset, 0) && isNear(instants.before, utc) && isNear(instants.after, utc);
    if (!isKept) std::abort();
    const auto around = rules.surroundingsOf(utc);
    const bool isWhole = around.from <= utc - 2 * kFarthest && around.to >= utc + 2 * kFarthest &&
                         around.localChange[0] <= around.localChange[1];
    if (isWhole && instants.before != utc + offset - around.offsetAtLocal(utc + offset)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Whatever was read under a name is kept for the process, so each file has its own, and is small.
    static std::size_t number = 0;
    if (size > 4096) return 0;
    static const kx::testing::TemporaryDirectory folder;
    const std::string path = folder.write(std::to_string(++number), kx::fuzz::textOf(data, size));
    const auto rules = kx::ZoneRules::load(path);
    std::filesystem::remove(path);
    if (!rules) return 0;
    for (std::int64_t utc = -70'000'000'000; utc < 300'000'000'000; utc += 1'234'567'891) check(*rules, utc);
    for (std::int64_t utc = 1'000'000'000; utc < 2'000'000'000; utc += 12'345'678) check(*rules, utc);
    return 0;
}

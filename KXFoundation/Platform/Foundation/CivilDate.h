// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// Arithmetic of the proleptic Gregorian calendar, in which year 0 precedes year 1. Days are counted from
/// 1970-01-01. Algorithms: Howard Hinnant, "chrono-Compatible Low-Level Date Algorithms". Private to
/// Foundation.
namespace kx {

inline constexpr std::int64_t kSecondsPerDay = 86'400;
inline constexpr std::int64_t kDaysPer400Years = 146'097;

struct CivilDate {
    std::int64_t year;
    int month;  ///< 1 to 12
    int day;    ///< 1 to 31

    bool operator==(const CivilDate&) const = default;
};

/// The quotient rounded down, for a positive divisor: one unsigned division of what the value or, if it is
/// negative, its complement counts.
[[nodiscard]] constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) noexcept {
    const std::int64_t sign = value >> 63;
    const auto count = static_cast<std::uint64_t>(value ^ sign) / static_cast<std::uint64_t>(divisor);
    return static_cast<std::int64_t>(count) ^ sign;
}
/// What that leaves: 0 to divisor - 1.
[[nodiscard]] constexpr std::int64_t floorModulo(std::int64_t value, std::int64_t divisor) noexcept {
    return value - floorDivide(value, divisor) * divisor;
}

/// Month 1 to 12; a day beyond the month's end counts on into the next one.
[[nodiscard]] constexpr std::int64_t daysFromCivil(std::int64_t year, int month, int day) noexcept {
    const std::int64_t shifted = year - (month <= 2);  // years begin in March: the leap day comes last
    const std::int64_t era = floorDivide(shifted, 400);
    const auto yearOfEra = static_cast<unsigned>(shifted - era * 400);
    const auto monthFromMarch = static_cast<unsigned>(month > 2 ? month - 3 : month + 9);
    const unsigned dayOfYear = (153 * monthFromMarch + 2) / 5 + static_cast<unsigned>(day) - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * kDaysPer400Years + dayOfEra - 719'468;
}

/// By multiplications where it can: Cassio Neri and Lorenz Schneider, "Euclidean affine functions and their
/// application to calendar algorithms".
[[nodiscard]] constexpr CivilDate civilFromDays(std::int64_t days) noexcept {
    days += 719'468;
    const std::int64_t era = floorDivide(days, kDaysPer400Years);
    const std::uint32_t quarters = 4 * static_cast<std::uint32_t>(days - era * kDaysPer400Years) + 3;
    const std::uint32_t century = quarters / 146'097;
    const std::uint64_t years = std::uint64_t{2'939'745} * (quarters % 146'097 | 3);
    const std::uint32_t dayOfYear = static_cast<std::uint32_t>(years) / 2'939'745 / 4;  // from March
    const std::uint32_t months = 2141 * dayOfYear + 197'913;
    const bool isNextYear = dayOfYear >= 306;
    const std::int64_t year =
        era * 400 + std::int64_t{century} * 100 + static_cast<std::uint32_t>(years >> 32);
    return {year + isNextYear, static_cast<int>(months >> 16) - (isNextYear ? 12 : 0),
            static_cast<int>((months & 0xFFFF) / 2141) + 1};
}

[[nodiscard]] constexpr int daysInMonth(std::int64_t year, int month) noexcept {
    if (month != 2) return 30 | (month + (month >> 3));
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
}

/// 1 for Sunday to 7 for Saturday.
[[nodiscard]] constexpr int weekdayFromDays(std::int64_t days) noexcept {
    return static_cast<int>(floorModulo(days + 4, 7)) + 1;
}

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>

namespace kx {

/// What a formatter writes for the minutes of a day, learned from it: a text for each hour, and where in it
/// the two digits of the minute go. Immutable; any thread. Private to DateTime.
class TimesOfDay {
  public:
    /// None unless every minute's text is its hour's but for two Latin digits, and short enough for a string
    /// object to hold it itself. The formatter is asked for all of them: some 50 microseconds.
    [[nodiscard]] static std::unique_ptr<const TimesOfDay> learn(const NSDateFormatter& formatter);

    /// The text for that second of a day, 0 to 86,399; never absent, but made in the place of its user's
    /// answer.
    [[nodiscard]] std::optional<std::string> at(std::uint32_t second) const {
        const Hour& hour = hours_[second / 3600];
        const std::uint32_t minute = second / 60 % 60;
        // All bytes there are and then the end of the text: two moves, where a length that is read would be a
        // call.
        std::optional<std::string> text(std::in_place, hour.text.data(), hour.text.size());
        (*text)[hour.minuteAt] = static_cast<char>('0' + minute / 10);
        (*text)[hour.minuteAt + 1U] = static_cast<char>('0' + minute % 10);
        text->erase(hour.size);
        return text;
    }

  private:
    struct Hour {
        std::array<char, 15> text{};
        std::uint8_t size = 0, minuteAt = 0;
    };
    [[nodiscard]] bool learnHour(std::uint32_t hour, const NSDateFormatter& formatter);

    std::array<Hour, 24> hours_;
};

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

#include <KXFoundation/Platform/Foundation/Base64.h>
#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Foundation/PropertyListForms.h>
#include <KXFoundation/Platform/Foundation/UnicodeText.h>

namespace kx {

namespace {

/// XML 1.0, production 2 (Char), for a Unicode scalar value.
bool isXmlCharacter(char32_t c) {
    return c >= 0x20 ? c != 0xFFFE && c != 0xFFFF : c == '\t' || c == '\n';
}

template <class Number>
std::string digitsOf(Number number) {
    std::array<char, 32> digits;
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

/// Writes line after line; what XML cannot hold is remembered, not thrown.
class Writer {
  public:
    Result<std::string> write(const Value& value) {
        text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
        add(value);
        text_ += "</plist>\n";
        if (!holdsAll_) return propertyListError(ErrorKind::Unsupported);
        return std::move(text_);
    }

  private:
    void add(const Value& value) {
        switch (value.type()) {
            case Value::Type::Boolean:
                return line(*value.asBoolean() ? "<true/>" : "<false/>");
            case Value::Type::Integer:
                return element("integer", digitsOf(*value.asInteger()));
            case Value::Type::Real:
                return element("real", digitsOf(*value.asReal()));
            case Value::Type::Date:
                return addDate(*value.asDate());
            case Value::Type::Uid:
                return addUid(*value.asUid());
            case Value::Type::String:
                return element("string", escaped(*value.asString()));
            case Value::Type::Data:
                return element("data", base64(*value.asData()));
            case Value::Type::Array:
                return addArray(value);
            case Value::Type::Dictionary:
                return addDictionary(value);
            case Value::Type::Null:
            case Value::Type::Object:
                holdsAll_ = false;
        }
    }

    void line(std::string_view content) { text_.append(depth_, '\t').append(content).push_back('\n'); }

    void element(std::string_view tag, std::string_view content) {
        text_.append(depth_, '\t').append("<").append(tag).append(">");
        text_.append(content).append("</").append(tag).append(">\n");
    }

    std::string escaped(std::string_view text) {
        std::string answer;
        answer.reserve(text.size());
        while (!text.empty()) {
            switch (const char32_t c = takeCodePoint(text)) {
                case '&':
                    answer += "&amp;";
                    break;
                case '<':
                    answer += "&lt;";
                    break;
                case '>':
                    answer += "&gt;";
                    break;
                case '\r':
                    answer += "&#13;";
                    break;  // a bare one would be read as a line feed
                default:
                    holdsAll_ = holdsAll_ && isXmlCharacter(c);
                    appendCodePoint(answer, c);
            }
        }
        return answer;
    }

    void addDate(double secondsSince2001) {
        using namespace std::chrono;
        constexpr auto kEpoch = sys_days(year(2001) / 1 / 1);
        constexpr auto kFirst = static_cast<double>(seconds(sys_days(year(1) / 1 / 1) - kEpoch).count());
        constexpr auto kEnd = static_cast<double>(seconds(sys_days(year(10'000) / 1 / 1) - kEpoch).count());
        if (!(secondsSince2001 >= kFirst && secondsSince2001 < kEnd) ||
            secondsSince2001 != std::floor(secondsSince2001)) {
            holdsAll_ = false;
            return;
        }
        const auto moment = kEpoch + seconds(static_cast<std::int64_t>(secondsSince2001));
        const year_month_day day(floor<days>(moment));
        const hh_mm_ss time(moment - floor<days>(moment));
        std::array<char, 64> buffer;
        std::snprintf(buffer.data(), buffer.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ",
                      static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                      static_cast<unsigned>(day.day()), static_cast<int>(time.hours().count()),
                      static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
        element("date", buffer.data());
    }

    void addUid(std::uint32_t number) {
        holdsAll_ = holdsAll_ && depth_ < Value::kMaxDepth;  // XML spells it as a dictionary
        line("<dict>");
        ++depth_;
        element("key", "CF$UID");
        element("integer", digitsOf(number));
        --depth_;
        line("</dict>");
    }

    void addArray(const Value& array) {
        line("<array>");
        ++depth_;
        for (const Value& item : array.elements()) add(item);
        --depth_;
        line("</array>");
    }

    void addDictionary(const Value& dictionary) {
        // This shape is how XML spells a uid: only the binary form tells the two apart.
        if (dictionary.members().size() == 1 && dictionary["CF$UID"].asInteger()) holdsAll_ = false;
        line("<dict>");
        ++depth_;
        for (const auto& [key, item] : dictionary.members()) {
            element("key", escaped(key));
            add(item);
        }
        --depth_;
        line("</dict>");
    }

    std::string text_;
    std::size_t depth_ = 0;
    bool holdsAll_ = true;
};

}  // namespace

Result<std::string> writeXmlPropertyList(const Value& value) {
    if (!isPropertyList(value)) return propertyListError(ErrorKind::Unsupported);
    return Writer().write(value);
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <charconv>
#include <chrono>
#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <expat.h>

#include <KXFoundation/Platform/Foundation/Base64.h>
#include <KXFoundation/Platform/Foundation/PropertyListForms.h>

namespace kx {

namespace {

constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kUidKey = "CF$UID";  // how XML spells a uid: a dictionary with this one key

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

using Parsed = Result<Value>;

Parsed corrupt() {
    return propertyListError(ErrorKind::Corrupt);
}

Parsed integerFrom(std::string_view text) {
    text = trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), magnitude, hexadecimal ? 16 : 10);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return corrupt();
    constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
    if (error != std::errc() || magnitude > kLargest + (negative ? 1 : 0)) {
        return propertyListError(ErrorKind::TooLarge);
    }
    return Value(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
}

Parsed realFrom(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return corrupt();
    return Value(number);
}

/// "2024-02-29T12:00:00Z", always in UTC.
Parsed dateFrom(std::string_view text) {
    text = trimmed(text);
    constexpr std::string_view kShape = "0000-00-00T00:00:00Z";
    if (text.size() != kShape.size()) return corrupt();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (kShape[i] == '0' ? !digit : text[i] != kShape[i]) return corrupt();
    }
    const auto number = [&](std::size_t at, std::size_t digits) {
        int value = 0;
        for (const char c : text.substr(at, digits)) value = value * 10 + (c - '0');
        return value;
    };
    using namespace std::chrono;
    const year_month_day day(year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                             std::chrono::day(static_cast<unsigned>(number(8, 2))));
    if (!day.ok() || number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 60) return corrupt();
    const auto moment =
        sys_days(day) + hours(number(11, 2)) + minutes(number(14, 2)) + seconds(number(17, 2));
    return Value::date(static_cast<double>((moment - sys_days(year(2001) / 1 / 1)).count()));
}

Parsed dataFrom(std::string_view text) {
    auto bytes = fromBase64(text);
    if (!bytes) return corrupt();
    return Value::data(std::move(*bytes));
}

/// An element whose value is made from its text alone.
struct Leaf {
    std::string_view tag;
    Parsed (*parse)(std::string_view text);
};
constexpr Leaf kLeaves[] = {
    {"string", [](std::string_view text) -> Parsed { return Value(text); }},
    {"integer", integerFrom},
    {"real", realFrom},
    {"true", [](std::string_view) -> Parsed { return Value(true); }},
    {"false", [](std::string_view) -> Parsed { return Value(false); }},
    {"date", dateFrom},
    {"data", dataFrom},
};

const Leaf* leafNamed(std::string_view tag) {
    for (const Leaf& leaf : kLeaves) {
        if (leaf.tag == tag) return &leaf;
    }
    return nullptr;
}

/// A dictionary, or the uid that it spells.
Value builtDictionary(DictionaryBuilder& builder) {
    Value dictionary = builder.build();
    const auto number = dictionary[kUidKey].asInteger();
    if (!number || dictionary.members().size() != 1) return dictionary;
    if (*number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) return dictionary;
    return Value::uid(static_cast<std::uint32_t>(*number));
}

/// Builds the value while expat walks through the bytes. The first error ends the walk.
class Reader {
  public:
    Result<Value> read(std::span<const std::byte> bytes) {
        if (bytes.size() > INT_MAX) return propertyListError(ErrorKind::TooLarge);
        connect();
        // In one piece: expat scans an unfinished token again with every further piece.
        const auto status = XML_Parse(parser_.get(), reinterpret_cast<const char*>(bytes.data()),
                                      static_cast<int>(bytes.size()), XML_TRUE);
        if (error_) return std::move(*error_);
        if (status != XML_STATUS_OK) return propertyListError(kindOf(XML_GetErrorCode(parser_.get())));
        if (!root_) return propertyListError(ErrorKind::Corrupt);
        return std::move(*root_);
    }

  private:
    struct Container {
        bool isDictionary;
        ArrayBuilder array;
        DictionaryBuilder dictionary;
        std::optional<std::string> key;  // read, still without its value
    };

    void connect() {
        XML_Parser parser = parser_.get();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(
            parser, [](void* self, const XML_Char* tag, const XML_Char**) { from(self).open(tag); },
            [](void* self, const XML_Char*) { from(self).close(); });
        XML_SetCharacterDataHandler(parser, [](void* self, const XML_Char* text, int size) {
            from(self).characters({text, static_cast<std::size_t>(size)});
        });
        // Whatever declares or needs an entity of its own is refused before it can be expanded.
        XML_SetEntityDeclHandler(parser, [](void* self, const XML_Char*, int, const XML_Char*, int,
                                            const XML_Char*, const XML_Char*, const XML_Char*,
                                            const XML_Char*) { from(self).fail(ErrorKind::Corrupt); });
        XML_SetSkippedEntityHandler(
            parser, [](void* self, const XML_Char*, int) { from(self).fail(ErrorKind::Corrupt); });
    }

    static Reader& from(void* self) { return *static_cast<Reader*>(self); }

    static ErrorKind kindOf(XML_Error error) {
        switch (error) {
            case XML_ERROR_NO_ELEMENTS:
            case XML_ERROR_UNCLOSED_TOKEN:
            case XML_ERROR_PARTIAL_CHAR:
            case XML_ERROR_UNCLOSED_CDATA_SECTION:
                return ErrorKind::Ended;
            case XML_ERROR_UNKNOWN_ENCODING:
                return ErrorKind::Unsupported;
            case XML_ERROR_NO_MEMORY:
                return ErrorKind::TooLarge;
            default:
                return ErrorKind::Corrupt;
        }
    }

    void fail(ErrorKind kind) {
        if (!error_) error_ = propertyListError(kind);
        XML_StopParser(parser_.get(), XML_FALSE);
    }

    void open(std::string_view tag) {
        if (error_) return;
        const bool nested = leaf_ || inKey_ || (tag == "plist" ? std::exchange(inList_, true) : !inList_);
        if (nested) return fail(ErrorKind::Corrupt);
        if (tag == "plist") return;
        if (tag == "key") return openKey();
        if (awaitsKey() || (containers_.empty() && root_)) return fail(ErrorKind::Corrupt);
        if (tag == "array" || tag == "dict") return openContainer(tag == "dict");
        leaf_ = leafNamed(tag);
        if (!leaf_) fail(ErrorKind::Corrupt);
    }

    bool awaitsKey() const {
        return !containers_.empty() && containers_.back().isDictionary && !containers_.back().key;
    }

    void openKey() {
        if (!awaitsKey()) return fail(ErrorKind::Corrupt);
        inKey_ = true;
    }

    void openContainer(bool isDictionary) {
        if (containers_.size() >= Value::kMaxDepth) return fail(ErrorKind::TooLarge);
        containers_.push_back({isDictionary, {}, {}, {}});
    }

    void characters(std::string_view text) {
        if (error_) return;
        if (leaf_ || inKey_) {
            text_.append(text);
        } else if (text.find_first_not_of(kSpace) != std::string_view::npos) {
            fail(ErrorKind::Corrupt);
        }
    }

    void close() {
        if (error_) return;
        if (inKey_) {
            inKey_ = false;
            containers_.back().key = std::exchange(text_, {});
        } else if (leaf_) {
            auto value = std::exchange(leaf_, nullptr)->parse(text_);
            text_.clear();
            value ? add(std::move(*value)) : fail(value.error().kind);
        } else if (!containers_.empty()) {
            closeContainer();
        } else {
            inList_ = false;  // a second list is no XML document, so nothing follows
        }
    }

    void closeContainer() {
        Container closed = std::move(containers_.back());
        containers_.pop_back();
        if (closed.key) return fail(ErrorKind::Corrupt);
        add(closed.isDictionary ? builtDictionary(closed.dictionary) : closed.array.build());
    }

    void add(Value value) {
        if (containers_.empty()) {
            root_ = std::move(value);
        } else if (Container& in = containers_.back(); in.isDictionary) {
            in.dictionary.set(*std::exchange(in.key, std::nullopt), std::move(value));
        } else {
            in.array.add(std::move(value));
        }
    }

    struct FreeParser {
        void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
    };
    std::unique_ptr<XML_ParserStruct, FreeParser> parser_{XML_ParserCreate(nullptr)};
    std::vector<Container> containers_;
    const Leaf* leaf_ = nullptr;  // the open element that holds text
    bool inKey_ = false;
    bool inList_ = false;
    std::string text_;  // of the open leaf or key
    std::optional<Value> root_;
    std::optional<Error> error_;
};

}  // namespace

Result<Value> readXmlPropertyList(std::span<const std::byte> bytes) {
    return Reader().read(bytes);
}

}  // namespace kx

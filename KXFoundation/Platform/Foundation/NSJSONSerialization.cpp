// SPDX-License-Identifier: MIT

#include <limits>
#include <nlohmann/json.hpp>
#include <variant>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSJSONSerialization.h>

namespace kx {

namespace {

using Json = nlohmann::json;

/// Builds a Value out of the parser's events; a handler answers whether to go on.
class ValueBuilder final : public nlohmann::json_sax<Json> {
  public:
    bool null() override { return add({}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t value) override { return add(value); }
    bool number_unsigned(std::uint64_t value) override {
        const bool fits = value <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
        return fits ? add(static_cast<std::int64_t>(value)) : add(static_cast<double>(value));
    }
    bool number_float(double value, const std::string&) override { return add(value); }
    bool string(std::string& text) override { return add(std::move(text)); }
    bool binary(Json::binary_t&) override { return false; }  // no JSON text holds any
    bool start_array(std::size_t) override { return open(ArrayBuilder()); }
    bool start_object(std::size_t) override { return open(DictionaryBuilder()); }
    bool end_array() override { return close(); }
    bool end_object() override { return close(); }
    bool key(std::string& text) override {
        levels_.back().key = std::move(text);
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const Json::exception&) override {
        error_ = {ErrorKind::Corrupt, 0, "JSON at byte " + std::to_string(position)};
        return false;
    }

    [[nodiscard]] const Error& error() const { return error_; }
    [[nodiscard]] Value take() { return std::move(root_); }

  private:
    using Builder = std::variant<ArrayBuilder, DictionaryBuilder>;
    struct Level {
        Builder builder;
        std::string key;  // of the member that comes next
    };

    bool open(Builder builder) {
        if (levels_.size() == Value::kMaxDepth) {
            error_ = {ErrorKind::TooLarge, 0, "JSON nesting"};
            return false;
        }
        levels_.push_back({std::move(builder), {}});
        return true;
    }

    bool close() {
        Value value = std::visit([](auto& builder) { return builder.build(); }, levels_.back().builder);
        levels_.pop_back();
        if (!levels_.empty()) return add(std::move(value));
        root_ = std::move(value);
        return true;
    }

    bool add(Value value) {
        if (levels_.empty()) return false;  // a single value
        Level& level = levels_.back();
        if (auto* array = std::get_if<ArrayBuilder>(&level.builder)) {
            array->add(std::move(value));
        } else {
            std::get<DictionaryBuilder>(level.builder).set(level.key, std::move(value));
        }
        return true;
    }

    std::vector<Level> levels_;
    Value root_;
    Error error_{ErrorKind::Corrupt, 0, "JSON: neither array nor object"};
};

}  // namespace

Result<Value> NSJSONSerialization::JSONObjectWithData(std::string_view text) {
    ValueBuilder builder;
    // The parser takes a zero byte for the end of the text.
    if (text.find('\0') != text.npos) return Error{ErrorKind::Corrupt, 0, "JSON: a zero byte"};
    if (!Json::sax_parse(text, &builder)) return builder.error();
    return builder.take();
}

}  // namespace kx

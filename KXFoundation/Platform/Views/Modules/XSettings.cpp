// SPDX-License-Identifier: MIT

#include <cstddef>

#include <KXFoundation/Platform/Views/Modules/XSettings.h>

namespace kx {

namespace {

/// Takes the property apart from its front. What reaches beyond its end is not there.
class Reader {
  public:
    explicit Reader(std::string_view property)
        : bytes_(property), isBigEndian_(!property.empty() && property[0] == 1) {
        skip(8);  // the order, three unused bytes, the serial number
    }

    [[nodiscard]] bool isValid() const noexcept { return isValid_; }
    [[nodiscard]] std::uint32_t number(std::size_t size) {
        std::uint32_t value = 0;
        const std::string_view digits = text(size);
        for (std::size_t i = 0; i < digits.size(); ++i) {
            const auto digit = static_cast<unsigned char>(digits[isBigEndian_ ? i : digits.size() - 1 - i]);
            value = value << 8 | digit;
        }
        return value;
    }
    [[nodiscard]] std::string_view text(std::size_t size) {
        if (size > bytes_.size() - position_) {
            isValid_ = false;
            return {};
        }
        position_ += size;
        return bytes_.substr(position_ - size, size);
    }
    /// A text and what fills it up to four bytes.
    [[nodiscard]] std::string_view padded(std::size_t size) {
        const std::string_view found = text(size);
        skip((4 - size % 4) % 4);
        return found;
    }
    void skip(std::size_t size) { static_cast<void>(text(size)); }

  private:
    std::string_view bytes_;
    std::size_t position_ = 0;
    bool isBigEndian_;
    bool isValid_ = true;
};

}  // namespace

std::optional<std::int32_t> xsettingsInteger(std::string_view property, std::string_view wanted) {
    enum Type : std::uint32_t { Integer, String, Color };
    Reader reader(property);
    for (std::uint32_t left = reader.number(4); left > 0 && reader.isValid(); --left) {
        const std::uint32_t type = reader.number(1);
        reader.skip(1);
        const std::uint32_t length = reader.number(2);
        const std::string_view name = reader.padded(length);
        reader.skip(4);  // the serial number of its last change
        switch (type) {
            case Integer: {
                const auto value = static_cast<std::int32_t>(reader.number(4));
                if (name == wanted && reader.isValid()) return value;
                break;
            }
            case String: {
                const std::uint32_t size = reader.number(4);
                static_cast<void>(reader.padded(size));
                break;
            }
            case Color:
                reader.skip(8);
                break;
            default:
                return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace kx

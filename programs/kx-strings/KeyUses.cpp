// SPDX-License-Identifier: MIT

#include "KeyUses.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <KXFoundation/Platform/Runtime/FileSystem.h>

#include "CppTokens.h"

namespace kxstrings {

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kLargestSource = std::uint64_t{32} << 20;

// They keep the time linear for any source.
constexpr std::size_t kLongestCall = 10'000;  // tokens
constexpr std::size_t kDeepestBracket = 64;   // in a call

bool isSource(const fs::path& path) {
    constexpr std::string_view kEndings[] = {".c",  ".cc",  ".cpp", ".cxx", ".h",
                                             ".hh", ".hpp", ".hxx", ".inl", ".ipp"};
    return std::ranges::find(kEndings, path.extension().string()) != std::end(kEndings);
}

bool isHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

/// Types that a literal is wrapped in on its way to a call.
bool isTextType(std::string_view word) {
    return word == "string" || word == "string_view" || word == "optional";
}

/// The tokens of a source, and what a place among them means.
class Places {
  public:
    explicit Places(const std::vector<Token>& tokens) : tokens_(tokens) {}

    [[nodiscard]] std::size_t size() const { return tokens_.size(); }
    [[nodiscard]] const Token& operator[](std::size_t i) const { return tokens_[i]; }

    /// The sign in this place, else a zero; `i` may lie outside, wrapped around below 0.
    [[nodiscard]] char sign(std::size_t i) const {
        return i < size() && tokens_[i].kind == Token::Kind::Sign ? tokens_[i].text[0] : '\0';
    }
    [[nodiscard]] bool isWord(std::size_t i) const {
        return i < size() && tokens_[i].kind == Token::Kind::Word;
    }
    [[nodiscard]] bool isText(std::size_t i) const {
        return i < size() && tokens_[i].kind == Token::Kind::Text;
    }

    /// "Class::name" where the name at i stands behind its class, else the name.
    [[nodiscard]] std::string qualifiedName(std::size_t i) const {
        const bool isQualified = sign(i - 1) == ':' && sign(i - 2) == ':' && isWord(i - 3);
        return isQualified ? tokens_[i - 3].text + "::" + tokens_[i].text : tokens_[i].text;
    }
    /// "begin." + key, or std::string("begin.") + key.
    [[nodiscard]] bool isMadeLonger(std::size_t i) const {
        const bool wrapped = isOpening(i - 1) && isWord(i - 2) && isTextType(tokens_[i - 2].text);
        return sign(i + (wrapped ? 2 : 1)) == '+';
    }
    /// key + "end", or what a key is compared with.
    [[nodiscard]] bool isNoKey(std::size_t i) const {
        const bool beginsComparison = std::string_view("=!<>").find(sign(i + 1)) != std::string_view::npos;
        return sign(i - 1) == '+' || sign(i - 1) == '=' || (beginsComparison && sign(i + 2) == '=');
    }
    /// Whether what stands in the bracket is still the argument around it: `(` of a text type or of nobody.
    [[nodiscard]] bool isTransparent(std::size_t i) const {
        if (!isOpening(i)) return false;
        return isWord(i - 1) ? isTextType(tokens_[i - 1].text) : !isClosing(i - 1) && sign(i - 1) != '>';
    }
    [[nodiscard]] bool isOpening(std::size_t i) const { return sign(i) == '(' || sign(i) == '{'; }
    [[nodiscard]] bool isClosing(std::size_t i) const {
        return sign(i) == ')' || sign(i) == '}' || sign(i) == ']';
    }

  private:
    const std::vector<Token>& tokens_;
};

/// Calls `take` with the place of each literal that is the argument of the call opened at `open`.
template <class Take>
void eachKey(const Places& places, std::size_t open, std::size_t keyArgument, Take take) {
    std::size_t argument = 1;
    std::vector<bool> transparent;  // of the brackets open
    const std::size_t end = std::min(places.size(), open + kLongestCall);
    for (std::size_t i = open + 1; i < end && argument <= keyArgument; ++i) {
        if (places.isOpening(i) || places.sign(i) == '[') {
            if (transparent.size() == kDeepestBracket) return;
            transparent.push_back(places.isTransparent(i));
        } else if (places.isClosing(i)) {
            if (transparent.empty()) return;
            transparent.pop_back();
        } else if (transparent.empty() && places.sign(i) == ';') {
            return;
        } else if (transparent.empty() && places.sign(i) == ',') {
            ++argument;
        } else if (argument == keyArgument && places.isText(i) && !places.isNoKey(i) &&
                   std::ranges::find(transparent, false) == transparent.end()) {
            take(i);
        }
    }
}

bool endsInLetterOrDigit(std::string_view text) {
    const char c = text.empty() ? 'a' : text.back();
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

}  // namespace

Functions libraryFunctions() {
    return {{"LiveLanguage::bind", 2},     {"bindPlaceholder", 2},         {"localized", 1},
            {"localizedStringForKey", 1},  {"localizedStringInBundle", 2}, {"setLocalizedKey", 2},
            {"setLocalizedPlaceHolder", 2}};
}

kx::Result<void> KeyUses::addSources(const std::string& path, Findings& findings) {
    std::error_code error;
    if (!fs::is_directory(path, error)) return addFile(path);
    const auto options = fs::directory_options::skip_permission_denied;
    auto entry = fs::recursive_directory_iterator(path, options, error);
    for (; !error && entry != fs::end(entry); entry.increment(error)) {
        std::error_code ignored;
        if (isHidden(entry->path())) {
            entry.disable_recursion_pending();
        } else if (isSource(entry->path()) && entry->is_regular_file(ignored)) {
            const std::string file = entry->path().lexically_normal().string();
            if (const auto added = addFile(file); !added) findings.insert({file, 1, added.error().message()});
        }
    }
    if (error) return kx::Error::fromErrno(error.value(), path);
    return {};
}

kx::Result<void> KeyUses::addFile(const std::string& file) {
    auto contents = kx::readFile(kx::FileSystem::slot().current(), file, kLargestSource);
    if (!contents) return std::move(contents).error();
    addSource(file, *contents);
    return {};
}

void KeyUses::addSource(const std::string& file, std::string_view contents) {
    ++sources_;
    const std::vector<Token> tokens = cppTokens(contents);
    const Places places(tokens);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (places.isText(i)) {
            literals_.insert(tokens[i].text);
            if (places.isMadeLonger(i) && !endsInLetterOrDigit(tokens[i].text)) addBeginning(tokens[i].text);
        } else if (places.isWord(i) && places.sign(i + 1) == '(') {
            auto function = functions_.find(tokens[i].text);
            if (function == functions_.end()) function = functions_.find(places.qualifiedName(i));
            if (function == functions_.end()) continue;
            eachKey(places, i + 1, function->second, [&](std::size_t key) {
                const Token& token = tokens[key];
                lookedUp_.push_back({token.text, file, token.line, places.isMadeLonger(key)});
                if (lookedUp_.back().isBeginning && !token.text.empty()) addBeginning(token.text);
            });
        }
    }
}

void KeyUses::addBeginning(const std::string& text) {
    if (hasBeginningOf(text)) return;
    const auto isLonger = [&](const std::string& other) { return other.starts_with(text); };
    const auto first = beginnings_.lower_bound(text);
    beginnings_.erase(first, std::find_if_not(first, beginnings_.end(), isLonger));
    beginnings_.insert(text);
}

/// As none of them begins another, only the last one before the key can begin it.
bool KeyUses::hasBeginningOf(std::string_view key) const {
    const auto after = beginnings_.upper_bound(key);
    return after != beginnings_.begin() && key.starts_with(*std::prev(after));
}

bool KeyUses::uses(std::string_view key) const {
    return literals_.contains(std::string(key)) || hasBeginningOf(key);
}

}  // namespace kxstrings

#include <algorithm>

#include <glib.h>

#include <KXFoundation/Platform/Graphics/UsableText.h>

namespace kx {

std::size_t letterLimit(double pointSize, double room) noexcept {
    constexpr std::size_t kLongestText = 65'536;
    return std::min(kLongestText, static_cast<std::size_t>(std::max(room, 0.0) / pointSize));
}

std::string usableText(std::string_view text, std::size_t limit) {
    std::string_view part = text.substr(0, limit);
    if (part.size() < text.size()) {
        while (!part.empty() && (static_cast<unsigned char>(text[part.size()]) & 0xC0) == 0x80)
            part.remove_suffix(1);
    }
    char* valid = g_utf8_make_valid(part.data(), static_cast<gssize>(part.size()));
    std::string answer = valid;
    g_free(valid);
    return answer;
}

}  // namespace kx

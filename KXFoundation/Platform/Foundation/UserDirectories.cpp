// SPDX-License-Identifier: MIT

#include <string_view>

#include <KXFoundation/Platform/Foundation/UserDirectories.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx {

namespace {

constexpr std::uint64_t kLargestFile = 64 << 10;

struct Name {
    std::string_view key;
    std::string_view folder;
};
constexpr Name kNames[] = {{"XDG_DOCUMENTS_DIR", "Documents"}, {"XDG_PICTURES_DIR", "Pictures"}};

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    return text;
}

/// The value of `KEY="$HOME/..."` or `KEY="/..."`; absent for any other line.
std::optional<std::string> valueIn(std::string_view line, std::string_view key, const std::string& home) {
    line = withoutBlanks(line);
    if (!line.starts_with(key)) return std::nullopt;
    line = withoutBlanks(line.substr(key.size()));
    if (!line.starts_with('=')) return std::nullopt;
    line = withoutBlanks(line.substr(1));
    if (!line.starts_with('"')) return std::nullopt;
    line.remove_prefix(1);
    std::string value;
    if (line.starts_with("$HOME") && (line.size() > 5 && (line[5] == '/' || line[5] == '"'))) {
        value = home;
        line.remove_prefix(5);
    } else if (!line.starts_with('/')) {
        return std::nullopt;
    }
    for (; !line.empty() && line.front() != '"'; line.remove_prefix(1)) {
        if (line.front() == '\\' && line.size() > 1) line.remove_prefix(1);
        value.push_back(line.front());
    }
    if (line.empty()) return std::nullopt;
    while (value.size() > 1 && value.back() == '/') value.pop_back();
    return value;
}

std::optional<std::string> settingFor(std::string_view key, const std::string& home) {
    const auto config = baseDirectory(BaseDirectory::Config);
    if (!config) return std::nullopt;
    const auto text = readFile(FileSystem::slot().current(), *config + "/user-dirs.dirs", kLargestFile);
    if (!text || text->find('\0') != std::string::npos) return std::nullopt;
    std::optional<std::string> found;
    for (std::string_view rest = *text; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        if (auto value = valueIn(rest.substr(0, end), key, home)) found = std::move(value);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return found;
}

}  // namespace

std::optional<std::string> userDirectory(UserDirectory which) {
    auto home = Environment::slot().current().variable("HOME");
    if (!home || !home->starts_with('/')) return std::nullopt;
    while (home->size() > 1 && home->back() == '/') home->pop_back();
    const auto& [key, folder] = kNames[static_cast<std::size_t>(which)];
    auto found = settingFor(key, *home);
    if (found && *found != *home) return found;
    return *home + "/" + std::string(folder);
}

}  // namespace kx

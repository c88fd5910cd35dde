// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Services/SystemFiles.h>

namespace kx {

namespace {
constexpr std::size_t kMostBytes = std::size_t{64} << 10;
}

Result<std::string> readSystemFile(FileSystem& files, const std::string& path) {
    auto file = files.open(path, FileSystem::Mode::Read);
    if (!file) return std::move(file).error();
    std::string contents(kMostBytes, '\0');
    const auto got = (*file)->readAt(0, std::as_writable_bytes(std::span(contents)));
    if (!got) return got.error();
    contents.resize(*got);
    return contents;
}

std::string readSystemLine(FileSystem& files, const std::string& path) {
    auto contents = readSystemFile(files, path);
    if (!contents) return {};
    contents->resize(std::min(contents->find('\n'), contents->size()));
    return std::move(contents).value();
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <array>

#include <KXFoundation/Platform/Services/Photos/PictureSignature.h>

namespace kx {

namespace {

using namespace std::string_view_literals;

/// What the formats' own pages say a file begins with; "?" stands for any byte.
constexpr std::string_view kSignatures[] = {
    "\x89PNG\r\n\x1A\n"sv,
    "\xFF\xD8\xFF"sv,
    "II*\0"sv,
    "MM\0*"sv,
    "GIF87a"sv,
    "GIF89a"sv,
    "RIFF????WEBP"sv,
    // Big TIFF, BMP, JPEG XL bare and in its container.
    "II+\0\x08\0\0\0"sv,
    "MM\0+\0\x08\0\0"sv,
    "BM????\0\0\0\0"sv,
    "\xFF\x0A"sv,
    "\0\0\0\x0CJXL \r\n\x87\n"sv,
    // HEIF and AVIF, by their brands (ISO/IEC 23008-12, annex B).
    "????ftypheic"sv,
    "????ftypheix"sv,
    "????ftypheim"sv,
    "????ftypheis"sv,
    "????ftyphevc"sv,
    "????ftyphevx"sv,
    "????ftypmif1"sv,
    "????ftypmsf1"sv,
    "????ftypavif"sv,
    "????ftypavis"sv,
};
constexpr std::size_t kLongest = 12;

bool begins(std::string_view contents, std::string_view signature) {
    if (contents.size() < signature.size()) return false;
    for (std::size_t i = 0; i < signature.size(); ++i)
        if (signature[i] != '?' && signature[i] != contents[i]) return false;
    return true;
}

}  // namespace

Result<void> checkPicture(FileSystem& files, const std::string& path) {
    auto file = files.open(path, FileSystem::Mode::Read);
    if (!file) return std::move(file).error();
    std::array<std::byte, kLongest> bytes{};
    const auto got = (*file)->readAt(0, bytes);
    if (!got) return got.error();
    const std::string_view contents(reinterpret_cast<const char*>(bytes.data()), *got);
    for (const std::string_view signature : kSignatures)
        if (begins(contents, signature)) return {};
    return Error{ErrorKind::Unsupported, 0, path + ": no picture"};
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
    std::string pattern = (fs::canonical(fs::temp_directory_path()) / "kx-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        std::perror(pattern.c_str());
        std::abort();
    }
    path_ = std::move(pattern);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TemporaryDirectory::write(std::string_view name, std::string_view contents) const {
    std::string path = *this / name;
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << contents;
    return path;
}

std::string TemporaryDirectory::makeDirectory(std::string_view name) const {
    std::string path = *this / name;
    fs::create_directories(path);
    return path;
}

std::string TemporaryDirectory::read(std::string_view name) const {
    std::ifstream file(*this / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace kx::testing

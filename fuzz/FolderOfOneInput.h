#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace kx::fuzz {

/// An empty folder of the process's own, for a reader of files; goes with its object.
class FolderOfOneInput {
  public:
    FolderOfOneInput() { std::filesystem::create_directories(path_); }
    ~FolderOfOneInput() { std::filesystem::remove_all(path_); }
    FolderOfOneInput(const FolderOfOneInput&) = delete;
    FolderOfOneInput& operator=(const FolderOfOneInput&) = delete;

    [[nodiscard]] std::string operator/(std::string_view name) const { return path_ / name; }
    std::string write(std::string_view name, std::string_view bytes) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << bytes;
        return path_ / name;
    }

  private:
    const std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("kx-fuzz-" + std::to_string(::getpid()));
};

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace kx::fuzz

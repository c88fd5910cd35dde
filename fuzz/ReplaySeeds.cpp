// SPDX-License-Identifier: MIT

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Runs a fuzzer's entry once over each file of a folder: ReplaySeeds <folder>.
int main(int argc, char** argv) {
    std::size_t count = 0;
    if (argc == 2) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    std::printf("%zu seeds\n", count);
    return count == 0 ? 1 : 0;
}

// SPDX-License-Identifier: MIT

// The file of a keychain (docs/formats/keychain-file.md). The first byte says what follows: 0 the file as it
// is, 1 the list in it, which is sealed here; 2 more, an item is added afterwards.
#include <cstdlib>

#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/FileKeychain.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "InputText.h"

namespace {

/// Each damaged file has its line.
class NoLog final : public kx::LogSink {
    void write(kx::LogLevel, std::string_view) override {}
};

std::string sealed(const kx::SodiumModule& sodium, const std::string& key, std::string_view list) {
    std::string box = "KXKEYC01";
    box.resize(8 + kx::SodiumModule::kOverhead + list.size());
    sodium.seal(reinterpret_cast<const std::uint8_t*>(key.data()), box.data(), 8, list.data(), list.size(),
                reinterpret_cast<std::uint8_t*>(box.data()) + 8);
    return box;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const kx::ScopedPort<kx::LogSink> noLog(std::make_shared<NoLog>());
    static const auto sodium = kx::openModule<kx::SodiumModule>("sodium");
    if (!sodium || size == 0) return 0;
    const kx::testing::TemporaryDirectory folder;
    const std::string key(kx::SodiumModule::kKeySize, 'k');
    const std::string_view rest = kx::fuzz::textOf(data + 1, size - 1);
    folder.write("keychain.key", key);
    folder.write("keychain", (data[0] & 1) != 0 ? sealed(**sodium, key, rest) : std::string(rest));
    kx::FileKeychain keychain(folder / "", **sodium);
    static_cast<void>(keychain.copy({"service", "account"}));
    if ((data[0] & 2) == 0) return 0;
    // Whatever was there, what is added is found.
    if (!keychain.add({"service", "account"}, "a probe")) std::abort();
    const auto found = kx::FileKeychain(folder / "", **sodium).copy({"service", "account"});
    if (!found || *found != "a probe") std::abort();
    return 0;
}

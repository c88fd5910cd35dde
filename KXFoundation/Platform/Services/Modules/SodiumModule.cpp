// SPDX-License-Identifier: MIT

#include <sodium.h>

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/SodiumModule.h>

namespace kx {

namespace {

constexpr std::size_t kNonceSize = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
static_assert(SodiumModule::kKeySize == crypto_aead_xchacha20poly1305_ietf_KEYBYTES);
static_assert(SodiumModule::kOverhead == kNonceSize + crypto_aead_xchacha20poly1305_ietf_ABYTES);

void makeKey(std::uint8_t* key) {
    randombytes_buf(key, SodiumModule::kKeySize);
}

void seal(const std::uint8_t* key, const void* label, std::size_t labelSize, const void* text,
          std::size_t size, std::uint8_t* box) {
    randombytes_buf(box, kNonceSize);
    crypto_aead_xchacha20poly1305_ietf_encrypt(
        box + kNonceSize, nullptr, static_cast<const std::uint8_t*>(text), size,
        static_cast<const std::uint8_t*>(label), labelSize, nullptr, box, key);
}

bool open(const std::uint8_t* key, const void* label, std::size_t labelSize, const std::uint8_t* box,
          std::size_t size, void* text) {
    if (size < SodiumModule::kOverhead) return false;
    return crypto_aead_xchacha20poly1305_ietf_decrypt(
               static_cast<std::uint8_t*>(text), nullptr, nullptr, box + kNonceSize, size - kNonceSize,
               static_cast<const std::uint8_t*>(label), labelSize, box, key) == 0;
}

constexpr SodiumModule kModule{
    .version = SodiumModule::kVersion, .makeKey = makeKey, .seal = seal, .open = open};

}  // namespace

}  // namespace kx

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost* host) {
    if (sodium_init() >= 0) return &kx::kModule;
    host->log("kx-sodium: no source of random numbers");
    return nullptr;
}

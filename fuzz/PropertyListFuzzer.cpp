// SPDX-License-Identifier: MIT

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include <KXFoundation/Platform/Foundation/PropertyList.h>

namespace {

using Writer = kx::Result<std::string> (*)(const kx::Value&);

/// What was written reads as the same value: it is written the same again.
void roundTrip(const kx::Value& value, Writer write) {
    const auto text = write(value);
    if (!text) return;
    const auto back = kx::readPropertyList(std::as_bytes(std::span(*text)));
    if (!back) std::abort();
    const auto again = write(*back);
    if (!again || *again != *text) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto value = kx::readPropertyList(std::as_bytes(std::span(data, size)));
    if (!value) return 0;
    if (!kx::writeBinaryPropertyList(*value)) std::abort();  // whatever was read is a property list
    roundTrip(*value, kx::writeBinaryPropertyList);
    roundTrip(*value, kx::writeXmlPropertyList);
    return 0;
}

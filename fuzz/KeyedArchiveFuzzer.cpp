// SPDX-License-Identifier: MIT

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>

namespace {

/// Keeps a value, and another of its kind weakly: a circle of strong references would be a leak of its own.
class Node : public kx::Subclass<Node, kx::NSObject>, public kx::NSSecureCoding {
  public:
    void encodeWithCoder(kx::NSCoder& coder) const override {
        coder.encode("value", value_);
        coder.encode("other", kx::Value(other_.lock()));
    }
    bool initWithCoder(kx::NSCoder& coder) override {
        other_ = kx::objectCast<Node>(coder.decode("other").asObject());
        if (const kx::Value value = coder.decode("value"); value.asInteger() || value.asString())
            value_ = value;
        return true;
    }

  private:
    kx::Value value_;
    std::weak_ptr<Node> other_;
};

kx::Result<kx::Value> read(const std::string& archive) {
    return kx::NSKeyedUnarchiver::unarchivedObject(std::as_bytes(std::span(archive)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kx::registerSecureCoding<Node>();
    const auto bytes = std::as_bytes(std::span(data, size));
    static_cast<void>(kx::NSKeyedUnarchiver::unarchivedObjectOfClass(kx::ValueClass::NSArray, bytes));
    const auto value = kx::NSKeyedUnarchiver::unarchivedObject(bytes);
    if (!value) return 0;
    // Whatever was read can be archived, and what that gives reads as the same: it is archived the same
    // again.
    const auto archive = kx::NSKeyedArchiver::archivedDataWithRootObject(*value);
    if (!archive) std::abort();
    const auto back = read(*archive);
    if (!back) std::abort();
    const auto again = kx::NSKeyedArchiver::archivedDataWithRootObject(*back);
    if (!again || *again != *archive) std::abort();
    return 0;
}

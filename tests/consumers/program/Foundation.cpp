// SPDX-License-Identifier: MIT

// An application of a newcomer: a class of its own over the library's, one exchangeable operation, the
// version.
#include <cstdio>

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Operation.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>
#include <KXFoundation/Version.h>

namespace {

constinit kx::Operation<int()> depthOperation{"consumer_depth"};
constinit kx::Operation<int()> tideOperation{"consumer_tide"};

class Harbour : public kx::Subclass<Harbour, kx::NSObject> {
  public:
    static void defineOperations(kx::Class& cls) {
        depthOperation.implement(cls, [](kx::NSObject&) { return 12; });
        tideOperation.implement(cls, [](kx::NSObject&) { return 15; });
    }
};

}  // namespace

int main() {
    const auto harbour = kx::make<Harbour>();
    kx::InstanceMethodSwizzling(Harbour::classObject(), "consumer_depth", "consumer_tide");
    std::printf("%s %d %s\n", harbour->className().c_str(), depthOperation(*harbour), kx::KX_VERSION.data());
}

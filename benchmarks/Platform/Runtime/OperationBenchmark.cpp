// SPDX-License-Identifier: MIT

// One call of an operation that was exchanged, on receivers of two classes, against a virtual call.
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Operation.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>

#include "benchmarks/peers/Check.h"
#include "benchmarks/peers/Inputs.h"

namespace {

constexpr std::size_t kReceivers = 64;

struct Shape {
    virtual ~Shape() = default;
    virtual int scaled(int by) = 0;
};
struct Square final : Shape {
    int scaled(int by) override { return by * 3; }
};
struct Circle final : Shape {
    int scaled(int by) override { return by * 5; }
};

constinit kx::Operation<int(int)> scaledOperation{"benchmark_scaled:"};
constinit kx::Operation<int(int)> replacementOperation{"benchmark_replacement:"};

class KXSquare : public kx::Subclass<KXSquare, kx::NSObject> {
  public:
    static void defineOperations(kx::Class& cls) {
        scaledOperation.implement(cls, [](kx::NSObject&, int) { return 0; });
        replacementOperation.implement(cls, [](kx::NSObject&, int by) { return by * 3; });
    }
};
class KXCircle : public kx::Subclass<KXCircle, kx::NSObject> {
  public:
    static void defineOperations(kx::Class& cls) {
        scaledOperation.implement(cls, [](kx::NSObject&, int) { return 0; });
        replacementOperation.implement(cls, [](kx::NSObject&, int by) { return by * 5; });
    }
};

// Which class each receiver is of: the same for both contenders.
const std::vector<std::uint32_t> kinds = peers::uniform(2, kReceivers);

const std::vector<std::shared_ptr<Shape>> shapes = [] {
    std::vector<std::shared_ptr<Shape>> made;
    for (const auto kind : kinds) {
        if (kind == 0)
            made.push_back(std::make_shared<Square>());
        else
            made.push_back(std::make_shared<Circle>());
    }
    return made;
}();

const std::vector<std::shared_ptr<kx::NSObject>> objects = [] {
    for (kx::Class* cls : {&KXSquare::classObject(), &KXCircle::classObject()}) {
        kx::InstanceMethodSwizzling(*cls, "benchmark_scaled:", "benchmark_replacement:");
    }
    std::vector<std::shared_ptr<kx::NSObject>> made;
    for (const auto kind : kinds) {
        if (kind == 0)
            made.push_back(kx::make<KXSquare>());
        else
            made.push_back(kx::make<KXCircle>());
    }
    return made;
}();

[[maybe_unused]] const bool checked = [] {
    bool equal = true;
    for (std::size_t i = 0; i < kReceivers; ++i) {
        equal = equal && shapes[i]->scaled(7) == scaledOperation(*objects[i], 7);
    }
    return peers::checkEqualAnswers(equal, "operation/exchanged-call");
}();

// Calls as short as these take twice the time where the loop's address is one that the processor's predictor
// of targets does not get on with: both loops begin at the same distance.
[[gnu::aligned(128)]] void exchangedCall(benchmark::State& state) {
    peers::Cycle next(objects);
    for (auto _ : state) benchmark::DoNotOptimize(scaledOperation(*next(), 7));
}
BENCHMARK(exchangedCall)->Name("operation/exchanged-call/kx");

[[gnu::aligned(128)]] void virtualCall(benchmark::State& state) {
    peers::Cycle next(shapes);
    for (auto _ : state) benchmark::DoNotOptimize(next()->scaled(7));
}
BENCHMARK(virtualCall)->Name("operation/exchanged-call/virtual");

}  // namespace

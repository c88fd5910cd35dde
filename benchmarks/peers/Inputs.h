#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

/// Inputs that are the same for all contenders of a workload.
namespace peers {

/// Walks over a power-of-two array again and again, so that neither the branch predictor nor the cache sees
/// one value only.
template <class T>
class Cycle {
  public:
    explicit Cycle(const std::vector<T>& items, std::size_t start = 0) : items_(items), next_(start) {}
    const T& operator()() { return items_[next_++ & (items_.size() - 1)]; }

  private:
    const std::vector<T>& items_;
    std::size_t next_;
};

/// `count` numbers below `limit`, the same in every run.
inline std::vector<std::uint32_t> uniform(std::uint32_t limit, std::size_t count) {
    std::mt19937 random(1);
    std::vector<std::uint32_t> numbers(count);
    for (auto& number : numbers) number = static_cast<std::uint32_t>(random() % limit);
    return numbers;
}

}  // namespace peers

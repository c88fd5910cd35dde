// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
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

/// `count` numbers below `limit` with zipf's frequencies (1 / rank^0.99), the ranks scattered over the
/// numbers.
inline std::vector<std::uint32_t> zipf(std::uint32_t limit, std::size_t count) {
    std::vector<double> sums(limit);
    double sum = 0;
    for (std::uint32_t i = 0; i < limit; ++i) sums[i] = sum += 1 / std::pow(i + 1, 0.99);
    std::vector<std::uint32_t> scattered(limit);
    std::iota(scattered.begin(), scattered.end(), 0U);
    std::mt19937_64 random(1);
    std::shuffle(scattered.begin(), scattered.end(), random);
    std::uniform_real_distribution<double> pick(0, sum);
    std::vector<std::uint32_t> numbers(count);
    for (auto& number : numbers) {
        const auto rank = std::lower_bound(sums.begin(), sums.end() - 1, pick(random)) - sums.begin();
        number = scattered[static_cast<std::size_t>(rank)];
    }
    return numbers;
}

}  // namespace peers

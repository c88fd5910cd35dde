// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <KXFoundation/Testing/PictureComparison.h>

namespace kx::testing {

/// One PNG in the build folder with every picture that came out otherwise than before: old, new, difference.
/// It is written, and its path told, when the program's tests are over.
class GoldenSheet final : public ::testing::Environment {
  public:
    static GoldenSheet& shared();

    void add(const std::string& name, const NSBitmapImageRep& before, const NSBitmapImageRep& now,
             Tolerance tolerance);

  private:
    void TearDown() override;

    std::string firstName_;
    std::vector<std::shared_ptr<NSBitmapImageRep>> rows_;
};

}  // namespace kx::testing

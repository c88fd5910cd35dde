// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace kx {

/// The platform's exception: what a class's own code throws when it cannot go on, such as an initWithCoder
/// that meets what it never wrote. The library throws none itself.
class NSException : public std::exception {
  public:
    NSException(std::string name, std::string reason) : name_(std::move(name)), reason_(std::move(reason)) {}

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] const std::string& reason() const noexcept { return reason_; }
    [[nodiscard]] const char* what() const noexcept override { return reason_.c_str(); }

  private:
    std::string name_;
    std::string reason_;
};

}  // namespace kx

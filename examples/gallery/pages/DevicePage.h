// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "Page.h"

namespace gallery {

/// The machine: its model and name, free space, addresses in the network, sensors, torch, and which services
/// of the desktop work here.
class DevicePage final : public Page {
  public:
    DevicePage();
    ~DevicePage() override;
    void build(Column& column, Gallery& gallery) override;

  private:
    struct Answers;
    void ask(Gallery& gallery);
    void addTorch(Column& column, Gallery& gallery);
    void addCapabilities(Column& column);

    const std::shared_ptr<Answers> answers_;  // they may come when the page is gone
    std::string refusal_;
};

}  // namespace gallery

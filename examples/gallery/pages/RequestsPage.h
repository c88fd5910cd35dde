// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Core/KXRequest.h>
#include <KXFoundation/Platform/Runtime/DetachedTask.h>

#include "Page.h"

namespace gallery {

/// A request to a service whose worker thread has its answer posted on the main queue: refused while busy,
/// deaf to answers with another number, and the same awaited by a coroutine.
class RequestsPage final : public Page {
  public:
    RequestsPage();
    ~RequestsPage() override;
    void build(Column& column, Gallery& gallery) override;

  private:
    void start();
    kx::DetachedTask await();
    void note(std::string_view key, std::string_view detail);

    struct Event {
        std::string key, detail;
    };
    std::vector<Event> events_;
    const std::shared_ptr<kx::KXRequest> request_;
    Gallery* gallery_ = nullptr;
};

}  // namespace gallery

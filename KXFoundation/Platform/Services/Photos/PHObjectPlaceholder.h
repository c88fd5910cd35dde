// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// Stands for an asset or album that a change will make, which gets its identifier. Immutable; any thread.
class KX_EXPORT PHObjectPlaceholder : public Subclass<PHObjectPlaceholder, NSObject> {
  public:
    [[nodiscard]] const std::string& localIdentifier() const noexcept { return identifier_; }

    bool init(std::string identifier) {
        identifier_ = std::move(identifier);
        return Super::init();
    }

  private:
    std::string identifier_;
};

}  // namespace kx

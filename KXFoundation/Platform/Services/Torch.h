// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// The port of the camera's torch. The adapter looks at every call which lights there are (SysfsTorch.h). Any
/// thread.
class KX_EXPORT Torch {
  public:
    virtual ~Torch() = default;

    /// The light that serves as torch, by the system's name; absent without one.
    [[nodiscard]] virtual std::optional<std::string> name() = 0;
    /// How bright it is, from 0 (off) to 1.
    virtual Result<float> level() = 0;
    /// Whether this user may switch it: Denied if not, Missing without one. Changes nothing.
    virtual Result<void> maySet() = 0;
    /// Makes it that bright; a level above 0 is never off. Denied if this user may not, Missing without one.
    virtual Result<void> setLevel(float level) = 0;

    static PortSlot<Torch>& slot();
    static std::shared_ptr<Torch> makeDefault();
};

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// The port to what reads the screen to those who do not see it. Any thread.
class KX_EXPORT ScreenReader {
  public:
    virtual ~ScreenReader() = default;

    /// Has the text read out, once what is being read has ended; of a longer one the first 4 KiB. Returns at
    /// once. Nothing happens where the desktop has nobody who reads, and of texts that come faster than they
    /// are taken some are left out; one log line if the desktop refuses.
    virtual void announce(std::string_view text) = 0;

    static PortSlot<ScreenReader>& slot();
    static std::shared_ptr<ScreenReader> makeDefault();
};

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

enum class LogLevel : std::uint8_t { Info, Warning, Fault };

/// Where log lines go: the port of the log. The adapter writes "<program>: <line>" to standard error.
class KX_EXPORT LogSink {
  public:
    virtual ~LogSink() = default;

    /// Takes one line without its line end. Called from any thread, one call at a time is not promised; must
    /// not call the library, which may hold a lock.
    virtual void write(LogLevel level, std::string_view line) = 0;

    static PortSlot<LogSink>& slot();
    static std::shared_ptr<LogSink> makeDefault();
};

/// Writes one line to the sink; line ends and other control characters in `line` become spaces, and a line
/// longer than 4 KiB is cut. Any thread.
KX_EXPORT void log(LogLevel level, std::string_view line);

/// The face of a subsystem reports an error here when it turns it into the harmless answer: at most one line
/// a minute for each `place` (a string literal) and kind of error, so that a full disk does not flood the
/// log.
KX_EXPORT void logError(const char* place, const Error& error);

}  // namespace kx

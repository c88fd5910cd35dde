// SPDX-License-Identifier: MIT

#include <KXFoundation/Testing/CapturedLog.h>

namespace kx::testing {

class CapturedLog::Sink final : public LogSink {
  public:
    void write(LogLevel, std::string_view line) override {
        const std::lock_guard lock(mutex);
        lines.emplace_back(line);
    }
    std::mutex mutex;
    std::vector<std::string> lines;  // guarded by mutex
};

CapturedLog::CapturedLog() : sink_(std::make_shared<Sink>()), scope_(sink_) {}

std::vector<std::string> CapturedLog::lines() const {
    const std::lock_guard lock(sink_->mutex);
    return sink_->lines;
}

}  // namespace kx::testing

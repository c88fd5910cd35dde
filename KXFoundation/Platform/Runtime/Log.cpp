// SPDX-License-Identifier: MIT

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

class StandardErrorSink final : public LogSink {
  public:
    void write(LogLevel, std::string_view line) override {
        std::string text = program_invocation_short_name;
        text.append(": ").append(line).push_back('\n');
        std::fwrite(text.data(), 1, text.size(), stderr);  // one call: lines of two threads do not mix
    }
};

constexpr std::size_t kLongestLine = 4096;

using ReportedAt = std::map<std::pair<std::string, ErrorKind>, std::chrono::nanoseconds>;

/// Says whether this kind of error at this place was last reported a minute ago or more, and marks it
/// reported.
bool claimReport(const char* place, ErrorKind kind) {
    static auto& mutex = *new std::mutex;
    static auto& reported = *new ReportedAt;
    static std::uint64_t reportedUnder = 0;
    const std::lock_guard lock(mutex);
    if (reportedUnder != portGeneration()) {  // another world: its first line is news
        reported.clear();
        reportedUnder = portGeneration();
    }
    const auto now = Clock::slot().current().now();
    const auto [entry, isNew] = reported.try_emplace({place, kind}, now);
    if (!isNew && now - entry->second < std::chrono::minutes(1)) return false;
    entry->second = now;
    return true;
}

}  // namespace

PortSlot<LogSink>& LogSink::slot() {
    static constinit PortSlot<LogSink> slot;
    return slot;
}

std::shared_ptr<LogSink> LogSink::makeDefault() {
    return std::make_shared<StandardErrorSink>();
}

void log(LogLevel level, std::string_view line) {
    std::string clean(line.substr(0, kLongestLine));
    for (char& c : clean) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
    }
    if (clean.size() < line.size()) {
        while (!clean.empty() && (static_cast<unsigned char>(clean.back()) & 0xC0) == 0x80) clean.pop_back();
        if (!clean.empty() && static_cast<unsigned char>(clean.back()) >= 0xC0) clean.pop_back();
        clean += "…";
    }
    LogSink::slot().current().write(level, clean);
}

void logError(const char* place, const Error& error) {
    if (claimReport(place, error.kind)) log(LogLevel::Warning, std::string(place) + ": " + error.message());
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <KXFoundation/Platform/Runtime/Environment.h>

namespace kx {

namespace {

class ProcessEnvironment final : public Environment {
  public:
    std::optional<std::string> variable(const std::string& name) const override {
        // Safe as long as nobody changes the environment meanwhile, which this library never does.
        const char* value = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe)
        if (!value || !*value) return std::nullopt;
        return value;
    }

    std::string programPath() const override {
        std::error_code error;
        const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
        if (error) return program_invocation_name;
        // What the kernel adds once an upgrade has replaced the program's file.
        constexpr std::string_view kDeleted = " (deleted)";
        std::string text = path.string();
        if (text.ends_with(kDeleted)) text.resize(text.size() - kDeleted.size());
        return text;
    }
};

std::optional<std::string> absolute(std::optional<std::string> path) {
    if (!path || !path->starts_with('/')) return std::nullopt;
    return path;
}

}  // namespace

PortSlot<Environment>& Environment::slot() {
    static constinit PortSlot<Environment> slot;
    return slot;
}

std::shared_ptr<Environment> Environment::makeDefault() {
    return std::make_shared<ProcessEnvironment>();
}

std::optional<std::string> baseDirectory(BaseDirectory which) {
    static constexpr struct {
        const char* variable;
        const char* belowHome;
    } kPlaces[] = {{"XDG_CONFIG_HOME", "/.config"},
                   {"XDG_DATA_HOME", "/.local/share"},
                   {"XDG_CACHE_HOME", "/.cache"},
                   {"XDG_STATE_HOME", "/.local/state"}};
    const auto& place = kPlaces[static_cast<std::size_t>(which)];
    const Environment& environment = Environment::slot().current();
    if (auto named = absolute(environment.variable(place.variable))) return named;
    auto home = absolute(environment.variable("HOME"));
    if (!home) return std::nullopt;
    return *home + place.belowHome;
}

std::string programName() {
    const std::string path = Environment::slot().current().programPath();
    return path.substr(path.find_last_of('/') + 1);
}

}  // namespace kx

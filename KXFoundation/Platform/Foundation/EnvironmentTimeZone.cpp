// SPDX-License-Identifier: MIT

#include <filesystem>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Runtime/Environment.h>

namespace kx {

namespace {

constexpr const char* kSystemZone = "/etc/localtime";

/// The link's own target names the zone ("/usr/share/zoneinfo/Europe/Berlin"); what that links to is often an
/// older name's new one.
std::string nameBehindLink() {
    std::error_code error;
    const std::string target = std::filesystem::read_symlink(kSystemZone, error).string();
    constexpr std::string_view kFolder = "/zoneinfo/";
    const std::size_t at = target.rfind(kFolder);
    if (!error && at != target.npos) return target.substr(at + kFolder.size());
    return std::filesystem::exists(kSystemZone, error) ? kSystemZone : "UTC";
}

/// As tzset(3) reads TZ, but for rules written out in it, which no desktop sets; empty for none.
std::string variableOf(const Environment& environment) {
    std::string zone = environment.variable("TZ").value_or("");
    if (zone.starts_with(':')) zone.erase(0, 1);
    return zone;
}

class EnvironmentTimeZone final : public TimeZoneSettings {
  public:
    std::string systemTimeZoneName() const override {
        return variable_.empty() ? nameBehindLink() : variable_;
    }

  private:
    std::string variable_ = variableOf(Environment::slot().current());
};

}  // namespace

std::shared_ptr<TimeZoneSettings> TimeZoneSettings::makeDefault() {
    return std::make_shared<EnvironmentTimeZone>();
}

}  // namespace kx

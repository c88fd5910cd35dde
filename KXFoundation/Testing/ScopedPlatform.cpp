// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Services/SysfsTorch.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx::testing {

namespace {

/// Before the first port is replaced.
std::string idle(std::string text) {
    drainQueues();
    return text;
}

std::vector<InterfaceAddress> loopback() {
    return {{"lo", IPv4Address{{127, 0, 0, 1}}, IPv4Address{{255, 0, 0, 0}}}};
}

}  // namespace

ScopedPlatform::ScopedPlatform(std::string_view bundlePath)
    : bundle_(idle(directory_.makeDirectory("bundle"))),
      bundlePath_(bundlePath.empty() ? std::string_view(bundle_.path()) : bundlePath),
      environment_(std::make_shared<FakeEnvironment>()),
      locale_(std::make_shared<InjectedLocale>()),
      clockFormat_(std::make_shared<InjectedClockFormat>()),
      workspace_(std::make_shared<RecordingWorkspace>()),
      screenReader_(std::make_shared<RecordingScreenReader>()),
      environmentScope_(environment_),
      localeScope_(locale_),
      clockFormatScope_(clockFormat_),
      timeZoneScope_(std::make_shared<InjectedTimeZone>("UTC")),
      interfacesScope_(std::make_shared<InjectedInterfaces>(loopback())),
      torchScope_(std::make_shared<SysfsTorch>(directory_.makeDirectory("system"))),
      workspaceScope_(workspace_),
      screenReaderScope_(screenReader_) {
    const std::string home = directory_.makeDirectory("home");
    environment_->set("HOME", home)
        .set("XDG_CONFIG_HOME", home + "/config")
        .set("XDG_DATA_HOME", home + "/data")
        .set("XDG_CACHE_HOME", home + "/cache")
        .set("XDG_STATE_HOME", home + "/state")
        .set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home + "/bus");
    begin();
}

ScopedPlatform::~ScopedPlatform() {
    drainQueues();
}

void ScopedPlatform::setTimeZone(std::string name) {
    drainQueues();
    TimeZoneSettings::slot().replace(std::make_shared<InjectedTimeZone>(std::move(name)));
}

void ScopedPlatform::setInterfaces(Result<std::vector<InterfaceAddress>> list) {
    drainQueues();
    NetworkInterfaces::slot().replace(std::make_shared<InjectedInterfaces>(std::move(list)));
}

void ScopedPlatform::writeSystemFile(std::string_view name, std::string_view contents) {
    directory_.write(std::string("system/").append(name), contents);
}

void ScopedPlatform::restart() {
    drainQueues();  // blocks may use objects of the process that ends
    state_.reset();
    ScopedLanguageState::restart();
    begin();
}

void ScopedPlatform::begin() {
    state_ = std::make_unique<ScopedProcessState>();
    NSBundle::setMainBundlePath(bundlePath_);
}

}  // namespace kx::testing

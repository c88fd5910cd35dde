#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx::testing {

ScopedPlatform::ScopedPlatform()
    : bundle_(directory_.makeDirectory("bundle")),
      environment_(std::make_shared<FakeEnvironment>()),
      locale_(std::make_shared<InjectedLocale>()),
      environmentScope_(environment_),
      localeScope_(locale_) {
    drainQueues();
    const std::string home = directory_.makeDirectory("home");
    environment_->set("HOME", home)
        .set("XDG_CONFIG_HOME", home + "/config")
        .set("XDG_DATA_HOME", home + "/data")
        .set("XDG_CACHE_HOME", home + "/cache")
        .set("XDG_STATE_HOME", home + "/state");
    begin();
}

ScopedPlatform::~ScopedPlatform() {
    drainQueues();
}

void ScopedPlatform::restart() {
    drainQueues();  // blocks may use objects of the process that ends
    state_.reset();
    begin();
}

void ScopedPlatform::begin() {
    state_ = std::make_unique<ScopedProcessState>();
    NSBundle::setMainBundlePath(bundle_.path());
}

}  // namespace kx::testing

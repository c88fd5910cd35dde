// SPDX-License-Identifier: MIT

#include <mutex>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/ResourceFolder.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

struct MainBundle {
    std::mutex mutex;
    std::string path;  // as named by the application; guarded by mutex
    std::once_flag made;
    std::shared_ptr<NSBundle> bundle;  // set once, under mutex
};

constinit ProcessState<MainBundle> mainState;

/// The folder named by the application, else the first place of the two that is there, else the first of
/// them.
std::shared_ptr<const ResourceFolder> mainFolder(const std::string& named) {
    const std::string program = Environment::slot().current().programPath();
    const std::string beside = directoryOf(program) + "/Resources";
    const std::string shared = directoryOf(program) + "/../share/" + programName();
    const std::string& first = named.empty() ? beside : named;
    if (auto folder = ResourceFolder::over(first)) return folder;
    if (first == beside) {
        if (auto folder = ResourceFolder::over(shared)) return folder;
    }
    if (first != beside) log(LogLevel::Warning, "there is no bundle at " + first);
    return std::make_shared<const ResourceFolder>(first);
}

}  // namespace

bool NSBundle::init(std::optional<std::string_view> path) {
    if (!Super::init() || !path) return false;
    folder_ = ResourceFolder::over(*path);
    return folder_ != nullptr;
}

bool NSBundle::initAsMain(const std::string& named) {
    folder_ = mainFolder(named);
    isMain_ = true;
    return Super::init();
}

std::shared_ptr<NSBundle> NSBundle::mainBundle() {
    MainBundle& state = mainState.get();
    std::call_once(state.made, [&state] {
        const std::lock_guard lock(state.mutex);
        auto bundle = allocateObject<NSBundle>(classObject());
        bundle->initAsMain(state.path);
        state.bundle = std::move(bundle);
    });
    return state.bundle;
}

void NSBundle::setMainBundlePath(std::string_view path) {
    MainBundle& state = mainState.get();
    const std::lock_guard lock(state.mutex);
    if (state.bundle) return callerError("NSBundle: the main bundle is already in use");
    state.path = path;
}

const std::string& NSBundle::bundlePath() const noexcept {
    return folder_->path();
}

Value NSBundle::infoDictionary() const {
    return folder_->information();
}

std::optional<std::string> NSBundle::bundleIdentifier() const {
    const Value information = folder_->information();
    if (const auto named = information["CFBundleIdentifier"].asString(); named && !named->empty())
        return std::string(*named);
    if (!isMain_) return std::nullopt;
    return programName();
}

std::vector<std::string> NSBundle::localizations() const {
    return folder_->directoriesEndingIn(".lproj");
}

std::optional<std::string> NSBundle::pathForResource(std::optional<std::string_view> name,
                                                     std::optional<std::string_view> type) const {
    if (!name || name->empty()) return std::nullopt;
    if (!type || type->empty()) return folder_->pathOf(*name);
    return folder_->pathOf(std::string(*name).append(".").append(*type));
}

std::string NSBundle::localizedStringForKey(std::string_view key, std::optional<std::string_view> value,
                                            std::optional<std::string_view> table) const {
    if (const auto text = lookUp(key, table)) return std::string(*text);
    return std::string(value && !value->empty() ? *value : key);
}

std::optional<std::string_view> NSBundle::lookUp(std::string_view key,
                                                 std::optional<std::string_view> table) const {
    const StringTable* const texts =
        table && !table->empty() ? folder_->table(*table) : folder_->defaultTable();
    return texts ? texts->lookUp(key) : std::nullopt;
}

}  // namespace kx

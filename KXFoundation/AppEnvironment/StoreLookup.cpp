// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/AppEnvironment/AppLinks.h>
#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/AppEnvironment/StoreLookup.h>
#include <KXFoundation/Core/KXAppInfo.h>
#include <KXFoundation/Platform/Foundation/NSJSONSerialization.h>
#include <KXFoundation/Platform/Foundation/PercentEncoding.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

constinit AtomicTask infoTask;

// The functions, not std::atomic<std::shared_ptr>: the standard library of GCC 12 unlocks that one without
// ordering.
std::shared_ptr<NSURLSessionTask> AtomicTask::load() const {
    return std::atomic_load(&task_);
}

void AtomicTask::store(std::shared_ptr<NSURLSessionTask> task) {
    std::atomic_store(&task_, std::move(task));
}

bool AtomicTask::storeIfNone(std::shared_ptr<NSURLSessionTask> task) {
    std::shared_ptr<NSURLSessionTask> none;
    return std::atomic_compare_exchange_strong(&task_, &none, std::move(task));
}

namespace {

/// What the service's answer says of the first application that it found; none for any other answer.
std::shared_ptr<KXAppInfo> appInfoIn(const Result<URLAnswer>& answer) {
    if (!answer) return nullptr;
    const auto json = NSJSONSerialization::JSONObjectWithData(answer->body);
    if (!json) return nullptr;
    const auto results = (*json)["results"].elements();
    if (results.empty() || results.front().type() != Value::Type::Dictionary) return nullptr;
    auto info = make<KXAppInfo>();
    info->setReleaseVersion(results.front()["version"].asString());
    info->setReleaseLog(results.front()["releaseNotes"].asString());
    return info;
}

}  // namespace

bool KXAppUtils::checkAppInfoFromAppStore(std::optional<std::string_view> applicationIdentifier,
                                          std::function<void(std::shared_ptr<KXAppInfo>)> completed) {
    if (!completed) {
        callerError("KXAppUtils: a look-up without a callback");
        return false;
    }
    if (infoTask.load()) return false;
    const std::string address = "https://" + appLinks().lookupHost +
                                "/lookup?id=" + percentEncoded(applicationIdentifier.value_or(""));
    const auto task = NSURLSession::dataTaskWithURL(
        NSURL::URLWithString(address), [completed = std::move(completed)](const Result<URLAnswer>& answer) {
            completed(appInfoIn(answer));
            infoTask.store(nullptr);
        });
    if (!infoTask.storeIfNone(task)) return false;
    task->resume();
    return true;
}

void KXAppUtils::cancelCheckAppInfo() {
    if (const auto task = infoTask.load()) task->cancel();
}

}  // namespace kx

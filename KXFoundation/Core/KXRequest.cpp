// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Core/KXRequest.h>
#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>

namespace kx {

namespace {

/// Runs the callbacks, then the last step, also where one of them throws.
template <class Callbacks, class Step>
void thenAlways(const Callbacks& callbacks, const Step& step) {
    try {
        callbacks();
    } catch (...) {
        step();
        throw;
    }
    step();
}

template <class Function>
std::shared_ptr<const Function> shared(Function function) {
    return function ? std::make_shared<const Function>(std::move(function)) : nullptr;
}

template <class Function>
const Function& valueOrEmpty(const std::shared_ptr<const Function>& function) noexcept {
    static const Function empty;
    return function ? *function : empty;
}

std::shared_ptr<KXError> errorWithMessage(std::int32_t code, std::string_view message) {
    auto error = KXError::errorWithCode(code);
    error->setMessage(message);
    return error;
}

}  // namespace

KXRequestProtocol::~KXRequestProtocol() = default;
KXRequestNotification::~KXRequestNotification() = default;

bool KXRequest::init() {
    if (!Super::init()) return false;
    clean();
    return true;
}

KXRequest::~KXRequest() {
    KXRequest::clean();
}

void KXRequest::requestMethod(const Method& method, Callback callback,
                              CallbackWithUserInfo callbackWithUserInfo, bool autoClean) {
    if (!method) return callerError("KXRequest: no method to run");
    if (identifier_ >= 1) return refuse(callback, callbackWithUserInfo);
    const auto alive = weak_from_this().lock();  // the method and the callbacks may drop the last reference
    setupNotification();
    timedOut_ = false;
    ++waits_;
    Error error = KXError::errorWithCode(0);
    const std::int32_t number = method(error);
    identifier_ = number;
    if (number < 0 && error && error->code() >= 0) error->setCode(number);
    if (!isSuccess(error.get())) {
        isFailing_ = true;
        const auto tell = [&] {
            if (callback) callback(false, error);
            if (callbackWithUserInfo) callbackWithUserInfo(false, error, {});
        };
        return thenAlways(tell, [this] {
            isFailing_ = false;
            cleanRequestID();
        });
    }
    setCallback(std::move(callback));
    setCallbackWithUserInfo(std::move(callbackWithUserInfo));
    autoClean_ = autoClean;
    startTimeout();
}

void KXRequest::requestMethod(const Method& method, Callback callback, bool autoClean) {
    requestMethod(method, std::move(callback), nullptr, autoClean);
}

void KXRequest::requestMethodCallbackWithUserInfo(const Method& method,
                                                  CallbackWithUserInfo callbackWithUserInfo, bool autoClean) {
    requestMethod(method, nullptr, std::move(callbackWithUserInfo), autoClean);
}

const KXRequest::Callback& KXRequest::callback() const noexcept {
    return valueOrEmpty(callback_);
}

void KXRequest::setCallback(Callback callback) {
    callback_ = shared(std::move(callback));
}

const KXRequest::CallbackWithUserInfo& KXRequest::callbackWithUserInfo() const noexcept {
    return valueOrEmpty(callbackWithUserInfo_);
}

void KXRequest::setCallbackWithUserInfo(CallbackWithUserInfo callback) {
    callbackWithUserInfo_ = shared(std::move(callback));
}

void KXRequest::refuse(const Callback& callback, const CallbackWithUserInfo& callbackWithUserInfo) const {
    const auto alive = weak_from_this().lock();
    if (callback) callback(false, requestBusyError());
    if (callbackWithUserInfo) callbackWithUserInfo(false, requestBusyError(), {});
}

void KXRequest::startTimeout() {
    const std::uint64_t wait = ++waits_;  // another one than that of a start inside the method
    if (timeout_.count() <= 0 || identifier_ < 1) return;
    DispatchQueue::main().after(timeout_, [weak = std::weak_ptr(self()), wait] {
        const auto request = weak.lock();
        if (request && request->waits_ == wait && request->identifier_ >= 1) request->endByTimeout();
    });
}

void KXRequest::endByTimeout() {
    timedOut_ = true;
    const std::uint64_t ended = waits_ + 1;
    callback(false, requestTimeoutError());
    if (waits_ <= ended) clean();  // else a callback has done so, and may have started the next request
}

KXRequest::Error KXRequest::requestBusyError() const {
    return errorWithMessage(kBusyCode, "请稍后再试");
}

KXRequest::Error KXRequest::requestTimeoutError() const {
    return errorWithMessage(kTimeoutCode, "请求超时");
}

std::int32_t KXRequest::requestIDInNotification(const NSNotification&) const {
    return 0;
}

KXRequest::Error KXRequest::errorInNotification(const NSNotification&) const {
    return nullptr;
}

Value KXRequest::responseInNotification(const NSNotification&) const {
    return DictionaryBuilder().build();
}

std::string KXRequest::requestNotificationName() const {
    return {};
}

void KXRequest::handleResponse(const NSNotification& notification) {
    const Error error = errorInNotification(notification);
    if (requestIDInNotification(notification) != identifier_) return;
    response_ = responseInNotification(notification);
    callback(error);
}

void KXRequest::callback(const Error& error) {
    callback(isSuccess(error.get()), error);
}

void KXRequest::callback(bool success, const Error& error) {
    callback(success, error, {});
}

void KXRequest::callback(bool success, const Error& error, const Value& userInfo) {
    const auto alive = weak_from_this().lock();
    ++waits_;
    const auto tell = [&] {  // held: a callback may clean the object or start its next request
        if (const auto call = callback_) (*call)(success, error);
        if (const auto call = callbackWithUserInfo_) (*call)(success, error, userInfo);
    };
    thenAlways(tell, [this] {
        if (autoClean_) clean();
    });
}

void KXRequest::setupNotification() {
    cleanupNotification();
    NSNotificationCenter::defaultCenter().addObserver(self(), &KXRequest::handleResponse,
                                                      NSNotificationName::named(requestNotificationName()));
}

void KXRequest::cleanupNotification() {
    NSNotificationCenter::defaultCenter().removeObserver(*this);
}

void KXRequest::cleanRequestID() {
    identifier_ = 0;
}

void KXRequest::clean() {
    ++waits_;
    cleanRequestID();
    autoClean_ = false;
    // Released last: what a callback owns may clean the object again.
    const auto callback = std::exchange(callback_, nullptr);
    const auto callbackWithUserInfo = std::exchange(callbackWithUserInfo_, nullptr);
    const Value information = std::exchange(requestInfo_, {});
    cleanupNotification();
}

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Core/KXError.h>
#include <KXFoundation/Platform/Foundation/NSNotification.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

class KXRequestAnswer;

/// What is told to whoever asks while a request is under way.
class KX_EXPORT KXRequestProtocol {
  public:
    virtual ~KXRequestProtocol();
    [[nodiscard]] virtual std::shared_ptr<KXError> requestBusyError() const = 0;
};

/// How an answer notification is recognised and read.
class KX_EXPORT KXRequestNotification {
  public:
    virtual ~KXRequestNotification();
    /// The number of the request that the notification answers.
    [[nodiscard]] virtual std::int32_t requestIDInNotification(const NSNotification& notification) const = 0;
    /// The error that it carries, or none.
    [[nodiscard]] virtual std::shared_ptr<KXError> errorInNotification(
        const NSNotification& notification) const = 0;
    /// The dictionary that it carries.
    [[nodiscard]] virtual Value responseInNotification(const NSNotification& notification) const = 0;
    [[nodiscard]] virtual std::string requestNotificationName() const = 0;
};

/// One request at a time to a service that answers with a broadcast notification. A start runs the caller's
/// method, which hands the work to the service and answers a request number; the notification of that number
/// calls the callbacks. A start while a request is waiting is refused. Derived classes say what the
/// notification is called and how it is read:
///
///     class HarbourRequest : public Subclass<HarbourRequest, KXRequest> {
///         std::string requestNotificationName() const override { return "HarbourDidAnswer"; }
///         ...
///     };
///     request->requestMethod([&](auto&) { return service.ask("Kiel"); },
///                            [](bool success, const auto& error) { ... });
///
/// No lock: answers and callbacks run on the thread that posts the notification. Starts, answers and clean()
/// of one object are serialised by its user.
class KX_EXPORT KXRequest : public Subclass<KXRequest, NSObject>,
                            public KXRequestProtocol,
                            public KXRequestNotification {
  public:
    using Error = std::shared_ptr<KXError>;
    /// Starts the work and answers its request number; a negative one means that it could not be started. May
    /// change the record in the slot, which has code 0, or put another there. The service is to post its
    /// answer after this has returned: one posted before is lost, as nobody waits for its number yet.
    using Method = std::function<std::int32_t(Error& error)>;
    using Callback = std::function<void(bool success, const Error& error)>;
    using CallbackWithUserInfo = std::function<void(bool success, const Error& error, const Value& userInfo)>;

    bool init();
    ~KXRequest() override;

    /// Starts a request. While one is waiting both callbacks get requestBusyError(), each its own, and the
    /// method does not run. If the method fails (a negative code in the slot, else a negative number, which
    /// becomes the code) both get that error. Otherwise they are kept for the answer; with `autoClean` the
    /// object is then cleaned after it. Refusals and failures call back before this returns. Absent callbacks
    /// are left out; an absent method is a caller error.
    void requestMethod(const Method& method, Callback callback, CallbackWithUserInfo callbackWithUserInfo,
                       bool autoClean);
    void requestMethod(const Method& method, Callback callback, bool autoClean = true);
    void requestMethodCallbackWithUserInfo(const Method& method, CallbackWithUserInfo callbackWithUserInfo,
                                           bool autoClean = true);

    /// Starts a request whose answer a coroutine waits for: see KXRequestAnswer.h.
    [[nodiscard]] KXRequestAnswer answer(Method method);

    /// How long a start waits for its first answer before the callbacks get requestTimeoutError() and the
    /// object is cleaned; zero and less for ever, as in a new object. Counts for starts to come. It ends on
    /// the main thread: for requests that are started and answered there.
    void setTimeout(std::chrono::nanoseconds timeout) noexcept { timeout_ = timeout; }
    [[nodiscard]] std::chrono::nanoseconds timeout() const noexcept { return timeout_; }
    /// Whether that happened to the last start.
    [[nodiscard]] bool timedOut() const noexcept { return timedOut_; }

    [[nodiscard]] bool autoClean() const noexcept { return autoClean_; }
    /// The number of the request that is waiting; less than 1 while idle.
    [[nodiscard]] std::int32_t identifier() const noexcept { return identifier_; }
    void setIdentifier(std::int32_t identifier) noexcept { identifier_ = identifier; }
    /// Called with every answer, first this one.
    [[nodiscard]] const Callback& callback() const noexcept;
    void setCallback(Callback callback);
    [[nodiscard]] const CallbackWithUserInfo& callbackWithUserInfo() const noexcept;
    void setCallbackWithUserInfo(CallbackWithUserInfo callback);
    /// The user's own data about the request; null when there is none, and after clean().
    [[nodiscard]] const Value& requestInfo() const noexcept { return requestInfo_; }
    void setRequestInfo(Value info) { requestInfo_ = std::move(info); }
    /// The dictionary of the last answer, null before the first; stays after clean().
    [[nodiscard]] const Value& response() const noexcept { return response_; }

    // What a derived class says of its service. Here: a new error with code -3, no number but 0, no error, an
    // empty dictionary, the name "".
    [[nodiscard]] Error requestBusyError() const override;
    [[nodiscard]] std::int32_t requestIDInNotification(const NSNotification& notification) const override;
    [[nodiscard]] Error errorInNotification(const NSNotification& notification) const override;
    [[nodiscard]] Value responseInNotification(const NSNotification& notification) const override;
    [[nodiscard]] std::string requestNotificationName() const override;
    /// A new error with code kTimeoutCode.
    [[nodiscard]] virtual Error requestTimeoutError() const;
    static constexpr std::int32_t kBusyCode = -3;
    static constexpr std::int32_t kTimeoutCode = -4;

    /// Takes a notification: one whose number is not identifier() is ignored.
    virtual void handleResponse(const NSNotification& notification);
    /// Delivers an answer: success by the sign of the error's code, none is success.
    virtual void callback(const Error& error);
    virtual void callback(bool success, const Error& error);
    /// Calls the callbacks, then cleans up if autoClean() says so. For derived classes with a userInfo to
    /// pass.
    virtual void callback(bool success, const Error& error, const Value& userInfo);

    /// Registers for the notification, in place of all earlier registrations of this object.
    virtual void setupNotification();
    /// Ends every registration of this object at the default centre, a derived class's own included.
    virtual void cleanupNotification();
    virtual void cleanRequestID();
    /// Back to idle: no number, no callbacks, no requestInfo, no registration. What was waiting is not
    /// answered.
    virtual void clean();

  private:
    friend class KXRequestAnswer;
    void refuse(const Callback& callback, const CallbackWithUserInfo& callbackWithUserInfo) const;
    void startTimeout();
    void endByTimeout();

    bool autoClean_ = false;
    std::int32_t identifier_ = 0;
    std::shared_ptr<const Callback> callback_;  // shared with who calls them just now
    std::shared_ptr<const CallbackWithUserInfo> callbackWithUserInfo_;
    Value requestInfo_;
    Value response_;
    std::chrono::nanoseconds timeout_{0};
    std::uint64_t waits_ = 0;  // counts up whenever a wait begins or ends: an old timer knows that it is late
    bool timedOut_ = false;
    bool isFailing_ = false;  // while the callbacks are told that the start has failed
};

}  // namespace kx

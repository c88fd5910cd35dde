// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/PercentEncoding.h>
#include <KXFoundation/Platform/Foundation/Utf8Validation.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Services/SecretServiceKeychain.h>

namespace kx {

namespace {

/// The text as an attribute, which is UTF-8 without zero bytes: "%", zero bytes and, in a text that is no
/// UTF-8, all beyond ASCII become %XX. So no two texts become the same.
std::string attribute(std::string_view text) {
    const bool keepsCharacters = isUtf8(text);
    return percentEncoded(text, [&](char c) {
        return c != 0 && c != '%' && (static_cast<unsigned char>(c) < 0x80 || keepsCharacters);
    });
}

struct Attributes {
    std::string application, service, account;

    Attributes(const std::string& of, const KeychainItem& item)
        : application(of), service(attribute(item.service)), account(attribute(item.account)) {}
    [[nodiscard]] DesktopSecret secret() const {
        return {application.c_str(), service.c_str(), account.c_str()};
    }
};

Result<void> outcome(DesktopReply reply) {
    switch (reply) {
        case DesktopReply::Answered:
            return {};
        case DesktopReply::NoBus:
            return Error{ErrorKind::Unsupported, 0, "session bus"};
        case DesktopReply::NoService:
            return Error{ErrorKind::Unsupported, 0, "Secret Service"};
        case DesktopReply::TimedOut:
            return Error{ErrorKind::TimedOut, 0, "Secret Service"};
        case DesktopReply::Refused:
            break;
    }
    return Error{ErrorKind::Denied, 0, "Secret Service"};
}

Result<void> outcome(DesktopReply reply, bool found) {
    auto done = outcome(reply);
    if (done && !found) return Error{ErrorKind::Missing, 0, "keychain item"};
    return done;
}

}  // namespace

SecretServiceKeychain::SecretServiceKeychain(const DesktopSecrets& secrets, std::string busAddress,
                                             const std::string& application,
                                             std::chrono::milliseconds timeout)
    : secrets_(secrets),
      busAddress_(std::move(busAddress)),
      application_(attribute(application)),
      timeoutMilliseconds_(static_cast<std::uint32_t>(timeout.count())) {}

template <class Ask>
DesktopReply SecretServiceKeychain::reply(Ask ask) {
    const std::chrono::milliseconds timeout(timeoutMilliseconds_);
    const Clock& clock = Clock::slot().current();
    const auto start = clock.now();
    if (start < silentUntil_.load(std::memory_order_relaxed)) return DesktopReply::TimedOut;
    const DesktopReply reply = ask();
    const auto end = clock.now();
    // While a dialogue is open, calls are TimedOut at once; when it ends they may go on at once too.
    const bool hasWaited = end - start >= timeout / 2;
    if (reply == DesktopReply::TimedOut && hasWaited)
        silentUntil_.store(end + timeout, std::memory_order_relaxed);
    return reply;
}

Result<void> SecretServiceKeychain::probe(std::chrono::milliseconds patience) {
    return outcome(secrets_.probe(busAddress_.c_str(), static_cast<std::uint32_t>(patience.count())));
}

Result<std::string> SecretServiceKeychain::copy(const KeychainItem& item) {
    const Attributes attributes(application_, item);
    const DesktopSecret secret = attributes.secret();
    std::string data;
    bool found = false;
    const auto take = [](void* into, const void* bytes, std::size_t size) {
        static_cast<std::string*>(into)->assign(static_cast<const char*>(bytes), size);
    };
    const DesktopReply answer = reply([&] {
        return secrets_.copy(busAddress_.c_str(), &secret, timeoutMilliseconds_, take, &data, &found);
    });
    if (auto done = outcome(answer, found); !done) return std::move(done).error();
    return data;
}

Result<void> SecretServiceKeychain::add(const KeychainItem& item, std::string_view data) {
    if (data.size() > kMostBytes) return Error{ErrorKind::TooLarge, 0, "keychain item"};
    const Attributes attributes(application_, item);
    const DesktopSecret secret = attributes.secret();
    return outcome(reply([&] {
        return secrets_.add(busAddress_.c_str(), &secret, data.data(), data.size(), timeoutMilliseconds_);
    }));
}

Result<void> SecretServiceKeychain::remove(const KeychainItem& item) {
    const Attributes attributes(application_, item);
    const DesktopSecret secret = attributes.secret();
    bool found = false;
    const DesktopReply answer =
        reply([&] { return secrets_.remove(busAddress_.c_str(), &secret, timeoutMilliseconds_, &found); });
    return outcome(answer, found);
}

}  // namespace kx

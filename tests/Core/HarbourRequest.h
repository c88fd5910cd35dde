// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Core/KXRequest.h>
#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>

namespace kx::testing {

/// A request of a service that answers with "HarbourDidAnswer" {id, code, berths}; without a code, no error.
class HarbourRequest : public Subclass<HarbourRequest, KXRequest> {
  public:
    std::string requestNotificationName() const override { return "HarbourDidAnswer"; }
    std::int32_t requestIDInNotification(const NSNotification& notification) const override {
        return static_cast<std::int32_t>(notification.userInfo()["id"].asInteger().value_or(0));
    }
    Error errorInNotification(const NSNotification& notification) const override {
        const auto code = notification.userInfo()["code"].asInteger();
        return code ? KXError::errorWithCode(static_cast<std::int32_t>(*code)) : nullptr;
    }
    Value responseInNotification(const NSNotification& notification) const override {
        return notification.userInfo();
    }
};

inline void postAnswer(std::int32_t id, std::optional<std::int32_t> code = std::nullopt, int berths = 0) {
    DictionaryBuilder info;
    info.set("id", id).set("berths", berths);
    if (code) info.set("code", *code);
    NSNotificationCenter::defaultCenter().postNotificationName("HarbourDidAnswer", nullptr, info.build());
}

inline KXRequest::Method answering(std::int32_t number) {
    return [number](KXRequest::Error&) { return number; };
}

}  // namespace kx::testing

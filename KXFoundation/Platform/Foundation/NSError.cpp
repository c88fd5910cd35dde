// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSError.h>

namespace kx {

namespace {

constexpr std::string_view kDescription = "NSLocalizedDescription";

constexpr std::pair<ErrorKind, int> kNearestCodes[] = {
    {ErrorKind::Missing, ENOENT}, {ErrorKind::Corrupt, EBADMSG},    {ErrorKind::Ended, EBADMSG},
    {ErrorKind::TooLarge, EFBIG}, {ErrorKind::Denied, EACCES},      {ErrorKind::Full, ENOSPC},
    {ErrorKind::Busy, EBUSY},     {ErrorKind::TimedOut, ETIMEDOUT}, {ErrorKind::Unsupported, ENOTSUP},
};

int posixCode(const Error& error) {
    if (error.systemError != 0) return error.systemError;
    const auto found = std::ranges::find(kNearestCodes, error.kind, &std::pair<ErrorKind, int>::first);
    return found == std::end(kNearestCodes) ? EIO : found->second;
}

}  // namespace

std::shared_ptr<NSError> NSError::errorWithDomain(std::string_view domain, std::int64_t code,
                                                  Value userInfo) {
    return make<NSError>(domain, code, std::move(userInfo));
}

std::shared_ptr<NSError> NSError::errorWithError(const Error& error) {
    DictionaryBuilder information;
    information.set(kDescription, error.message());
    return errorWithDomain(NSPOSIXErrorDomain, posixCode(error), information.build());
}

bool NSError::init(std::string_view domain, std::int64_t code, Value userInfo) {
    domain_ = domain;
    code_ = code;
    userInfo_ = std::move(userInfo);
    return Super::init();
}

std::string NSError::description() const {
    std::string text = domain_ + " " + std::to_string(code_);
    if (const auto words = userInfo_[kDescription].asString()) text.append(": ").append(*words);
    return text;
}

bool NSError::isEqual(const NSObject& other) const {
    if (!other.isKindOfClass(classObject())) return false;
    const auto& error = static_cast<const NSError&>(other);
    return code_ == error.code_ && domain_ == error.domain_ && userInfo_ == error.userInfo_;
}

}  // namespace kx

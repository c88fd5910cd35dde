// SPDX-License-Identifier: MIT

#include <cerrno>
#include <system_error>

#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

namespace {

ErrorKind kindOf(int systemError) noexcept {
    switch (systemError) {
        case ENOENT:
        case ENOTDIR:
            return ErrorKind::Missing;
        case EACCES:
        case EPERM:
        case EROFS:
            return ErrorKind::Denied;
        case ENOSPC:
        case EDQUOT:
            return ErrorKind::Full;
        case EFBIG:
        case EOVERFLOW:
        case ENAMETOOLONG:
            return ErrorKind::TooLarge;
        case EBUSY:
        case EAGAIN:
            return ErrorKind::Busy;
        case ETIMEDOUT:
            return ErrorKind::TimedOut;
        case ENOSYS:
        case EOPNOTSUPP:
            return ErrorKind::Unsupported;
        default:
            return ErrorKind::Failed;
    }
}

}  // namespace

std::string_view errorKindName(ErrorKind kind) noexcept {
    switch (kind) {
        case ErrorKind::Missing:
            return "missing";
        case ErrorKind::Corrupt:
            return "corrupt";
        case ErrorKind::Ended:
            return "ended early";
        case ErrorKind::TooLarge:
            return "too large";
        case ErrorKind::Denied:
            return "denied";
        case ErrorKind::Full:
            return "no room left";
        case ErrorKind::Busy:
            return "busy";
        case ErrorKind::TimedOut:
            return "timed out";
        case ErrorKind::Unsupported:
            return "unsupported";
        case ErrorKind::Failed:
            break;
    }
    return "failed";
}

Error Error::fromErrno(int systemError, std::string where) {
    return {kindOf(systemError), systemError, std::move(where)};
}

std::string Error::message() const {
    std::string text = where + ": " + std::string(errorKindName(kind));
    if (systemError != 0) text += " (" + std::generic_category().message(systemError) + ")";
    return text;
}

}  // namespace kx

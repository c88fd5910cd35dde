// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Services/Photos/PhotoChangeBlock.h>

namespace kx {

namespace {
thread_local PhotoChangeBlock* running = nullptr;
}

PhotoChangeBlock::PhotoChangeBlock() : outer_(running) {
    running = this;
}

PhotoChangeBlock::~PhotoChangeBlock() {
    running = outer_;
}

PhotoChangeBlock* PhotoChangeBlock::current(const char* request) {
    if (!running) callerError(std::string(request) + ": outside of a change block");
    return running;
}

}  // namespace kx

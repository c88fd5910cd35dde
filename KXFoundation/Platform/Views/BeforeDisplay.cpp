// SPDX-License-Identifier: MIT

#include <cstddef>
#include <vector>

#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/BeforeDisplay.h>

namespace kx {

namespace {
constinit ProcessState<std::vector<void (*)()>> callbacks;
}

void addBeforeDisplay(void (*callback)()) {
    callbacks.get().push_back(callback);
}

void runBeforeDisplay() {
    const auto& all = callbacks.get();
    for (std::size_t i = 0; i < all.size(); ++i) all[i]();  // one may add another
}

}  // namespace kx

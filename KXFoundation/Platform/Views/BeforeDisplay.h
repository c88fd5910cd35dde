// SPDX-License-Identifier: MIT
#pragma once

/// For what sets views after a state that announces no change. Private to the library; main thread.
namespace kx {

/// Calls the function before the application draws its windows, for the rest of the process.
void addBeforeDisplay(void (*callback)());
void runBeforeDisplay();

}  // namespace kx

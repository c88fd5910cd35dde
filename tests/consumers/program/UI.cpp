// SPDX-License-Identifier: MIT

// An application with controls: its setters of alignment were exchanged when the library was loaded, before
// anything of the program's own ran.
#include <cstdio>

#include <KXFoundation/Platform/Views/NSTextField.h>

namespace {

const std::string description = kx::NSTextField::classObject().describe();

}  // namespace

int main() {
    const bool exchanged =
        description.find("- setAlignment: runs rtl_setTextAlignment:") != std::string::npos;
    std::puts(exchanged ? "alignment is intercepted" : description.c_str());
}

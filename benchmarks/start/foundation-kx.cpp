// SPDX-License-Identifier: MIT

// One object of the Foundation library, made and named.
#include <cstdio>

#include <KXFoundation/Core/KXObject.h>

int main() {
    std::puts(kx::KXObject::objectWithID("harbour")->id()->c_str());
}

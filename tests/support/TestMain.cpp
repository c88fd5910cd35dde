// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Runtime/CallerError.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    kx::setStrictMode(true);
    return RUN_ALL_TESTS();
}

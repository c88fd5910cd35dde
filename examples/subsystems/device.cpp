// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Device/KXKeychainUtils.h>
#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Device/KXToolUtils.h>
#include <KXFoundation/Platform/Foundation/NSError.h>

using namespace kx;

int main() {
    std::printf("%s\n", KXNetworkUtils::formatMac("a:b:c:1:2:3").c_str());
    std::printf("%d\n", KXNetworkUtils::ipStringToInteger("10.0.0.1"));
    std::printf("%d for what is no address\n", KXNetworkUtils::ipStringToInteger("10.0.0"));
    std::printf("%s\n", KXToolUtils::calculateMD5("harbour").c_str());

    // In the Secret Service or, where none runs, in an encrypted file.
    KXKeychainUtils::save("a secret", "token");
    std::printf("token: %s\n", KXKeychainUtils::load<std::string>("token").value_or("none").c_str());
    KXKeychainUtils::deleteKeyDataFor("token");
    std::printf("token: %s\n", KXKeychainUtils::load<std::string>("token").value_or("none").c_str());

    std::shared_ptr<NSError> error;
    if (!KXDeviceUtils::hasTorch() && !KXDeviceUtils::turnOnTorch(&error))
        std::printf("no torch: %s %d\n", error->domain().c_str(), static_cast<int>(error->code()));
    std::printf("there is %s space\n", KXDeviceUtils::isSpaceFull() ? "no" : "free");
}

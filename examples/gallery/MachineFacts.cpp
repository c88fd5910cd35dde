// SPDX-License-Identifier: MIT

#include "MachineFacts.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include <sys/utsname.h>

#include <KXFoundation/Device/KXNetworkUtils.h>

namespace gallery {

using namespace kx;

namespace {

utsname names() {
    utsname found{};
    ::uname(&found);
    return found;
}

class ThisMachine final : public MachineFacts {
  public:
    std::string hostName() override { return names().nodename; }
    std::string system() override { return std::string(names().sysname) + " " + names().release; }
    std::string hardwareAddress() override {
        std::vector<std::filesystem::path> folders;
        std::error_code none;
        for (const auto& entry : std::filesystem::directory_iterator("/sys/class/net", none))
            folders.push_back(entry.path());
        std::ranges::sort(folders);
        for (const auto& folder : folders) {
            std::string address;
            std::getline(std::ifstream(folder / "address"), address);
            const std::int64_t number = KXNetworkUtils::macStringToInteger(address);
            if (number != 0) return KXNetworkUtils::formatMACInteger(number, ":");
        }
        return {};
    }
    std::vector<Capability> capabilities() override { return kx::capabilities(); }
};

}  // namespace

PortSlot<MachineFacts>& MachineFacts::slot() {
    static constinit PortSlot<MachineFacts> slot;
    return slot;
}

std::shared_ptr<MachineFacts> MachineFacts::makeDefault() {
    return std::make_shared<ThisMachine>();
}

}  // namespace gallery

// SPDX-License-Identifier: MIT

#include <cerrno>

#include <sys/utsname.h>
#include <sys/vfs.h>

#include <KXFoundation/Platform/Services/Machine.h>

namespace kx {

namespace {

class PosixMachine final : public Machine {
  public:
    std::string hardwareIdentifier() override {
        utsname name{};
        return ::uname(&name) == 0 ? name.machine : "";
    }

    Result<VolumeRoom> roomAt(const std::string& path) override {
        struct statfs room {};
        int answer = 0;
        do {
            answer = ::statfs(path.c_str(), &room);
        } while (answer != 0 && errno == EINTR);
        if (answer != 0) return Error::fromErrno(errno, path);
        const auto unitOfCounts = room.f_frsize > 0 ? room.f_frsize : room.f_bsize;  // the other is for speed
        return VolumeRoom{static_cast<std::uint32_t>(unitOfCounts), room.f_bfree};
    }
};

}  // namespace

PortSlot<Machine>& Machine::slot() {
    static constinit PortSlot<Machine> slot;
    return slot;
}

std::shared_ptr<Machine> Machine::makeDefault() {
    return std::make_shared<PosixMachine>();
}

}  // namespace kx

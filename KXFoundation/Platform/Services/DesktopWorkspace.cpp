// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/DesktopOpener.h>
#include <KXFoundation/Platform/Services/DesktopWorkspace.h>
#include <KXFoundation/Platform/Services/StartedProgram.h>

namespace kx {

namespace {

constexpr const char* kOpener = "xdg-open";
/// The bus may have to start the portal first. Nobody waits for this but the next address.
constexpr std::uint32_t kTimeoutMilliseconds = 5000;

/// Whether it has the address. A portal that is there and then says nothing may still open it: asking another
/// program too would open it twice.
bool openThroughPortal(const NSURL& address) {
    if (address.isFileURL()) return false;  // the portal takes files as descriptors only
    const auto bus = sessionBusAddress();
    if (!bus) return false;  // nobody to ask: the module need not be opened
    const DesktopModule* module = desktopModule();
    if (!module) return false;
    std::uint32_t version = 0;
    if (module->opener->portalVersion(bus->c_str(), kTimeoutMilliseconds, &version) != DesktopReply::Answered)
        return false;
    const DesktopReply reply =
        module->opener->openAddress(bus->c_str(), address.absoluteString().c_str(), kTimeoutMilliseconds);
    return reply == DesktopReply::Answered || reply == DesktopReply::TimedOut;
}

Result<void> openThroughProgram(const NSURL& address) {
    const auto program = programInPath(kOpener);
    if (!program) return Error{ErrorKind::Missing, 0, kOpener};
    return startProgram(*program, address.absoluteString());
}

void open(const NSURL& address) {
    if (openThroughPortal(address)) return;
    if (const auto opened = openThroughProgram(address); !opened) logError("open address", opened.error());
}

}  // namespace

PortSlot<Workspace>& Workspace::slot() {
    static constinit PortSlot<Workspace> slot;
    return slot;
}

std::shared_ptr<Workspace> Workspace::makeDefault() {
    return std::make_shared<DesktopWorkspace>();
}

DesktopWorkspace::DesktopWorkspace() : queue_(DispatchQueue::serial("kx.workspace")) {}

void DesktopWorkspace::openURL(const NSURL& address) {
    // A text with a scheme begins with a letter: no program takes it for an option.
    if (address.scheme().empty()) return;
    queue_->async([address] { open(address); });
}

}  // namespace kx

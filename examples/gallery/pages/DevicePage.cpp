// SPDX-License-Identifier: MIT

#include "pages/DevicePage.h"

#include <utility>
#include <vector>

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Services/NetworkInterfaces.h>

#include "Gallery.h"
#include "MachineFacts.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

std::string orNone(const std::optional<std::string>& value) {
    return value.value_or(text("general.none"));
}

std::string yesOrNo(bool answer) {
    return text(answer ? "general.yes" : "general.no");
}

/// "en0 192.168.1.57, en1 10.0.0.4".
std::string interfaces() {
    std::string line;
    const auto list = NetworkInterfaces::slot().current().addresses();
    if (!list) return text("general.none");
    for (const auto& [name, address, netmask] : *list) {
        if (!address || !name.starts_with("en")) continue;
        line += (line.empty() ? "" : ", ") + name + " " + address->text();
    }
    return line.empty() ? text("general.none") : line;
}

void addNetwork(Column& column) {
    const std::string address = MachineFacts::slot().current().hardwareAddress();
    column.pair(text("device.interfaces"), interfaces());
    column.pair(text("device.address"), orNone(KXNetworkUtils::localIP()));
    column.pair(text("device.netmask"), orNone(KXNetworkUtils::localNetmask()));
    column.pair(text("device.gateway"), orNone(KXNetworkUtils::gatewayIP()));
    column.pair(text("device.mac"), address.empty() ? text("general.none") : address);
}

}  // namespace

/// What the system may take its time to tell.
struct DevicePage::Answers {
    bool hasFaceID = false;
    std::vector<Capability> capabilities;
};

DevicePage::DevicePage() : answers_(std::make_shared<Answers>()) {}
DevicePage::~DevicePage() = default;

void DevicePage::ask(Gallery& gallery) {
    DispatchQueue::shared().async([page = std::weak_ptr(answers_), &gallery] {
        Answers found{KXDeviceUtils::isSupportFaceID(), MachineFacts::slot().current().capabilities()};
        DispatchQueue::main().async([page, &gallery, found = std::move(found)] {
            const auto answers = page.lock();
            if (!answers) return;
            *answers = found;
            gallery.rebuild();
        });
    });
}

void DevicePage::addTorch(Column& column, Gallery& gallery) {
    const bool hasTorch = KXDeviceUtils::hasTorch();
    column.pair(text("device.torch"), hasTorch ? yesOrNo(KXDeviceUtils::isTorchOn()) : text("general.none"));
    column.row({pushButton("device.switch_torch",
                           [this, &gallery] {
                               std::shared_ptr<NSError> error;
                               KXDeviceUtils::isTorchOn() ? KXDeviceUtils::turnOffTorch(&error)
                                                          : KXDeviceUtils::turnOnTorch(&error);
                               refusal_ = error ? error->description() : "";
                               gallery.rebuild();
                           }),
                label(refusal_)});
}

void DevicePage::addCapabilities(Column& column) {
    column.caption(text("device.capabilities"));
    if (answers_->capabilities.empty()) column.paragraph(text("device.asking"));
    for (const auto& [name, works, detail] : answers_->capabilities)
        column.paragraph((works ? "\u2713 " : "\u2717 ") + std::string(name) + ": " + detail);
}

void DevicePage::build(Column& column, Gallery& gallery) {
    if (answers_->capabilities.empty()) ask(gallery);
    MachineFacts& facts = MachineFacts::slot().current();
    column.title(text("device.title"));
    column.paragraph(text("device.explanation"));
    column.space(8);
    column.pair(text("device.model"), KXDeviceUtils::deviceModel());
    column.pair(text("device.name"), facts.hostName());
    column.pair(text("device.system"), facts.system());
    column.pair(text("device.free"), KXAppUtils::getSpaceStringFromByteValue(
                                         static_cast<std::int64_t>(KXDeviceUtils::freeSpace())));
    addNetwork(column);
    column.pair(text("device.biometrics"), yesOrNo(KXDeviceUtils::isSupportBiometric()));
    column.pair(text("device.face"), yesOrNo(answers_->hasFaceID));
    addTorch(column, gallery);
    addCapabilities(column);
}

}  // namespace gallery

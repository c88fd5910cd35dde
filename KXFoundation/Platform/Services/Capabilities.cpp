// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/CapabilityProbes.h>

namespace kx {

namespace {

using Probe = Capability (*)(Patience);

constexpr Probe kProbes[] = {
    probeDisplay, probeFonts,  probeBus,   probePortal, probeKeyring,    probeCurl,
    probeDates,   probePhotos, probeVideo, probeTorch,  probeBiometrics,
};

}  // namespace

std::vector<Capability> capabilities(std::chrono::milliseconds patience) {
    std::vector<Capability> answers;
    for (const Probe probe : kProbes) answers.push_back(probe(patience));
    return answers;
}

}  // namespace kx

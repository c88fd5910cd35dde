// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>

#include <KXFoundation/Platform/Services/SysfsTorch.h>
#include <KXFoundation/Platform/Services/SystemFiles.h>

namespace kx {

namespace {

constexpr const char* kBrightness = "/brightness";
constexpr const char* kMostBrightness = "/max_brightness";

/// 0 for a torch, 1 for a flash light, 2 for any other.
int rank(std::string_view light) {
    const std::string_view function = light.substr(light.rfind(':') + 1);
    if (function.starts_with("torch")) return 0;
    return function.starts_with("flash") ? 1 : 2;
}

}  // namespace

PortSlot<Torch>& Torch::slot() {
    static constinit PortSlot<Torch> slot;
    return slot;
}

std::shared_ptr<Torch> Torch::makeDefault() {
    return std::make_shared<SysfsTorch>();
}

SysfsTorch::SysfsTorch(std::string_view root)
    : files_(FileSystem::slot().shared()), directory_(std::string(root) + "/sys/class/leds/") {}

std::optional<std::string> SysfsTorch::name() {
    const auto lights = files_->list(directory_);
    if (!lights || lights->empty()) return std::nullopt;
    const auto best = std::ranges::min_element(
        *lights, {}, [](const std::string& light) { return std::pair(rank(light), light); });
    return rank(*best) == 2 ? std::nullopt : std::optional(*best);
}

Result<std::string> SysfsTorch::folder() {
    const auto light = name();
    if (!light) return Error{ErrorKind::Missing, 0, "torch"};
    return directory_ + *light;
}

Result<std::uint32_t> SysfsTorch::number(const std::string& path) {
    const auto text = readSystemFile(*files_, path);
    if (!text) return text.error();
    std::uint32_t value = 0;
    if (std::from_chars(text->data(), text->data() + text->size(), value).ec != std::errc())
        return Error{ErrorKind::Corrupt, EIO, path};
    return value;
}

Result<float> SysfsTorch::level() {
    const auto torch = folder();
    if (!torch) return torch.error();
    const auto now = number(*torch + kBrightness);
    if (!now) return now.error();
    const auto most = number(*torch + kMostBrightness);
    if (!most) return most.error();
    if (*most == 0) return 0.0F;
    return std::min(static_cast<float>(*now) / static_cast<float>(*most), 1.0F);
}

/// The kernel looks at the rights when the file is opened.
Result<void> SysfsTorch::maySet() {
    const auto torch = folder();
    if (!torch) return torch.error();
    const auto file = files_->open(*torch + kBrightness, FileSystem::Mode::ReadWrite);
    return file ? Result<void>() : file.error();
}

Result<void> SysfsTorch::setLevel(float level) {
    const auto torch = folder();
    if (!torch) return torch.error();
    const auto most = number(*torch + kMostBrightness);
    if (!most) return most.error();
    const double wanted = std::clamp(static_cast<double>(level), 0.0, 1.0) * *most;
    const double steps = wanted > 0 ? std::max(std::round(wanted), 1.0) : 0.0;
    auto file = files_->open(*torch + kBrightness, FileSystem::Mode::ReadWrite);
    if (!file) return std::move(file).error();
    const std::string text = std::to_string(static_cast<std::uint32_t>(steps)) + "\n";
    return (*file)->writeAt(0, std::as_bytes(std::span(text)));
}

}  // namespace kx

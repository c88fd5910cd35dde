// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// One media file to add to the photo library. Fill it on one thread, then share it read-only.
class KX_EXPORT KXPhotoFileInfo : public Subclass<KXPhotoFileInfo, NSObject> {
  public:
    static constexpr std::uint64_t kImage = 0;
    static constexpr std::uint64_t kVideo = 1;

    /// Where the file lies, absent until set; the record keeps a copy of its own.
    [[nodiscard]] const std::optional<NSURL>& url() const noexcept { return url_; }
    void setUrl(std::optional<NSURL> url) { url_ = std::move(url); }

    /// kImage unless set; the export skips a file of any type but these two.
    [[nodiscard]] std::uint64_t type() const noexcept { return type_; }
    void setType(std::uint64_t type) noexcept { type_ = type; }

  private:
    std::optional<NSURL> url_;
    std::uint64_t type_ = kImage;
};

}  // namespace kx

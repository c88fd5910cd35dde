// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// An album as it was when it was fetched. Immutable; any thread.
class KX_EXPORT PHAssetCollection : public Subclass<PHAssetCollection, NSObject> {
  public:
    [[nodiscard]] const std::string& localIdentifier() const noexcept { return identifier_; }
    /// What whoever made it called it, any bytes. Several albums may have one title.
    [[nodiscard]] const std::string& localizedTitle() const noexcept { return title_; }

    bool init(std::string identifier, std::string title) {
        identifier_ = std::move(identifier);
        title_ = std::move(title);
        return Super::init();
    }

  private:
    std::string identifier_;
    std::string title_;
};

/// The lists of albums. No instances.
class KX_EXPORT PHCollectionList {
  public:
    PHCollectionList() = delete;

    /// All albums of the user, of whichever application, in the order in which they were made. Empty, and one
    /// log line, where the library cannot be read. Reads a file at each call. Any thread.
    [[nodiscard]] static std::vector<std::shared_ptr<PHAssetCollection>>
    fetchTopLevelUserCollectionsWithOptions();
};

}  // namespace kx

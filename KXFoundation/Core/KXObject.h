// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// The base of every identified object: an identity that is fixed when the object is made, and a free display
/// name. Fill it on one thread, then share it read-only.
class KX_EXPORT KXObject : public Subclass<KXObject, NSObject> {
  public:
    /// A KXObject itself, whichever class it is called on; an absent id is found by no search.
    [[nodiscard]] static std::shared_ptr<KXObject> objectWithID(std::optional<std::string_view> id);

    /// The id is the name of the class that is being made, a derived class's own included. Not through a
    /// derived class's init(id): one that has its own declares an init() that calls it.
    bool init() { return init(className()); }
    bool init(std::optional<std::string_view> id);

    [[nodiscard]] const std::optional<std::string>& id() const noexcept { return id_; }

    /// Absent until set; valid until the next setName.
    [[nodiscard]] const std::optional<std::string>& name() const noexcept { return name_; }
    void setName(std::optional<std::string_view> name) { name_ = name; }

  private:
    std::optional<std::string> id_;
    std::optional<std::string> name_;
};

}  // namespace kx

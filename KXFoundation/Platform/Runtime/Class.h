// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <typeindex>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/OperationTable.h>

namespace kx {

class NSObject;

/// What the runtime knows of a class: its name, its base and its two tables of exchangeable operations.
/// Made once per class at first use, never destroyed, the same object in every library of the process.
class KX_EXPORT Class {
  public:
    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] Class* superclass() const noexcept { return superclass_; }
    [[nodiscard]] bool isSubclassOf(const Class& other) const noexcept;

    /// The registered class of that name, or nullptr. A class is registered once something asked for it.
    [[nodiscard]] static Class* named(std::string_view name);

    /// A new object of this class on which no initialiser has run yet; nullptr for an abstract class.
    [[nodiscard]] std::shared_ptr<NSObject> allocate() const;

    /// Serialises code on the class itself; recursive.
    [[nodiscard]] std::recursive_mutex& monitor() noexcept { return monitor_; }

    /// Several lines for a person: name, bases, and each operation with who implements it now.
    [[nodiscard]] std::string describe() const;

    [[nodiscard]] const OperationTable& table(OperationKind kind) const noexcept {
        return tables_[static_cast<std::size_t>(kind)];
    }

    /// What Subclass<> tells the runtime of a C++ type.
    struct Description {
        std::string_view name;
        std::type_index type;
        Class* superclass;
        std::shared_ptr<NSObject> (*allocate)(Class&);
        void (*defineOperations)(Class&);
    };
    static Class& registered(const Description& description);

  private:
    friend class ClassRegistry;
    explicit Class(const Description& description);
    OperationTable& mutableTable(OperationKind kind) noexcept {
        return tables_[static_cast<std::size_t>(kind)];
    }

    std::string name_;
    Class* superclass_;
    std::shared_ptr<NSObject> (*allocate_)(Class&);
    OperationTable tables_[2];
    std::vector<Class*> subclasses_;  // guarded by the registry's lock
    std::recursive_mutex monitor_;
};

}  // namespace kx

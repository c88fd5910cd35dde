// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class Class;

enum class OperationKind : std::uint8_t { Instance, ClassLevel };

/// An implementation with its type taken away; Operation<> puts it back.
using AnyFunction = void (*)();

/// Index 0 is no operation: every table answers nullptr for it.
inline constexpr std::uint32_t kUnregistered = 0;

/// One class's implementations, indexed densely by operation. A flat copy of the base's table, so that a
/// look-up is one bounds check and two loads whatever the depth. Readers take no lock; writers hold the
/// runtime's lock.
class OperationTable {
  public:
    OperationTable() = default;
    OperationTable(const OperationTable&) = delete;
    OperationTable& operator=(const OperationTable&) = delete;

    [[nodiscard]] AnyFunction function(std::uint32_t index) const noexcept {
        const Slots* slots = slots_.load(std::memory_order_acquire);
        return index < slots->size ? slots->functions[index].load(std::memory_order_acquire) : nullptr;
    }

    /// What stands behind an entry, for exchange and description.
    struct Origin {
        bool own = false;            ///< set on this class itself, not copied from its base
        std::string implementation;  ///< the operation name that the code was first given under
    };

    // Below: for the holder of the runtime's lock only.
    void set(std::uint32_t index, AnyFunction function, Origin origin);
    [[nodiscard]] Origin origin(std::uint32_t index) const;
    [[nodiscard]] std::uint32_t size() const noexcept;
    void copyFrom(const OperationTable& base);

  private:
    struct Slots {
        std::uint32_t size;
        std::unique_ptr<std::atomic<AnyFunction>[]> functions;
    };
    static const Slots kNone;

    void grow(std::uint32_t size);

    std::atomic<const Slots*> slots_{&kNone};
    std::vector<std::unique_ptr<const Slots>> kept_;  // outgrown arrays: a reader may still be in one
    std::vector<Origin> origins_;
};

/// The dense index of an operation name, made at first use. kUnregistered, with one log line, if the name is
/// known with another signature.
[[nodiscard]] KX_EXPORT std::uint32_t registerOperation(OperationKind kind, std::string_view name,
                                                        const std::type_info& signature);

KX_EXPORT void implementOperation(Class& cls, OperationKind kind, std::uint32_t index, AnyFunction function,
                                  std::string_view name);

KX_EXPORT void reportUnknownOperation(const Class& cls, std::string_view name);

}  // namespace kx

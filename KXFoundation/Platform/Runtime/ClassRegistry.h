// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <vector>

#include <KXFoundation/Platform/Runtime/Class.h>

namespace kx {

/// Every class and operation name of the process, and the one lock under which tables change. Private to
/// Runtime.
class ClassRegistry {
  public:
    static ClassRegistry& shared();

    Class& classFor(const Class::Description& description);
    Class* named(std::string_view name);

    std::uint32_t registerOperation(OperationKind kind, std::string_view name,
                                    const std::type_info& signature);
    void implement(Class& cls, OperationKind kind, std::uint32_t index, AnyFunction function,
                   OperationTable::Origin origin);
    void exchange(Class& cls, OperationKind kind, std::string_view target, std::string_view replacement);
    std::string describe(const Class& cls);

  private:
    struct OperationName {
        std::string name;
        std::type_index signature;
        bool refused = false;  // another signature, which was logged
    };
    struct Names {
        std::map<std::string, std::uint32_t, std::less<>> indexes;
        std::vector<OperationName> operations{{"", typeid(void)}};  // entry 0: kUnregistered
    };

    Names& names(OperationKind kind) { return names_[static_cast<std::size_t>(kind)]; }
    std::uint32_t find(OperationKind kind, const Class& cls, std::string_view name);
    static Class& ownerOf(Class& cls, OperationKind kind, std::uint32_t index);
    static void spread(Class& cls, OperationKind kind, std::uint32_t index, AnyFunction function,
                       const OperationTable::Origin& origin);
    void describeTable(const Class& cls, OperationKind kind, std::string& text);

    std::recursive_mutex mutex_;  // recursive: registering a class lets it define its operations
    std::unordered_map<std::type_index, Class*> byType_;
    std::map<std::string, Class*, std::less<>> byName_;
    Names names_[2];
};

}  // namespace kx

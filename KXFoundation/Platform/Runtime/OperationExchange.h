// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <KXFoundation/Platform/Runtime/Class.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Exchanges two instance operations of `cls`, so that calling `target` runs the implementation of
/// `replacement` and the other way round. Both are looked up through the base classes. Where `cls` only
/// inherits the target, it gets a target of its own and the base keeps its own untouched. Exchanging the same
/// pair again restores the first state. A name that the class does not know, or two signatures that differ,
/// change nothing and give one log line. Any thread; calls that run meanwhile see the tables before or after.
KX_EXPORT void InstanceMethodSwizzling(Class& cls, std::string_view target, std::string_view replacement);

/// The same on the class's table of class-level operations.
KX_EXPORT void ClassMethodSwizzling(Class& cls, std::string_view target, std::string_view replacement);

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// A module is a shared object that wraps one heavy library (windows, network, video), opened at first use,
/// so that an application which never needs it does not pay for it at its start. It lies in
/// `KXFoundation-<ABI version>/` beside our own library. A module links no code of ours: it exports one C
/// function, is handed the log, and answers a table of functions.
namespace kx {

/// What the library hands to a module.
struct ModuleHost {
    std::uint32_t version = 1;
    void (*log)(const char* line) = nullptr;  ///< one warning line, UTF-8
};

/// Every module exports this one function under the name "kxModule". It answers the module's table, whose
/// first member is its version; nullptr if the machine cannot run it (it has logged why).
using ModuleEntry = const void* (*)(const ModuleHost* host);

/// Opens the module of that name ("sdl" is the file kx-sdl.so) and answers its table, the same one on every
/// call. Unsupported, whatever the reason, if there is no such module, it is of another version or has
/// nothing to offer here: one log line in the life of the process has said why, and asking again answers the
/// same without another attempt. Opening takes milliseconds: not on a path that is hot. Any thread. A module
/// is never closed.
KX_EXPORT Result<const void*> openModule(const char* name, std::uint32_t version);

/// The same with the type of the table, which knows its version.
template <class Table>
[[nodiscard]] Result<const Table*> openModule(const char* name) {
    auto table = openModule(name, Table::kVersion);
    if (!table) return std::move(table).error();
    return static_cast<const Table*>(*table);
}

}  // namespace kx

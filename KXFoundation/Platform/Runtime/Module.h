#pragma once

#include <cstdint>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// A module is a shared object that wraps one heavy library (windows, network, video), opened at first use,
/// so that an application which never needs it does not pay for it at its start. It lies in `KXFoundation/`
/// beside our own library. A module links no code of ours: it exports one C function, is handed the log, and
/// answers a table of functions.
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
/// call. Missing if the file is not there, Failed if it cannot be loaded or its table is of another version,
/// Unsupported if it has nothing to offer here; asking again answers the same without another attempt.
/// Opening takes milliseconds: not on a path that is hot. Any thread. A module is never closed.
KX_EXPORT Result<const void*> openModule(const char* name, std::uint32_t version);

/// The same for a table type that names its version.
template <class Table>
Result<const Table*> openModule(const char* name) {
    auto opened = openModule(name, Table::kVersion);
    if (!opened) return std::move(opened).error();
    return static_cast<const Table*>(*opened);
}

}  // namespace kx

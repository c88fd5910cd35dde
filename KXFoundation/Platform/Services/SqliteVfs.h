// SPDX-License-Identifier: MIT
#pragma once

namespace kx {

struct SqliteModule;

/// The name of the SQLite "VFS" (its port to the system) that stands on our FileSystem port, registered at
/// the first call. A database keeps the port that was in place when it was opened. It locks nothing: whoever
/// opens a database holds a lock of his own around everything, from before the opening. Neither write-ahead
/// logs nor temporary files (say `PRAGMA temp_store=MEMORY`). Any thread.
[[nodiscard]] const char* sqliteVfsOverFileSystem(const SqliteModule& sqlite);

}  // namespace kx

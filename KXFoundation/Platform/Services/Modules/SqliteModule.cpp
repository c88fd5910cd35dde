// SPDX-License-Identifier: MIT

#include <sqlite3.h>

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>

namespace {

constexpr kx::SqliteModule kModule{
    .version = kx::SqliteModule::kVersion,
    .openV2 = sqlite3_open_v2,
    .close = sqlite3_close,
    .errorCode = sqlite3_errcode,
    .errorMessage = sqlite3_errmsg,
    .execute = sqlite3_exec,
    .prepareV2 = sqlite3_prepare_v2,
    .finalize = sqlite3_finalize,
    .step = sqlite3_step,
    .bindInt64 = sqlite3_bind_int64,
    .bindText64 = sqlite3_bind_text64,
    .columnCount = sqlite3_column_count,
    .columnType = sqlite3_column_type,
    .columnInt64 = sqlite3_column_int64,
    .columnBlob = sqlite3_column_blob,
    .columnBytes = sqlite3_column_bytes,
    .findVfs = sqlite3_vfs_find,
    .registerVfs = sqlite3_vfs_register,
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost*) {
    return &kModule;
}

// SPDX-License-Identifier: MIT

#include <cerrno>
#include <map>
#include <mutex>
#include <string>

#include <dlfcn.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

namespace {

constexpr ModuleHost kHost{.log = [](const char* line) { log(LogLevel::Warning, line); }};

/// Modules are looked for beside our own library only: no variable and no working folder decides what code
/// runs.
std::string modulePath(const char* name) {
    Dl_info self;
    if (!::dladdr(reinterpret_cast<const void*>(&modulePath), &self) || !self.dli_fname) return {};
    const std::string below = std::string("/" KX_MODULE_FOLDER "/kx-") + name + ".so";
    // A program found through PATH knows only its name: then nothing beside it is looked at.
    if (self.dli_fname[0] != '/') return KX_INSTALLED_LIBRARIES + below;
    std::string beside = directoryOf(self.dli_fname) + below;
    // A static library has no place of its own: then the installed modules serve.
    if (::access(beside.c_str(), F_OK) != 0) return KX_INSTALLED_LIBRARIES + below;
    return beside;
}

/// Not logError: of several modules that are lacking each has its line.
Error lacking(std::string why) {
    log(LogLevel::Warning, "module " + why);
    return {ErrorKind::Unsupported, 0, std::move(why)};
}

Result<const void*> load(const char* name, std::uint32_t version) {
    const std::string path = modulePath(name);
    if (::access(path.c_str(), R_OK) != 0) return lacking(Error::fromErrno(errno, path).message());
    void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* why = ::dlerror();  // NOLINT(concurrency-mt-unsafe): the thread's own in every libc
        return lacking(why ? why : path);
    }
    const auto entry = reinterpret_cast<ModuleEntry>(::dlsym(library, "kxModule"));
    if (!entry) return lacking(path + ": not one of this library");
    const void* table = entry(&kHost);
    if (!table) return Error{ErrorKind::Unsupported, 0, path};  // the module itself has logged why
    if (*static_cast<const std::uint32_t*>(table) != version) return lacking(path + ": of another version");
    return table;
}

}  // namespace

Result<const void*> openModule(const char* name, std::uint32_t version) {
    static auto& mutex = *new std::mutex;
    static auto& opened = *new std::map<std::string, Result<const void*>, std::less<>>;
    const std::lock_guard lock(mutex);
    if (const auto found = opened.find(name); found != opened.end()) return found->second;
    return opened.emplace(name, load(name, version)).first->second;
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <unordered_set>

#include <KXFoundation/Platform/Foundation/NSSecureCoding.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

namespace {

struct Registered {
    Mutex mutex;
    std::unordered_set<const Class*> classes KX_GUARDED_BY(mutex);
};

Registered& registered() {
    static Registered& all = *new Registered;
    return all;
}

}  // namespace

NSSecureCoding::~NSSecureCoding() = default;

void registerSecureCodingClass(const Class& cls) {
    Registered& all = registered();
    const MutexLock lock(all.mutex);
    all.classes.insert(&cls);
}

bool isSecureCodingClass(const Class& cls) {
    Registered& all = registered();
    const MutexLock lock(all.mutex);
    return all.classes.contains(&cls);
}

}  // namespace kx

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/FileKeychain.h>

#include "PersistedThing.h"

namespace kx::testing {

namespace {

class Defaults final : public PersistedThing {
  public:
    bool save(const std::string& name, const std::string& text) override {
        defaults_->setObject(name, text);
        return defaults_->synchronize();
    }
    std::optional<std::string> load(const std::string& name) override {
        return defaults_->stringForKey(name);
    }

  private:
    std::shared_ptr<NSUserDefaults> defaults_ = make<NSUserDefaults>("org.example.app");
};

class Keychain final : public PersistedThing {
  public:
    bool save(const std::string& name, const std::string& text) override {
        static_cast<void>(keychain_.remove({name, name}));
        return keychain_.add({name, name}, text).ok();
    }
    std::optional<std::string> load(const std::string& name) override {
        auto found = keychain_.copy({name, name});
        return found ? std::optional(std::move(*found)) : std::nullopt;
    }

  private:
    FileKeychain keychain_{*baseDirectory(BaseDirectory::Data) + "/app",
                           *openModule<SodiumModule>("sodium").value()};
};

class DiskCache final : public PersistedThing {
  public:
    bool save(const std::string& name, const std::string& text) override {
        cache_->setObject(text, name);
        return load(name) == text && cache_->synchronize();
    }
    std::optional<std::string> load(const std::string& name) override {
        const Value found = cache_->objectForKey(name);
        const auto text = found.asString();
        return text ? std::optional(std::string(*text)) : std::nullopt;
    }

  private:
    std::shared_ptr<KXDiskCache> cache_ =
        KXDiskCache::initWithPath(*baseDirectory(BaseDirectory::Cache) + "/app");
};

template <class Thing>
std::unique_ptr<PersistedThing> opened() {
    return std::make_unique<Thing>();
}

}  // namespace

const std::vector<PersistedKind>& persistedKinds() {
    static const std::vector<PersistedKind> kinds{{"defaults", opened<Defaults>, false},
                                                  {"keychain", opened<Keychain>, true},
                                                  {"diskCache", opened<DiskCache>, false}};
    return kinds;
}

}  // namespace kx::testing

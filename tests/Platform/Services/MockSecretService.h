// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// GIO's; the test program itself need not know it.
using GDBusConnection = struct _GDBusConnection;
using GDBusMessage = struct _GDBusMessage;
using GVariant = struct _GVariant;

namespace kx::testing {

/// org.freedesktop.secrets on a private bus, with one collection, as far as a client needs it. Answers on
/// GIO's thread. Sessions belong to the connection that opened them, as in the real ones.
class MockSecretService {
  public:
    explicit MockSecretService(const std::string& busAddress);
    ~MockSecretService();
    MockSecretService(const MockSecretService&) = delete;

    enum class Person : std::uint8_t { Accepts, Dismisses, IsAway };
    /// Locks the collection; what the person does in the dialogue that asks to unlock it.
    void lock(Person person) {
        const std::lock_guard guard(mutex_);
        isLocked_ = true;
        person_ = person;
    }
    /// The person who was away comes back to the dialogue and accepts.
    void comeBack() {
        const std::lock_guard guard(mutex_);
        endDialogue(false);
    }
    void takeCollectionAway() { hasCollection_ = false; }
    /// From now on no call is answered.
    void fallSilent() { isSilent_ = true; }

    [[nodiscard]] std::size_t items() const {
        const std::lock_guard guard(mutex_);
        return found_.size();
    }
    [[nodiscard]] std::size_t dialogues() const { return dialogues_; }

  private:
    using Attributes = std::map<std::string, std::string>;
    struct Item {
        Attributes attributes;
        std::vector<std::uint8_t> data;
    };

    static GDBusMessage* received(GDBusConnection* bus, GDBusMessage* message, int incoming, void* self);
    [[nodiscard]] GVariant* answer(GDBusMessage* message);
    GVariant* openSession(const std::string& sender);
    GVariant* search(GVariant* arguments) const;
    GVariant* unlock(GVariant* objects) const;
    GVariant* create(GVariant* arguments, const std::string& sender);
    GVariant* secret(const std::string& item, GVariant* arguments, const std::string& sender) const;
    void showDialogue();
    void endDialogue(bool dismissed);

    GDBusConnection* bus_;
    unsigned filter_;
    std::atomic<bool> hasCollection_ = true, isSilent_ = false;
    std::atomic<std::size_t> dialogues_ = 0;
    mutable std::mutex mutex_;  // guards the rest
    std::map<std::string, Item> found_;
    std::map<std::string, std::string> sessions_;  // path, connection
    bool isLocked_ = false;
    Person person_ = Person::Accepts;
    std::size_t numbers_ = 0;
};

}  // namespace kx::testing

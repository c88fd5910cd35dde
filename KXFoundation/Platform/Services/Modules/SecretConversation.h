#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <gio/gio.h>

#include <KXFoundation/Platform/Services/DesktopReply.h>

namespace kx {

template <auto Release>
struct Releases {
    void operator()(auto* object) const { Release(object); }
};
using BusValues = std::unique_ptr<GVariant, Releases<g_variant_unref>>;

/// Several calls to the Secret Service over one connection: sessions and dialogues belong to it. Lives on a
/// thread of its own, which gives up soon after its caller has. The first failed step decides the reply.
class SecretConversation {
  public:
    struct Call {
        std::string path;
        const char* interface;
        const char* method;
        GVariant* arguments;  ///< floating; nullptr for none
        const char* answerType;
    };
    /// The answer's values, of that type; nullptr after a failure.
    BusValues call(const Call& call);
    /// Shows the dialogue and waits until the person has ended it; false if they dismissed it, or if the
    /// caller was gone when they had not.
    bool waitForDialogue(const std::string& path);
    void fail(DesktopReply reply);

    SecretConversation(GDBusConnection& bus, GCancellable& cancellable)
        : bus_(bus), cancellable_(cancellable) {}
    [[nodiscard]] DesktopReply reply() const noexcept { return reply_; }

  private:
    GDBusConnection& bus_;
    GCancellable& cancellable_;
    DesktopReply reply_ = DesktopReply::Answered;
};

/// Connects, runs the steps and answers how they went, within the time given: then TimedOut, and what the
/// steps still do is of no consequence. They run on another thread, and must own what they use.
DesktopReply converse(std::string busAddress, std::uint32_t timeoutMilliseconds,
                      std::function<void(SecretConversation&)> steps);

}  // namespace kx

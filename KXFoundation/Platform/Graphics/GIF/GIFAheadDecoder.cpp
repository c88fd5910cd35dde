// SPDX-License-Identifier: MIT

#include <algorithm>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFIndexPlane.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

/// Frames from the caller's position on, as many as there are planes, may be unpacked. Whoever is free claims
/// the first of them that nobody has: the caller instead of waiting, the block on the queue until all are
/// taken. So neither waits for the other while there is work, and the caller, which alone paints, gets less
/// to unpack.
namespace kx {

struct GIFAheadDecoder::Slot {
    enum class State : std::uint8_t { Free, Working, Done } state = State::Free;
    std::size_t frame = 0;
    GIFIndexPlane plane;
    std::optional<Error> damage;

    explicit Slot(GIFLimits limits) : plane(limits) {}
    void unpack(const GIFFrame& description) {
        damage.reset();
        if (Result<void> done = plane.unpack(description); !done) damage = std::move(done).error();
    }
};

struct GIFAheadDecoder::Shared {
    Shared(std::shared_ptr<const GIFContents> given, GIFLimits limits) : contents(std::move(given)) {
        const std::size_t planes = planesFor(contents->largestFrame(limits.pixels));
        slots.reserve(planes);
        for (std::size_t i = 0; i < planes; ++i) slots.emplace_back(limits);
    }

    [[nodiscard]] Slot* slotOf(std::size_t frame) KX_REQUIRES(mutex);
    [[nodiscard]] Slot* claim() KX_REQUIRES(mutex);
    void unpackClaimed(Slot& slot) KX_REQUIRES(mutex);
    [[nodiscard]] bool wantsHelp() KX_REQUIRES(mutex);
    void help();

    const std::shared_ptr<const GIFContents> contents;
    Mutex mutex;
    WaitPoint changed;
    std::size_t position KX_GUARDED_BY(mutex) = 0;
    std::vector<Slot> slots KX_GUARDED_BY(mutex);  // a working one belongs to whoever claimed it
    bool helping KX_GUARDED_BY(mutex) = false;
    bool ending KX_GUARDED_BY(mutex) = false;
};

GIFAheadDecoder::Slot* GIFAheadDecoder::Shared::slotOf(std::size_t frame) {
    const auto found = std::ranges::find_if(
        slots, [&](const Slot& slot) { return slot.state != Slot::State::Free && slot.frame == frame; });
    return found == slots.end() ? nullptr : &*found;
}

/// A plane marked for the first frame of the window that nobody has taken; none where all are or no plane is
/// free.
GIFAheadDecoder::Slot* GIFAheadDecoder::Shared::claim() {
    const std::size_t end = std::min(position + slots.size(), contents->frames.size());
    const auto free = std::ranges::find(slots, Slot::State::Free, &Slot::state);
    if (ending || free == slots.end()) return nullptr;
    for (std::size_t frame = position; frame < end; ++frame) {
        if (slotOf(frame)) continue;
        free->state = Slot::State::Working;
        free->frame = frame;
        return &*free;
    }
    return nullptr;
}

void GIFAheadDecoder::Shared::unpackClaimed(Slot& slot) {
    mutex.unlock();
    slot.unpack(contents->frames[slot.frame]);
    mutex.lock();
    const bool wanted = slot.frame >= position && slot.frame - position < slots.size();
    slot.state = wanted ? Slot::State::Done : Slot::State::Free;
    Executor::slot().current().wake(changed);
}

bool GIFAheadDecoder::Shared::wantsHelp() {
    if (helping || slots.size() == 1 || position >= contents->frames.size()) return false;
    const auto isFree = [](const Slot& slot) { return slot.state == Slot::State::Free; };
    return std::ranges::count_if(slots, isFree) > 1 || slotOf(position) != nullptr;
}

void GIFAheadDecoder::Shared::help() {
    const MutexLock lock(mutex);
    while (Slot* slot = claim()) unpackClaimed(*slot);
    helping = false;
    Executor::slot().current().wake(changed);
}

GIFAheadDecoder::GIFAheadDecoder(std::shared_ptr<const GIFContents> contents, std::uint32_t width,
                                 std::uint32_t height, GIFLimits limits)
    : shared_(std::make_shared<Shared>(std::move(contents), limits)),
      width_(width),
      height_(height),
      limits_(limits),
      canvas_(width, height) {}

GIFAheadDecoder::~GIFAheadDecoder() {
    const MutexLock lock(shared_->mutex);
    shared_->ending = true;
    const auto isWorking = [](const Slot& slot) { return slot.state == Slot::State::Working; };
    while (std::ranges::any_of(shared_->slots, isWorking))
        Executor::slot().current().wait(shared_->mutex, shared_->changed);
}

/// The plane of the frame at the position, when it is unpacked.
GIFAheadDecoder::Slot& GIFAheadDecoder::unpacked() {
    Shared& shared = *shared_;
    const MutexLock lock(shared.mutex);
    if (shared.wantsHelp()) {
        shared.helping = true;
        DispatchQueue::shared().async([state = shared_] { state->help(); });
    }
    for (;;) {
        Slot* const slot = shared.slotOf(position_);
        if (slot && slot->state == Slot::State::Done) return *slot;
        if (Slot* const claimed = shared.claim()) {
            shared.unpackClaimed(*claimed);
        } else {
            Executor::slot().current().wait(shared.mutex, shared.changed);
        }
    }
}

void GIFAheadDecoder::finish(Slot& slot) {
    const MutexLock lock(shared_->mutex);
    slot.state = Slot::State::Free;
    shared_->position = ++position_;
}

template <class Paint>
bool GIFAheadDecoder::paintNext(Paint paint) {
    if (position_ >= shared_->contents->frames.size()) return false;
    Slot& slot = unpacked();
    damage_ = slot.damage;
    paint(shared_->contents->frames[position_], slot.plane.indices());
    finish(slot);
    return true;
}

bool GIFAheadDecoder::next(GIFPixels pixels) {
    return paintNext([&](const GIFFrame& frame, std::span<const std::uint8_t> indices) {
        canvas_.paint(frame, indices, pixels);
    });
}

bool GIFAheadDecoder::next(GIFPixels pixels, GIFPixels previous) {
    return paintNext([&](const GIFFrame& frame, std::span<const std::uint8_t> indices) {
        canvas_.paint(frame, indices, pixels, previous);
    });
}

void GIFAheadDecoder::startAt(std::size_t index) {
    canvas_.restart();
    damage_.reset();
    position_ = std::min(index, shared_->contents->frames.size());
    const MutexLock lock(shared_->mutex);
    shared_->position = position_;
    for (Slot& slot : shared_->slots) {
        const bool wanted = slot.frame >= position_ && slot.frame - position_ < shared_->slots.size();
        if (slot.state == Slot::State::Done && !wanted) slot.state = Slot::State::Free;
    }
}

std::size_t GIFAheadDecoder::startFor(std::size_t index) {
    GIFIndexPlane plane(limits_);
    return shared_->contents->keyFrame(index, width_, height_,
                                       [&](const GIFFrame& frame) { return plane.unpack(frame).ok(); });
}

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <deque>
#include <map>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Testing/SimulatedWorld.h>

namespace kx::testing {

using std::chrono::nanoseconds;
using Role = ScopedThreadRole::Role;

/// Executor and clock in one, since the next step may be either's.
class SimulatedWorld::Scheduler final : public Executor, public Clock {
  public:
    Scheduler(std::uint64_t seed, FileWork fileWork)
        : seed_(seed), interleavesFiles_(fileWork == FileWork::Interleaved), random_(seed) {}

    void runOnMain(Job job) override { main_.push_back(std::move(job)); }
    void runInBackground(Job job) override { background_.push_back(std::move(job)); }
    std::size_t choose(std::size_t count) override { return random_() % count; }
    void wait(Mutex& mutex, WaitPoint&) KX_REQUIRES(mutex) override {
        mutex.unlock();
        const bool ran = step(kForEver);
        mutex.lock();
        if (!ran) throw std::runtime_error("everything waits, under seed " + std::to_string(seed_));
    }
    void wake(WaitPoint&) override {}  // who waits looks again after every step
    void drain() override {
        while (runBlock()) {
        }
    }

    [[nodiscard]] nanoseconds now() const noexcept override { return now_; }
    [[nodiscard]] WallTime wallTime() const noexcept override {
        return WallTime(
            std::chrono::duration_cast<WallTime::duration>(now_ + std::chrono::hours(24 * 365 * 40)));
    }
    void runAt(nanoseconds deadline, TimerThread thread, std::function<void()> action) override {
        timers_.emplace(deadline, std::pair(thread, std::move(action)));
    }

    static constexpr nanoseconds kForEver = nanoseconds::max();

    /// Runs one block or timer up to the given time; false if there is none.
    bool step(nanoseconds until) {
        const bool canWait = !timers_.empty() && timers_.begin()->first <= until;
        if (canWait && (isOneIn(4) || (main_.empty() && background_.empty()))) return runTimer();
        return runBlock();
    }

    /// A point where other work may come between.
    void yield() {
        if (interleavesFiles_ && lockedFiles_ == 0 && depth_ < kDeepest && isOneIn(2)) step(now_);
    }
    void fileLocked() noexcept { ++lockedFiles_; }
    void fileUnlocked() noexcept { --lockedFiles_; }

  private:
    static constexpr int kDeepest = 16;

    bool isOneIn(std::size_t count) { return random_() % count == 0; }

    bool runBlock() {
        const std::size_t choices = background_.size() + (main_.empty() ? 0 : 1);
        if (choices == 0) return false;
        const std::size_t choice = random_() % choices;
        const bool isMain = choice == background_.size();
        auto& jobs = isMain ? main_ : background_;
        const auto chosen = jobs.begin() + static_cast<std::ptrdiff_t>(isMain ? 0 : choice);
        const Job job = std::move(*chosen);
        jobs.erase(chosen);
        perform(job, isMain ? Role::Main : Role::Background);
        return true;
    }

    bool runTimer() {
        const auto timer = timers_.extract(timers_.begin());
        now_ = std::max(now_, timer.key());
        const auto& [thread, action] = timer.mapped();
        perform(action, thread == TimerThread::Main ? Role::Main : Role::Background);
        return true;
    }

    void perform(const Job& job, Role role) {
        const ScopedThreadRole scope(role);
        ++depth_;
        job();
        --depth_;
    }

    const std::uint64_t seed_;
    const bool interleavesFiles_;
    std::mt19937_64 random_;
    std::deque<Job> main_;
    std::deque<Job> background_;
    std::multimap<nanoseconds, std::pair<TimerThread, std::function<void()>>> timers_;
    nanoseconds now_ = std::chrono::hours(1);
    int depth_ = 0;
    int lockedFiles_ = 0;
};

/// The files of the world outside, with a point to come between before each operation.
class SimulatedWorld::ScheduledFiles final : public FileSystem {
  public:
    ScheduledFiles(std::shared_ptr<Scheduler> scheduler, std::shared_ptr<FileSystem> files)
        : scheduler_(std::move(scheduler)), files_(std::move(files)) {}

    Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) override {
        auto opened = then().open(path, mode);
        if (!opened) return opened;
        return std::unique_ptr<File>(std::make_unique<ScheduledFile>(scheduler_, std::move(*opened)));
    }
    Result<Info> info(const std::string& path) override { return then().info(path); }
    Result<std::vector<std::string>> list(const std::string& directory) override {
        return then().list(directory);
    }
    Result<void> rename(const std::string& from, const std::string& to) override {
        return then().rename(from, to);
    }
    Result<void> remove(const std::string& path) override { return then().remove(path); }
    Result<void> makeDirectory(const std::string& path) override { return then().makeDirectory(path); }
    Result<void> syncDirectory(const std::string& path) override { return then().syncDirectory(path); }

  private:
    class ScheduledFile final : public File {
      public:
        ScheduledFile(std::shared_ptr<Scheduler> scheduler, std::unique_ptr<File> file)
            : scheduler_(std::move(scheduler)), file_(std::move(file)) {}

        Result<std::size_t> readAt(std::uint64_t offset, std::span<std::byte> into) override {
            return then().readAt(offset, into);
        }
        Result<void> writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            return then().writeAt(offset, bytes);
        }
        Result<std::uint64_t> size() override { return then().size(); }
        Result<std::uint64_t> identity() override { return then().identity(); }
        Result<void> setPermissions(std::uint32_t permissions) override {
            return then().setPermissions(permissions);
        }
        Result<void> truncate(std::uint64_t size) override { return then().truncate(size); }
        Result<void> sync() override { return then().sync(); }
        Result<void> lock(Lock kind) override {
            auto locked = then().lock(kind);
            if (locked && !std::exchange(isLocked_, true)) scheduler_->fileLocked();
            return locked;
        }
        void unlock() override {
            file_->unlock();
            if (std::exchange(isLocked_, false)) scheduler_->fileUnlocked();
        }
        Result<std::unique_ptr<FileMapping>> map(std::uint64_t size, Access access) override {
            return then().map(size, access);
        }
        ~ScheduledFile() override {
            if (isLocked_) scheduler_->fileUnlocked();
        }

      private:
        File& then() {
            scheduler_->yield();
            return *file_;
        }
        std::shared_ptr<Scheduler> scheduler_;
        std::unique_ptr<File> file_;
        bool isLocked_ = false;
    };

    FileSystem& then() {
        scheduler_->yield();
        return *files_;
    }
    std::shared_ptr<Scheduler> scheduler_;
    std::shared_ptr<FileSystem> files_;
};

SimulatedWorld::SimulatedWorld(std::uint64_t seed, FileWork fileWork)
    : scheduler_((drainQueues(), std::make_shared<Scheduler>(seed, fileWork))),
      executor_(scheduler_),
      clock_(scheduler_),
      files_(std::make_shared<ScheduledFiles>(scheduler_, FileSystem::slot().shared())) {}

SimulatedWorld::~SimulatedWorld() {
    scheduler_->drain();
}

void SimulatedWorld::run() {
    while (scheduler_->step(Scheduler::kForEver)) {
    }
}

}  // namespace kx::testing

// SPDX-License-Identifier: MIT

#include <array>
#include <new>
#include <utility>

#include <KXFoundation/Platform/Foundation/CacheMemory.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/Prefetch.h>
#include <KXFoundation/Platform/Runtime/Sanitizers.h>

namespace kx::cacheMemory {

namespace {

struct Block {
    Block* next;
};

void freeAll(Block* chain) noexcept {
    while (chain) ::operator delete(std::exchange(chain, chain->next));
}

/// Full chains, for any thread.
class SharedChains {
  public:
    static SharedChains& shared() {
        static auto& chains = *new SharedChains;
        return chains;
    }
    void give(Block* chain) noexcept {
        {
            const MutexLock lock(mutex_);
            if (count_ < chains_.size()) {
                chains_[count_++] = chain;
                return;
            }
        }
        freeAll(chain);
    }
    Block* take() noexcept {
        const MutexLock lock(mutex_);
        return count_ == 0 ? nullptr : chains_[--count_];
    }

  private:
    Mutex mutex_;
    std::array<Block*, kChainsShared> chains_ KX_GUARDED_BY(mutex_){};
    std::size_t count_ KX_GUARDED_BY(mutex_) = 0;
};

/// One thread's blocks: a chain that grows and shrinks, and a full one or none.
struct ThreadBlocks {
    Block* first;
    std::size_t count;  // in the chain of `first`
    Block* full;
    bool areOver;  // the thread ends

    Block* pop() {
        if (!first) {
            first = full ? std::exchange(full, nullptr) : taken();
            if (!first) return nullptr;
            count = kChainLength;
        }
        --count;
        Block* const block = std::exchange(first, first->next);
        if (first) {  // for the next entry
            prefetchToChange(first);
            prefetchToChange(reinterpret_cast<const char*>(first) + 64);
        }
        return block;
    }
    void push(void* memory) {
        if (count == kChainLength) {
            if (full) SharedChains::shared().give(full);
            full = std::exchange(first, nullptr);
            count = 0;
        }
        first = new (memory) Block{first};
        ++count;
    }
    static Block* taken();
    static void endWithThread();
    void end() noexcept {
        areOver = true;
        freeAll(std::exchange(first, nullptr));
        if (full) SharedChains::shared().give(std::exchange(full, nullptr));
    }
};

// The initial-exec model spares a call per access inside a shared library.
constinit thread_local ThreadBlocks blocks __attribute__((tls_model("initial-exec"))){};

struct ThreadEnd {
    ThreadEnd() = default;
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;
    ~ThreadEnd() { blocks.end(); }
};

/// Before a thread holds its first block, whether that is one it was given or one that it gives back.
void ThreadBlocks::endWithThread() {
    static thread_local const ThreadEnd atEnd;
    static_cast<void>(atEnd);
}

Block* ThreadBlocks::taken() {
    Block* const chain = SharedChains::shared().take();
    if (chain) endWithThread();
    return chain;
}

}  // namespace

void* allocate(std::size_t size) {
    if (size > kBlockSize) return ::operator new(size);
    Block* const block = blocks.areOver ? nullptr : blocks.pop();
    return block ? block : ::operator new(kBlockSize);
}

/// AddressSanitizer sees every block go, to tell of those that are touched too late.
void release(void* memory, std::size_t size) noexcept {
    if (size > kBlockSize || blocks.areOver || kAddressSanitizer) return ::operator delete(memory);
    ThreadBlocks::endWithThread();
    blocks.push(memory);
}

}  // namespace kx::cacheMemory

// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Foundation/NSCache.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/OperationQueue.h>

/// Private to Media.
namespace kx {

class NSImage;

/// The GIF files of the process: those decoded last, and the queue that they are decoded on. Any thread.
class GIFFiles {
  public:
    [[nodiscard]] static GIFFiles& shared();
    GIFFiles();

    struct Outcome {
        bool isReadable = false;
        std::shared_ptr<NSImage> image;  // none: no picture
    };

    [[nodiscard]] OperationQueue& parseQueue() noexcept { return parseQueue_; }

    [[nodiscard]] std::shared_ptr<NSImage> kept(const std::string& path) const;
    void keep(const std::string& path, const std::shared_ptr<NSImage>& image);

    /// Reads and decodes the file; whoever asks while somebody is at it, and the file is the same still,
    /// waits for the same outcome.
    [[nodiscard]] Outcome decode(const std::string& path);

  private:
    struct Decoding {
        std::optional<FileSystem::Info> file;  // as it was before it was read
        bool isDone = false;
        Outcome outcome;
    };

    const std::shared_ptr<NSCache> cache_;
    OperationQueue parseQueue_;
    Mutex mutex_;
    WaitPoint done_;
    std::map<std::string, std::shared_ptr<Decoding>> decodings_ KX_GUARDED_BY(mutex_);  // under way, by path
};

}  // namespace kx

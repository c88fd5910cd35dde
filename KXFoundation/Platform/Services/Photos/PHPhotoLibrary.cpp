// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Foundation/UserDirectories.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Services/Photos/PHPhotoLibrary.h>
#include <KXFoundation/Platform/Services/Photos/PhotoChangeBlock.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>

namespace kx {

namespace {

struct Shared {
    std::shared_ptr<PHPhotoLibrary> library = make<PHPhotoLibrary>();
};

std::optional<std::string> indexFolder() {
    const auto data = baseDirectory(BaseDirectory::Data);
    if (!data) return std::nullopt;
    return *data + "/kxfoundation/photos";
}

PhotoChanges changesAskedBy(const std::function<void()>& block) {
    PhotoChangeBlock collected;
    if (block) block();
    return std::move(collected.changes);
}

}  // namespace

std::shared_ptr<PHPhotoLibrary> PHPhotoLibrary::sharedPhotoLibrary() {
    static constinit ProcessState<Shared> state;
    return state.get().library;
}

bool PHPhotoLibrary::init() {
    store_ = std::make_shared<PhotoStore>(indexFolder(), userDirectory(UserDirectory::Pictures));
    queue_ = DispatchQueue::serial("photo library");
    queue_->async([store = store_] {
        if (const auto recovered = store->recover(); !recovered) logError("photo library", recovered.error());
    });
    return Super::init();
}

void PHPhotoLibrary::performChanges(std::function<void()> changes, CompletionHandler completionHandler) {
    if (Executor::slot().current().hasEnded()) {
        const Error ending{ErrorKind::Failed, 0, "photo library: the process ends"};
        if (completionHandler) completionHandler(false, NSError::errorWithError(ending));
        return;
    }
    queue_->async([store = store_, changes = std::move(changes), completed = std::move(completionHandler)] {
        const auto done = store->perform(changesAskedBy(changes));
        if (completed) completed(done.ok(), done ? nullptr : NSError::errorWithError(done.error()));
    });
}

}  // namespace kx

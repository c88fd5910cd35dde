// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSViewController.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {

namespace {

std::shared_ptr<NSWindow> foremostNormalWindow() {
    const auto application = NSApplication::sharedApplication();
    const auto& windows = application->windows();
    const auto found = std::find_if(windows.rbegin(), windows.rend(), [](const auto& window) {
        return window->level() == NSNormalWindowLevel;
    });
    return found == windows.rend() ? application->keyWindow() : *found;
}

}  // namespace

std::shared_ptr<NSViewController> KXUIUtils::currentViewController() {
    DispatchQueue& main = DispatchQueue::main();
    // A block of another queue that the main one waits for is on the main thread too.
    if (DispatchQueue::currentQueueLabel() == main.label() || main.isCurrent())
        return _currentViewController();
    return main.sync([] { return _currentViewController(); });
}

std::shared_ptr<NSViewController> KXUIUtils::_currentViewController() {
    const auto window = foremostNormalWindow();
    return getTopViewControllerFrom(window ? window->contentViewController() : nullptr);
}

std::shared_ptr<NSViewController> KXUIUtils::getTopViewControllerFrom(
    const std::shared_ptr<NSViewController>&) {
    return nullptr;
}

}  // namespace kx

// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSTextAlignment.h>
#include <KXFoundation/Platform/Runtime/Operation.h>

/// The operations of views that can be exchanged at run time, and the classes that implement them:
///
///     setAlignment:                                NSTextField, NSTextView
///     initWithFrame:, initWithCoder:               NSTextField, NSTextView, NSButton
///     hitTest:                                     NSButton
///     flipsHorizontallyInOppositeLayoutDirection   NSCollectionViewFlowLayout
///
/// The public members (setAlignment(), init(), hitTest()) make one call through the table of the receiver's
/// class, so an exchanged implementation is passed exactly once, on an application's subclass too. They can
/// be exchanged at any time, before main and before any static constructor included.
namespace kx {

class NSCoder;
class NSView;

inline constinit Operation<void(NSTextAlignment)> setAlignmentOperation{"setAlignment:"};

/// False stands for an initialiser that answers none.
inline constinit Operation<bool(NSRect)> initWithFrameOperation{"initWithFrame:"};
inline constinit Operation<bool(NSCoder&)> initWithCoderOperation{"initWithCoder:"};

/// The point is in the coordinates of the receiver's superview.
inline constinit Operation<std::shared_ptr<NSView>(NSPoint)> hitTestOperation{"hitTest:"};

inline constinit Operation<bool()> flipsHorizontallyInOppositeLayoutDirectionOperation{
    "flipsHorizontallyInOppositeLayoutDirection"};

}  // namespace kx

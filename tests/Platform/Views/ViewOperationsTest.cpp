// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/ViewOperations.h>

namespace kx {
namespace {

int passes = 0;

template <class Signature>
struct Counting;

/// A replacement that counts, then reaches the former implementation through its own name.
template <class R, class... A>
struct Counting<R(A...)> {
    static inline const Operation<R(A...)>* operation;
    static R run(NSObject& receiver, A... arguments) {
        ++passes;
        return (*operation)(receiver, std::forward<A>(arguments)...);
    }
};

/// Exchanged for one scope.
template <class Signature>
struct ExchangedByCounting {
    ExchangedByCounting(Class& cls, const Operation<Signature>& target,
                        const Operation<Signature>& replacement)
        : exchange([&cls, from = target.name(), to = replacement.name()] {
              InstanceMethodSwizzling(cls, from, to);
          }) {
        Counting<Signature>::operation = &replacement;
        replacement.implement(cls, &Counting<Signature>::run);
        exchange();
        passes = 0;
    }
    ~ExchangedByCounting() { exchange(); }
    ExchangedByCounting(const ExchangedByCounting&) = delete;
    const std::function<void()> exchange;
};

constinit Operation<void(NSTextAlignment)> countAlignment{"test_setAlignment:"};
constinit Operation<bool(NSRect)> countFrame{"test_initWithFrame:"};
constinit Operation<bool(NSCoder&)> countCoder{"test_initWithCoder:"};
constinit Operation<std::shared_ptr<NSView>(NSPoint)> countHit{"test_hitTest:"};
constinit Operation<bool()> countFlips{"test_flips"};

/// What an application may derive: it overrides what it can and calls its base.
template <class Base>
class Own : public Subclass<Own<Base>, Base> {
    using Above = Subclass<Own<Base>, Base>;

  public:
    bool init(NSRect frame = {}) { return Above::init(frame); }
    bool init(NSCoder& coder) { return Above::init(coder); }
};

template <class Base>
struct OwnAligned : Subclass<OwnAligned<Base>, Own<Base>> {
    void setAlignment(NSTextAlignment alignment) override { Own<Base>::setAlignment(alignment); }
};

template <class View>
void expectOnePassThroughSetAlignment(Class& cls) {
    const ExchangedByCounting exchanged(cls, setAlignmentOperation, countAlignment);
    const auto view = make<View>();
    passes = 0;  // the library's own interceptions set an alignment while a control is made
    view->setAlignment(NSTextAlignment::Right);
    EXPECT_EQ(passes, 1) << View::classObject().name();
    EXPECT_EQ(view->alignment(), NSTextAlignment::Right) << View::classObject().name();
}

template <class View>
void expectOnePassThroughInitialisers(Class& cls) {
    const ExchangedByCounting byFrame(cls, initWithFrameOperation, countFrame);
    EXPECT_EQ(make<View>(NSRect(1, 2, 3, 4))->frame(), NSRect(1, 2, 3, 4));
    EXPECT_EQ(passes, 1) << View::classObject().name() << " with a frame";
    EXPECT_TRUE(make<View>());
    EXPECT_EQ(passes, 2) << View::classObject().name() << " without anything";

    const ExchangedByCounting byCoder(cls, initWithCoderOperation, countCoder);
    NSCoder coder;
    coder.encode("frame", NSRect(5, 6, 7, 8));
    EXPECT_EQ(make<View>(coder)->frame(), NSRect(5, 6, 7, 8));
    EXPECT_EQ(passes, 1) << View::classObject().name() << " from a coder";
}

TEST(ViewOperations, SetAlignmentPassesOnce) {
    Class& field = NSTextField::classObject();
    expectOnePassThroughSetAlignment<NSTextField>(field);
    expectOnePassThroughSetAlignment<Own<NSTextField>>(field);
    expectOnePassThroughSetAlignment<OwnAligned<NSTextField>>(field);
    expectOnePassThroughSetAlignment<Own<NSTextField>>(Own<NSTextField>::classObject());
    Class& view = NSTextView::classObject();
    expectOnePassThroughSetAlignment<NSTextView>(view);
    expectOnePassThroughSetAlignment<OwnAligned<NSTextView>>(view);
}

TEST(ViewOperations, InitialisersPassOnce) {
    expectOnePassThroughInitialisers<NSTextField>(NSTextField::classObject());
    expectOnePassThroughInitialisers<Own<NSTextField>>(NSTextField::classObject());
    expectOnePassThroughInitialisers<NSTextView>(NSTextView::classObject());
    expectOnePassThroughInitialisers<Own<NSTextView>>(NSTextView::classObject());
    expectOnePassThroughInitialisers<NSButton>(NSButton::classObject());
    expectOnePassThroughInitialisers<Own<NSButton>>(NSButton::classObject());
}

TEST(ViewOperations, AnExchangedInitialiserMayAnswerNone) {
    static constinit Operation<bool(NSRect)> refuse{"test_refuse:"};
    refuse.implement(NSTextField::classObject(), [](NSObject&, NSRect) { return false; });
    InstanceMethodSwizzling(NSTextField::classObject(), "initWithFrame:", "test_refuse:");
    EXPECT_EQ(make<NSTextField>(), nullptr);
    InstanceMethodSwizzling(NSTextField::classObject(), "initWithFrame:", "test_refuse:");
    EXPECT_NE(make<NSTextField>(), nullptr);
}

TEST(ViewOperations, HitTestOfButtonsPassesOnceFromAboveToo) {
    const auto root = make<NSView>(NSRect(0, 0, 100, 100));
    const auto button = make<Own<NSButton>>(NSRect(10, 10, 50, 20));
    root->addSubview(button);
    const ExchangedByCounting exchanged(NSButton::classObject(), hitTestOperation, countHit);
    EXPECT_EQ(root->hitTest({15, 15}), button);
    EXPECT_EQ(passes, 1);
    EXPECT_EQ(root->hitTest({5, 5}), root);
    EXPECT_EQ(passes, 2);
}

TEST(ViewOperations, TheFlipQueryIsAskedOncePerLayout) {
    const auto layout = make<NSCollectionViewFlowLayout>();
    const ExchangedByCounting exchanged(NSCollectionViewFlowLayout::classObject(),
                                        flipsHorizontallyInOppositeLayoutDirectionOperation, countFlips);
    EXPECT_FALSE(layout->flipsHorizontallyInOppositeLayoutDirection());
    EXPECT_EQ(passes, 1);
    EXPECT_EQ(layout->layoutAttributes(3, 100).size(), 3U);
    EXPECT_EQ(passes, 2);
}

}  // namespace
}  // namespace kx

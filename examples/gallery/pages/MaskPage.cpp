// SPDX-License-Identifier: MIT

#include "pages/MaskPage.h"

#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/UI/KXMaskView.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

class MaskPage::Counter final : public KXMaskViewDelegate {
  public:
    void maskViewDidDismiss(KXMaskView&) override {
        ++count;
        if (shown) shown->setStringValue(std::to_string(count));
    }

    int count = 0;
    std::shared_ptr<NSTextField> shown;
};

MaskPage::MaskPage() : counter_(std::make_shared<Counter>()) {}
MaskPage::~MaskPage() = default;

namespace {

void cover(const std::shared_ptr<NSView>& view, const std::shared_ptr<KXMaskViewDelegate>& delegate) {
    const auto mask = make<KXMaskView>(view->bounds());
    mask->setDelegate(delegate);
    view->addSubview(mask);
}

void coverWindow(const std::shared_ptr<KXMaskViewDelegate>& delegate) {
    const auto mask = make<KXMaskView>();
    mask->setDelegate(delegate);
    mask->show();
}

std::shared_ptr<NSTextView> sampleText(double width) {
    auto view = make<NSTextView>();
    view->setString(text("language.paragraph"));
    view->setMaxSize({width, 200});
    view->sizeToFit();
    return view;
}

}  // namespace

void MaskPage::build(Column& column, Gallery&) {
    column.title(text("mask.title"));
    column.paragraph(text("mask.explanation"));
    column.space(12);
    const auto sample = sampleText(column.width());
    const auto counter = counter_;
    column.row({pushButton("mask.here", [=] { cover(sample, counter); }),
                pushButton("mask.window", [=] { coverWindow(counter); })});
    counter->shown = column.pair(text("mask.dismissed"), std::to_string(counter->count));
    column.space(12);
    column.add(sample, sample->frame().size.height);
    cover(sample, counter);
}

}  // namespace gallery

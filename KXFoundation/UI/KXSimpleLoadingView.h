// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

/// A picture that turns while something is loading: "common_loading_gray" of the application's bundle, as
/// large as the view allows. Without that picture the view is there and empty. Main thread.
///
///     auto loading = make<KXSimpleLoadingView>(NSRect(0, 0, 32, 32));
///     loading->setWantsLayer(true);  // what turns is the layer
///     loading->startLoading();
class KX_EXPORT KXSimpleLoadingView : public Subclass<KXSimpleLoadingView, NSView> {
  public:
    bool init(NSRect frame = {});
    bool init(NSCoder& coder);

    /// Takes every animation off the view's layer and turns it, once in 0.7 seconds, until stopLoading().
    /// Nothing without a layer. While the view is not seen it costs nothing.
    void startLoading();
    /// Takes every animation off the view's layer, others' too.
    void stopLoading();

  protected:
    KXSimpleLoadingView() = default;

  private:
    bool setUp();
};

}  // namespace kx

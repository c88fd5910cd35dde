// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSBitmapImageRep;
class NSColor;
class TextLayout;

/// A shadow as a layer throws it.
struct Shadow {
    std::shared_ptr<NSColor> color;  ///< absent: none
    double blurRadius =
        0;           ///< points, the standard deviation of the blur; it has faded out at three times that
    NSPoint offset;  ///< points, y down
};

/// Draws onto a bitmap (premultiplied; bytes blue, green, red, alpha). Coordinates are points; the origin is
/// the top left corner and y grows downwards. Coordinates that are no finite number draw nothing.
/// Antialiased; never hinted, so that a window and an off-screen bitmap of one scale get the same pixels. One
/// thread at a time.
///
///     auto context = GraphicsContext::onBitmap(bitmap, 2);
///     const GraphicsContext::Current scope(*context);     // views and pictures draw into the current one
///     context->fill({10, 10, 80, 30}, *NSColor::blackColor());
class KX_EXPORT GraphicsContext {
  public:
    /// A context on the bitmap, with `scale` pixels to the point; none if the bitmap is absent or the scale
    /// not above 0. The bitmap keeps what it shows and is kept alive; its pixels may be read between two
    /// calls.
    [[nodiscard]] static std::shared_ptr<GraphicsContext> onBitmap(std::shared_ptr<NSBitmapImageRep> bitmap,
                                                                   double scale = 1);
    ~GraphicsContext();
    GraphicsContext(const GraphicsContext&) = delete;
    GraphicsContext& operator=(const GraphicsContext&) = delete;

    /// The calling thread's current context; nullptr outside every scope.
    [[nodiscard]] static GraphicsContext* current() noexcept;
    /// Makes a context current for one scope; scopes nest.
    class KX_EXPORT Current {
      public:
        explicit Current(GraphicsContext& context) noexcept;
        ~Current();
        Current(const Current&) = delete;
        Current& operator=(const Current&) = delete;

      private:
        GraphicsContext* former_;
    };

    [[nodiscard]] double scale() const noexcept;
    /// What can still be drawn on, in the coordinates of the moment.
    [[nodiscard]] NSRect clipBounds() const;
    /// The rectangle with its edges moved to the nearest pixel edges, so that it is drawn crisp at any scale;
    /// as it is where the coordinates are turned.
    [[nodiscard]] NSRect pixelAligned(NSRect rect) const;

    // Shapes. A corner radius is held to half of the shorter side.
    void clear(NSRect rect);  ///< to transparent
    void fill(NSRect rect, const NSColor& color);
    void fill(NSRect rect, double cornerRadius, const NSColor& color);
    /// A line of that width along the inside of the rectangle's edges.
    void stroke(NSRect rect, double cornerRadius, double width, const NSColor& color);
    void strokeLine(NSPoint from, NSPoint to, double width, const NSColor& color);
    /// The shadow alone, also where the shape itself will cover it.
    void drawShadow(NSRect rect, double cornerRadius, const Shadow& shadow);

    /// The whole bitmap, scaled into the rectangle.
    void drawBitmap(const NSBitmapImageRep& bitmap, NSRect into, double opacity = 1);
    /// The text with its top left corner at the point. Where its flow has a width, lines stand between the
    /// point and that width; else between the point and the widest line.
    void drawText(const TextLayout& text, NSPoint topLeft, const NSColor& color);
    /// A text of one line in the middle of the rectangle's height. The middle is that of its font, so that
    /// texts of one font in different scripts stand on one baseline; that lies on a pixel edge.
    void drawTextLine(const TextLayout& line, NSRect inside, const NSColor& color);

    /// Whether everything that was saved has been restored, and it still draws: then it serves for another
    /// drawing.
    [[nodiscard]] bool isAsMade() const;
    [[nodiscard]] bool draws(const std::shared_ptr<NSBitmapImageRep>& bitmap) const noexcept;

    // State: the coordinates and the clip. Every save needs its restore; SavedState pairs them.
    void saveState();
    void restoreState();
    class SavedState {
      public:
        explicit SavedState(GraphicsContext& context) : context_(context) { context.saveState(); }
        ~SavedState() { context_.restoreState(); }
        SavedState(const SavedState&) = delete;
        SavedState& operator=(const SavedState&) = delete;

      private:
        GraphicsContext& context_;
    };
    void translate(double x, double y);
    void scaleBy(double x, double y);
    void rotate(double radians);  ///< clockwise
    void clip(NSRect rect, double cornerRadius = 0);
    /// What follows is seen as far as the bitmap, laid over the rectangle, is opaque there, and not beyond
    /// the rectangle. It is put down when the saved state or layer around it ends. An absent mask changes
    /// nothing.
    void clipToMask(NSRect rect, std::shared_ptr<const NSBitmapImageRep> mask);

    /// Draws what follows aside; endLayer puts it down as one, with that opacity. Saves the state with it.
    void beginLayer();
    void endLayer(double opacity);
    /// A layer of one scope. Where that is left before putDown, by an exception, nothing of it is seen.
    class Layer {
      public:
        explicit Layer(GraphicsContext& context) : context_(&context) { context.beginLayer(); }
        ~Layer() {
            if (context_) putDown(0);
        }
        Layer(const Layer&) = delete;
        Layer& operator=(const Layer&) = delete;
        /// Once at most.
        void putDown(double opacity) { std::exchange(context_, nullptr)->endLayer(opacity); }

      private:
        GraphicsContext* context_;
    };

    struct Native;
    [[nodiscard]] Native& native() noexcept { return *native_; }  ///< see CairoAccess.h

  private:
    explicit GraphicsContext(std::unique_ptr<Native> native);
    std::unique_ptr<Native> native_;
};

}  // namespace kx

// SPDX-License-Identifier: MIT

#include <limits>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

/// Every alpha with every colour that can stand under it, in three channels that differ.
std::shared_ptr<NSBitmapImageRep> everyPixel() {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(256, 256);
    for (std::uint32_t i = 0; i < 65'536; ++i) {
        const std::uint32_t alpha = i / 256, held = std::min(i % 256, alpha);
        bitmap->pixels()[i] = alpha << 24 | held << 16 | (alpha - held) << 8 | held / 2;
    }
    return bitmap;
}

std::shared_ptr<NSBitmapImageRep> filled(std::uint32_t side, std::uint32_t pixel) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(side, side);
    std::ranges::fill(bitmap->pixels(), pixel);
    return bitmap;
}

bool drawBlack(NSRect rect) {
    GraphicsContext::current()->fill(rect, *NSColor::blackColor());
    return true;
}

TEST(Png, TruncatedFilesAreAnError) {
    const auto encoded = encodePng(*everyPixel());
    for (std::size_t size = 0; size + 12 < encoded->size(); size += size < 200 ? 1 : 997)
        EXPECT_FALSE(decodeImage(std::span(*encoded).first(size)).ok()) << "first " << size << " bytes";
}

TEST(Png, ClaimedSizeIsCheckedFirst) {
    // The header of a picture of 30,000 x 30,000 pixels, and no pixels.
    static constexpr char kHuge[] =
        "\x89\x50\x4E\x47\x0D\x0A\x1A\x0A\x00\x00\x00\x0D\x49\x48\x44\x52\x00\x00\x75\x30\x00\x00\x75\x30\x08"
        "\x06\x00\x00\x00\x66\x27\xF8\xBA\x00\x00\x00\x00\x49\x44\x41\x54\x35\xAF\x06\x1E";
    const auto bytes = std::as_bytes(std::span(kHuge, sizeof kHuge - 1));
    EXPECT_EQ(decodeImage(bytes).error().kind, ErrorKind::TooLarge);

    const auto small = encodePng(*filled(10, 0xFF112233));
    const std::uint64_t limit = NSBitmapImageRep::pixelLimit();
    NSBitmapImageRep::setPixelLimit(99);
    EXPECT_EQ(decodeImage(*small).error().kind, ErrorKind::TooLarge);
    EXPECT_EQ(NSImage::initWithData(*small), nullptr);
    NSBitmapImageRep::setPixelLimit(limit);
}

TEST(ImageDecoder, UnknownBytesAreUnsupported) {
    for (const std::string text : {"", "x", "\x89PNG", "GIF", "hello, world; this is no picture"}) {
        const auto decoded = decodeImage(std::as_bytes(std::span(text)));
        ASSERT_FALSE(decoded.ok()) << text;
        EXPECT_EQ(decoded.error().kind, ErrorKind::Unsupported) << text;
    }
}

TEST(NSBitmapImageRep, RefusesImpossibleSizes) {
    for (const auto& [wide, high] : {std::pair(0U, 5U), {5, 0}, {32'768, 1}, {32'767, 32'767}, {~0U, ~0U}})
        EXPECT_EQ(NSBitmapImageRep::bitmapWithPixels(wide, high), nullptr) << wide << " x " << high;
    EXPECT_NE(NSBitmapImageRep::bitmapWithPixels(32'767, 1), nullptr);
}

TEST(NSImage, ChoosesTheRepresentationThatFitsTheScale) {
    const auto once = filled(10, 0xFF0000FF), twice = filled(20, 0xFF00FF00);
    const auto callback = make<NSCustomImageRep>(NSSize{10, 10}, [](NSRect) { return true; });
    using Rep = std::shared_ptr<NSImageRep>;
    const std::tuple<const char*, std::vector<Rep>, double, Rep> rows[] = {
        {"exact", {twice, once}, 1, once},
        {"exact, doubled", {once, twice}, 2, twice},
        {"between", {once, twice}, 1.25, twice},
        {"beyond", {once, twice}, 3, twice},
        {"drawn rather than enlarged", {once, callback}, 2, callback},
        {"bitmap where it suffices", {callback, once}, 1, once},
        {"empty", {}, 1, nullptr},
    };
    for (const auto& [what, representations, scale, want] : rows) {
        const auto image = NSImage::initWithSize({10, 10});
        for (const Rep& representation : representations) image->addRepresentation(representation);
        EXPECT_EQ(image->bestRepresentation(scale), want) << what;
    }
}

TEST(NSImage, DrawsIntoTheCurrentContextByItsScale) {
    const auto image = NSImage::initWithBitmap(filled(10, 0xFF0000FF));
    image->addRepresentation(filled(20, 0xFF00FF00));
    image->drawInRect({0, 0, 10, 10});  // no context: nothing

    const auto bitmap = NSBitmapImageRep::bitmapWithPixels(40, 40);
    const auto context = GraphicsContext::onBitmap(bitmap, 2);
    const GraphicsContext::Current scope(*context);
    image->drawInRect({5, 5, 10, 10});
    EXPECT_EQ(bitmap->pixelAt(10, 10), 0xFF00FF00);
    EXPECT_EQ(bitmap->pixelAt(29, 29), 0xFF00FF00);
    EXPECT_EQ(bitmap->pixelAt(30, 30), 0u);
}

TEST(NSImage, CallbackDrawsAtTheResolutionOfThePlace) {
    const auto image = NSImage::imageWithSize({10, 10}, [](NSRect rect) {
        return drawBlack({0, 0, rect.size.width / 2, rect.size.height});
    });
    const auto bitmap = image->bitmapAtScale(3);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->pixelsWide(), 30u);
    EXPECT_EQ(bitmap->pixelAt(14, 29), 0xFF000000);
    EXPECT_EQ(bitmap->pixelAt(15, 29), 0u);

    const auto failing = NSImage::imageWithSize({10, 10}, [](NSRect rect) { return !drawBlack(rect); });
    EXPECT_EQ(failing->bitmapAtScale(1)->pixelAt(5, 5), 0u);
}

TEST(NSImage, CallbackThatThrowsLeavesTheContextAsItWas) {
    const auto bitmap = NSBitmapImageRep::bitmapWithPixels(4, 4);
    const auto context = GraphicsContext::onBitmap(bitmap);
    const GraphicsContext::Current scope(*context);
    const auto image = NSImage::imageWithSize({2, 2}, [&](NSRect rect) -> bool {
        context->fill(rect, *NSColor::blackColor());
        throw 1;
    });
    EXPECT_ANY_THROW(image->drawInRect({1, 1, 2, 2}));
    EXPECT_EQ(bitmap->pixelAt(1, 1), 0U);
    EXPECT_TRUE(context->isAsMade());
}

TEST(NSImage, FlattensToABitmap) {
    const auto bitmap = filled(20, 0xFF00FF00);
    const auto image = NSImage::initWithBitmap(bitmap, 2);
    EXPECT_EQ(image->size(), (NSSize{10, 10}));
    EXPECT_EQ(image->bitmapAtScale(2), bitmap);
    EXPECT_EQ(image->bitmapAtScale(1)->pixelsWide(), 10u);
    for (const double scale : {0.0, -1.0, 1e300, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(image->bitmapAtScale(scale), nullptr) << scale;
    EXPECT_EQ(NSImage::initWithSize({10, 10})->bitmapAtScale(1), nullptr);
    EXPECT_EQ(NSImage::initWithBitmap(nullptr), nullptr);
}

TEST(NSImage, ComesBackFromAnArchivePixelByPixel) {
    const auto image = NSImage::initWithBitmap(everyPixel(), 2);
    image->addRepresentation(filled(3, 0x80402010));
    const auto drawn = NSImage::imageWithSize({4, 4}, drawBlack);
    for (const auto& archived : {image, drawn, NSImage::initWithSize({7, 8})}) {
        const auto bytes = NSKeyedArchiver::archivedDataWithRootObject(Value(archived));
        ASSERT_TRUE(bytes.ok());
        const auto value = NSKeyedUnarchiver::unarchivedObject(std::as_bytes(std::span(*bytes)));
        ASSERT_TRUE(value.ok());
        const auto copy = objectCast<NSImage>(value->asObject());
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(copy->size(), archived->size());
        ASSERT_EQ(copy->representations().size(), archived->representations().size());
        if (const auto wanted = archived->largestBitmap()) {
            EXPECT_TRUE(testing::compare(*copy->largestBitmap(), *wanted).accepted);
        }
    }
    NSCoder damaged;
    damaged.encode("bitmaps", ArrayBuilder().add("no picture").build());
    NSCoder reader(damaged.archive());
    EXPECT_FALSE(NSImage::initWithSize({})->initWithCoder(reader));
}

TEST(NSImage, NamedPictureComesFromTheMainBundleWithItsDoubledOne) {
    const testing::TemporaryDirectory folder;
    const ScopedProcessState fresh;
    NSBundle::setMainBundlePath(folder.path());
    ASSERT_TRUE(testing::writePicture(*filled(10, 0xFF0000FF), folder / "both.png"));
    ASSERT_TRUE(testing::writePicture(*filled(20, 0xFF00FF00), folder / "both@2x.png"));
    ASSERT_TRUE(testing::writePicture(*filled(30, 0xFFFF0000), folder / "doubled@2x.png"));
    ASSERT_TRUE(testing::writePicture(*filled(40, 0xFF0000FF), folder / "v1.5.jpg"));
    ASSERT_TRUE(replaceFile(FileSystem::slot().current(), folder / "broken.png", "no picture").ok());

    const auto both = NSImage::imageNamed("both");
    ASSERT_NE(both, nullptr);
    EXPECT_EQ(both->size(), (NSSize{10, 10}));
    EXPECT_EQ(both->representations().size(), 2u);
    EXPECT_EQ(both->bitmapAtScale(2)->pixelAt(5, 5), 0xFF00FF00);
    EXPECT_EQ(NSImage::imageNamed("both"), both);
    EXPECT_EQ(NSImage::initWithContentsOfFile(folder / "both.png")->representations().size(), 2u);

    EXPECT_EQ(NSImage::imageNamed("both.png"), both);
    EXPECT_EQ(NSImage::imageNamed("both.jpg"), nullptr);

    EXPECT_EQ(NSImage::imageNamed("doubled")->size(), (NSSize{15, 15}));
    const auto dotted = NSImage::imageNamed("v1.5");
    ASSERT_NE(dotted, nullptr);
    EXPECT_EQ(dotted->size(), (NSSize{40, 40}));

    const testing::CapturedLog log;
    EXPECT_EQ(NSImage::imageNamed("missing"), nullptr);
    EXPECT_EQ(NSImage::imageNamed(""), nullptr);
    EXPECT_EQ(NSImage::imageNamed(std::nullopt), nullptr);
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
    EXPECT_EQ(NSImage::imageNamed("broken"), nullptr);
    EXPECT_EQ(NSImage::initWithContentsOfFile("/nowhere/picture.png"), nullptr);
    EXPECT_EQ(NSImage::initWithContentsOfFile(std::nullopt), nullptr);
    EXPECT_THAT(log.lines(), ::testing::ElementsAre(::testing::HasSubstr("broken.png"),
                                                    ::testing::HasSubstr("/nowhere/picture.png")));
}

}  // namespace
}  // namespace kx

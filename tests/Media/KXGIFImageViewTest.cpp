// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <filesystem>

#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Media/TableViewCellGIFImageView.h>
#include <KXFoundation/Platform/Graphics/ImageSource.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Observation.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

#include "GIFFixture.h"

namespace kx {
namespace {

using testing::colouredGIF;
using testing::dataOf;
using ::testing::ElementsAre;
using testing::TemporaryDirectory;

TEST(NSImage_LoopCount, KeepsWhatItIsGivenAndTellsObservers) {
    const auto image = NSImage::initWithSize({1, 1});
    std::vector<std::string> notices;
    std::vector<ObservationToken> tokens;
    const auto note = [&](auto&, auto changed, ChangePhase phase) {
        notices.push_back((phase == ChangePhase::Will ? "will " : "did ") + std::string(changed));
    };
    for (const char* key : {"images", "duration", "loopCount"})
        tokens.push_back(observe(image, key, ChangeOptions::Both, note));
    const ImageList frames =
        std::make_shared<const std::vector<std::shared_ptr<NSImage>>>(2, NSImage::initWithSize({1, 1}));
    NSImage_LoopCount::setDuration(image, 1.1);
    NSImage_LoopCount::setLoopCount(image, std::int64_t{1} << 40);
    NSImage_LoopCount::setImages(image, frames);
    EXPECT_EQ(NSImage_LoopCount::images(image), frames);
    EXPECT_EQ(NSImage_LoopCount::duration(image), 1.1F);
    EXPECT_EQ(NSImage_LoopCount::loopCount(image), std::int64_t{1} << 40);
    EXPECT_THAT(notices, ElementsAre("will duration", "did duration", "will loopCount", "did loopCount",
                                     "will images", "did images"));
    NSImage_LoopCount::setDuration(nullptr, 1);
    EXPECT_EQ(NSImage_LoopCount::duration(nullptr), 0);
}

TEST(KXGIFImageView, FrameDurations) {
    struct Source : Subclass<Source, ImageSource> {
        std::optional<double> unclamped, delay;
        Value propertiesAtIndex(std::size_t) const override {
            DictionaryBuilder gif;
            if (unclamped) gif.set(kUnclampedDelayTime, *unclamped);
            if (delay) gif.set(kDelayTime, *delay);
            return DictionaryBuilder().set(kGIFDictionary, gif.build()).build();
        }
    };
    const std::tuple<std::optional<double>, std::optional<double>, float> rows[] = {
        {{}, 0.0, 0.1F},    {{}, 0.02, 0.02F},  {0.01, 0.5, 0.1F},   {{}, {}, 0.1F},
        {0.05, 0.1, 0.05F}, {0.0109, {}, 0.1F}, {0.011, {}, 0.011F}, {-1.0, {}, 0.1F},
    };
    const auto source = make<Source>(dataOf({}));
    for (const auto& [unclamped, delay, want] : rows) {
        source->unclamped = unclamped;
        source->delay = delay;
        EXPECT_EQ(KXGIFImageView::frameDurationAtIndex(0, source), want)
            << unclamped.value_or(-9) << ", " << delay.value_or(-9);
    }
    EXPECT_EQ(KXGIFImageView::frameDurationAtIndex(0, nullptr), 0.1F);
}

TEST(KXGIFImageView, DecodesData) {
    const auto three = colouredGIF({5, 5, 20}, 4);
    // Whether it is a picture, its frames, their duration and how often they loop.
    const std::tuple<const char*, Value, bool, std::size_t, float, std::int64_t> rows[] = {
        {"three frames", dataOf(three), true, 3, 0.3F, 4},
        {"no loop count", dataOf(colouredGIF({0, 0})), true, 2, 0.2F, 0},
        {"one frame", dataOf(colouredGIF({5}, 3)), true, 0, 0, 0},
        {"no frame", dataOf(colouredGIF({})), false, 0, 0, 0},
        {"no picture", dataOf({1, 2, 3}), false, 0, 0, 0},
        {"nothing", Value(), false, 0, 0, 0},
    };
    for (const auto& [what, data, isImage, count, duration, loops] : rows) {
        int calls = 0;
        std::shared_ptr<NSImage> image;
        KXGIFImageView::kx_animatedGIFWithData(data, [&](const auto& given) {
            ++calls;
            image = given;
        });
        KXGIFImageView::kx_animatedGIFWithData(data, nullptr);
        EXPECT_EQ(calls, 1) << what;
        EXPECT_EQ(image != nullptr, isImage) << what;
        const ImageList frames = NSImage_LoopCount::images(image);
        ASSERT_EQ(frames ? frames->size() : 0, count) << what;
        EXPECT_FLOAT_EQ(NSImage_LoopCount::duration(image), duration) << what;
        EXPECT_EQ(NSImage_LoopCount::loopCount(image), loops) << what;
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(testing::frameOf((*frames)[i]), static_cast<int>(i)) << what;
            EXPECT_EQ((*frames)[i]->size(), (NSSize{2, 2})) << what;
        }
    }
}

/// Writes down what the base view is told.
struct Watched : Subclass<Watched, KXGIFImageView> {
    std::vector<std::string> told;
    void renderImageViewWithImg(const std::shared_ptr<NSImage>& image) override {
        told.push_back(NSImage_LoopCount::images(image) ? "animation" : "picture");
        Super::renderImageViewWithImg(image);
    }
    void setLoopCount(std::int64_t count) override { told.push_back("loops " + std::to_string(count)); }
    void setImage(std::shared_ptr<NSImage> image) override {
        told.push_back(image ? "image" : "no image");
        Super::setImage(std::move(image));
    }
};

struct Paths {
    TemporaryDirectory directory;
    std::string moving = testing::write(directory, "moving.gif", colouredGIF({5, 5}, 6));
    std::string still = testing::write(directory, "still.gif", colouredGIF({5}));
    std::string text = directory.write("text.gif", "no picture");
};

TEST(KXGIFImageView, ShowsTheFileAskedForLast) {
    const Paths paths;
    const ScopedProcessState process;
    const auto view = make<Watched>(NSRect(0, 0, 9, 9));
    const auto ask = [&](std::optional<std::string_view> path) {
        view->setGIFPath(path);
        drainQueues();
        return std::exchange(view->told, {});
    };
    EXPECT_THAT(ask(paths.still), ElementsAre("picture", "image"));
    EXPECT_THAT(ask(paths.moving), ElementsAre("animation", "loops 6"));
    EXPECT_EQ(testing::frameOf(view->image()), 0) << "an animation leaves the image as it was";
    EXPECT_EQ(view->loopCount(), 0);
    EXPECT_THAT(ask(paths.text), ElementsAre("loops 0", "no image"));
    EXPECT_THAT(ask(paths.directory / "missing"), ElementsAre("no image"));
    EXPECT_THAT(ask(std::nullopt), ElementsAre("no image"));
    EXPECT_EQ(view->filePath(), std::nullopt);

    view->setGIFPath(paths.still);  // both are kept by now: at once
    view->setGIFPath(paths.moving);
    EXPECT_THAT(std::exchange(view->told, {}), ElementsAre("picture", "image", "animation", "loops 6"));
    drainQueues();
    EXPECT_THAT(view->told, ElementsAre());
}

TEST(KXGIFImageView, DiscardsWhatComesForAnEarlierPath) {
    const Paths paths;
    const ScopedProcessState process;
    auto view = make<Watched>(std::optional<std::string_view>(paths.still));
    view->setGIFPath(paths.moving);
    drainQueues();
    std::ranges::sort(view->told);  // the two files end in either order
    EXPECT_THAT(view->told, ElementsAre("animation", "loops 0", "loops 6", "no image"));
    view->told.clear();
    view->setGIFPath(paths.still);  // was not kept
    EXPECT_THAT(view->told, ElementsAre());
    const std::weak_ptr<Watched> weak = view;
    view = nullptr;
    EXPECT_FALSE(weak.expired()) << "the operation keeps it until it has finished";
    drainQueues();
    EXPECT_TRUE(weak.expired());
}

/// Opens nothing until the gate is open, by the library's own means of waiting; does nothing else.
class GatedFiles final : public FileSystem {
  public:
    std::atomic<int> opened = 0;

    void openGate() {
        const MutexLock lock(mutex_);
        isOpen_ = true;
        Executor::slot().current().wake(changed_);
    }
    Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) override {
        ++opened;
        const MutexLock lock(mutex_);
        while (!isOpen_) Executor::slot().current().wait(mutex_, changed_);
        return below_->open(path, mode);
    }
    Result<Info> info(const std::string& path) override { return below_->info(path); }
    Result<std::vector<std::string>> list(const std::string&) override { return Error(); }
    Result<void> rename(const std::string&, const std::string&) override { return Error(); }
    Result<void> remove(const std::string&) override { return Error(); }
    Result<void> makeDirectory(const std::string&) override { return Error(); }
    Result<void> syncDirectory(const std::string&) override { return Error(); }

  private:
    const std::shared_ptr<FileSystem> below_ = FileSystem::makeDefault();
    Mutex mutex_;
    WaitPoint changed_;
    bool isOpen_ = false;
};

TEST(KXGIFImageView, ConcurrentRequestsOfOnePathAreReadOnce) {
    const Paths paths;
    const ScopedProcessState process;
    const auto files = std::make_shared<GatedFiles>();
    const ScopedPort<FileSystem> scope(files);
    std::vector<std::shared_ptr<Watched>> views;
    for (int i = 0; i < 3; ++i) views.push_back(make<Watched>(std::optional<std::string_view>(paths.moving)));
    drainQueues();  // all three wait
    EXPECT_EQ(files->opened, 1);
    files->openGate();
    drainQueues();
    for (const auto& view : views) EXPECT_THAT(view->told, ElementsAre("animation", "loops 6"));
    EXPECT_EQ(files->opened, 1);
}

TEST(KXGIFImageView, AFileReplacedMeanwhileIsReadAnew) {
    const Paths paths;
    const ScopedProcessState process;
    const auto files = std::make_shared<GatedFiles>();
    const ScopedPort<FileSystem> scope(files);
    const auto first = make<Watched>(std::optional<std::string_view>(paths.moving));
    drainQueues();
    std::filesystem::rename(paths.still, paths.moving);
    const auto second = make<Watched>(std::optional<std::string_view>(paths.moving));
    drainQueues();
    EXPECT_EQ(files->opened, 2);
    files->openGate();
    drainQueues();
    EXPECT_EQ(second->told, first->told);
    EXPECT_THAT(second->told, ElementsAre("picture", "image"));
}

TEST(KXGIFImageView, InTableCellsIsNotHighlighted) {
    const std::shared_ptr<TableViewCellGIFImageView> view =
        TableViewCellGIFImageView::initWithGIFPath(std::nullopt);
    view->setHighlighted(true);
    EXPECT_FALSE(view->isHighlighted());
}

}  // namespace
}  // namespace kx

#include <gtest/gtest.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>

#include "Localization/ApplicationRun.h"
#include "support/CountedAllocations.h"
#include "support/FaultyFileSystem.h"

namespace kx {
namespace {

using testing::ApplicationRun;

/// The cost of one look-up of the key once everything is warm.
struct Cost {
    std::size_t fileCalls, allocations;
    bool operator==(const Cost&) const = default;
};

Cost costOf(testing::FaultyFileSystem& files, std::string_view key) {
    for (int i = 0; i < 3; ++i) (void)KXLocalizationUtils::localizedStringForKey(key);
    const std::size_t callsBefore = files.calls();
    const std::size_t allocations =
        testing::allocationsOf([&] { (void)KXLocalizationUtils::localizedStringForKey(key); });
    return {files.calls() - callsBefore, allocations};
}

TEST(LookupCost, AWarmLookupThatFollowsTheSystemCostsItsAnswer) {
    const std::string longText(100, 'x');
    struct {
        std::string_view systemLanguage, key;
        std::size_t wantAllocations;
    } const rows[] = {
        {"fr-FR", "short", 0},   {"fr-FR", "long", 1},  // the answer does not fit into a string object
        {"fr-FR", "english", 1},                        // found in the fallback
        {"ja-JP", "english", 1},                        // the selected language has no folder
        {"fr-FR", "missing", 0},
    };
    for (const auto& row : rows) {
        const auto files = std::make_shared<testing::FaultyFileSystem>();
        const ScopedPort<FileSystem> scope(files);
        ApplicationRun run({std::string(row.systemLanguage)});
        run.platform.bundle()
            .addStrings("fr", {{"short", "court"}, {"long", longText}})
            .addStrings("en", {{"english", longText}});
        KXLocalizationUtils::setSelectLanguage("auto");
        EXPECT_GT(files->calls(), 0U) << "the flush was not counted: this test would see nothing";
        const Cost cost = costOf(*files, row.key);
        EXPECT_EQ(cost.fileCalls, 0U) << row.systemLanguage << ": " << row.key;
        EXPECT_EQ(cost.allocations, row.wantAllocations) << row.systemLanguage << ": " << row.key;
    }
}

}  // namespace
}  // namespace kx

// SPDX-License-Identifier: MIT

#include <cstdint>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Core/KXAppInfo.h>
#include <KXFoundation/Core/KXError.h>
#include <KXFoundation/Core/KXObject.h>

namespace kx {
namespace {

class Harbour : public Subclass<Harbour, KXObject> {};

TEST(KXObject, IdIsGivenOrTheNameOfTheClassBeingMade) {
    EXPECT_EQ(make<Harbour>()->id(), "Harbour");
    EXPECT_EQ(KXObject::objectWithID("pier")->id(), "pier");
    EXPECT_EQ(Harbour::objectWithID("pier")->className(), "KXObject") << "made through a derived class";
    EXPECT_EQ(KXObject::objectWithID(std::nullopt)->id(), std::nullopt);
}

TEST(KXError, SignDecides) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::pair<std::int32_t, bool> rows[] = {{0, true},   {1, true},   {Limits::max(), true},
                                                  {-1, false}, {-3, false}, {Limits::min(), false}};
    for (const auto& [code, success] : rows)
        EXPECT_EQ(isSuccess(KXError::errorWithCode(code).get()), success) << "code: " << code;
    EXPECT_TRUE(isSuccess(nullptr)) << "no error is success";
}

TEST(KXAppInfo, ConcurrentReadsAreNeverTorn) {
    const auto info = make<KXAppInfo>();
    const std::string small(40, 'a'), large(400, 'b');
    info->setReleaseLog(small);
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i) info->setReleaseLog(i % 2 ? small : large);
    });
    bool whole = true;
    for (int i = 0; i < 2000; ++i) {
        const auto text = info->releaseLog();
        whole = whole && (text == small || text == large);
    }
    writer.join();
    EXPECT_TRUE(whole);
}

}  // namespace
}  // namespace kx

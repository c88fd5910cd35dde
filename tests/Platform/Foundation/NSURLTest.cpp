// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSURL.h>

namespace kx {
namespace {

TEST(NSURL, Components) {
    using Text = std::string_view;
    const std::tuple<Text, Text, Text, Text, std::optional<Text>, std::optional<Text>> rows[] = {
        // The two examples of RFC 3986, section 3.
        {"foo://example.com:8042/over/there?name=ferret#nose", "foo", "example.com:8042", "/over/there",
         "name=ferret", "nose"},
        {"urn:example:animal:ferret:nose", "urn", "", "example:animal:ferret:nose", {}, {}},
        {"https://example.org", "https", "example.org", "", {}, {}},
        {"https://example.org?q", "https", "example.org", "", "q", {}},
        {"file:///a%20b/%E6%B8%AF.png", "file", "", "/a b/港.png", {}, {}},
        {"h://a/b#c?d", "h", "a", "/b", {}, "c?d"},
        {"h://u:p@[::1]:80/", "h", "u:p@[::1]:80", "/", {}, {}},
        {"pier.jpg", "", "", "pier.jpg", {}, {}},
        {"a/b:c", "", "", "a/b:c", {}, {}},
        {"1a:b", "", "", "1a:b", {}, {}},
        {":", "", "", ":", {}, {}},
    };
    for (const auto& [text, scheme, authority, path, query, fragment] : rows) {
        SCOPED_TRACE(text);
        const auto url = NSURL::URLWithString(text);
        ASSERT_TRUE(url);
        EXPECT_EQ(url->scheme(), scheme);
        EXPECT_EQ(url->authority(), authority);
        EXPECT_EQ(url->path(), path);
        EXPECT_EQ(url->query(), query);
        EXPECT_EQ(url->fragment(), fragment);
        EXPECT_EQ(url->absoluteString(), text);
    }
}

TEST(NSURL, RefusesWhatIsNoAddress) {
    for (const std::string_view text :
         {"", "a b", "a%2", "a%zz", "%", "a%00b", "h://港", "a\nb", "<a>", "h://a#b#c", "h://a:b/",
          "h://::1/", "h://[::1/", "h://[]/", "h://[::1]8/", "h://a]/"}) {
        EXPECT_EQ(NSURL::URLWithString(text), std::nullopt) << text;
    }
    EXPECT_EQ(NSURL::URLWithString(std::nullopt), std::nullopt);
}

TEST(NSURL, FilePathsComeBack) {
    for (const std::string_view path : {"/", "/a b/c%d", "/港/#1?.gif"}) {
        const NSURL url = NSURL::fileURLWithPath(path);
        EXPECT_TRUE(url.isFileURL());
        EXPECT_EQ(url.path(), path);
        EXPECT_EQ(NSURL::URLWithString(url.absoluteString()), url) << path;
    }
    EXPECT_TRUE(NSURL::fileURLWithPath("pier.jpg").path().ends_with("/pier.jpg"));
    EXPECT_EQ(NSURL::fileURLWithPath("pier.jpg").path().front(), '/');
}

}  // namespace
}  // namespace kx

// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSURL.h>

namespace kx {
namespace {

TEST(NSURL, Components) {
    using Part = std::optional<std::string_view>;
    struct {
        std::string_view text, scheme, authority, path;
        Part query, fragment;
    } const rows[] = {
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
    for (const auto& row : rows) {
        const auto url = NSURL::URLWithString(row.text);
        ASSERT_TRUE(url) << row.text;
        EXPECT_EQ(url->scheme(), row.scheme) << row.text;
        EXPECT_EQ(url->authority(), row.authority) << row.text;
        EXPECT_EQ(url->path(), row.path) << row.text;
        EXPECT_EQ(url->query(), row.query) << row.text;
        EXPECT_EQ(url->fragment(), row.fragment) << row.text;
        EXPECT_EQ(url->absoluteString(), row.text);
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

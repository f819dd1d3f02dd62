#include "tools/lsp/uri.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

TEST(UriTest, ReadsAddressesOfFiles) {
  EXPECT_EQ(pathOf("file:///a/b%20c/%C3%A4.json"), "/a/b c/\xC3\xA4.json");
  EXPECT_EQ(pathOf("file://host/a"), "/a");
  EXPECT_EQ(pathOf("file:///a%"), "/a%");
  EXPECT_EQ(pathOf("file:///a%zz"), std::nullopt);
  EXPECT_EQ(pathOf("file:///a%00b"), std::nullopt);
  EXPECT_EQ(pathOf("file://"), std::nullopt);
  EXPECT_EQ(pathOf("untitled:Untitled-1"), std::nullopt);
}

TEST(UriTest, WritesThem) {
  EXPECT_EQ(uriOf("/a/b c/\xC3\xA4#1.json"), "file:///a/b%20c/%C3%A4%231.json");
  EXPECT_EQ(pathOf(uriOf("/a/%41?.json")), "/a/%41?.json");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp

#include "host/documents/document_kind.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::optional<DocumentKind> kindOf(const std::string& json) { return kindOfKeys(rootKeys(json)); }

TEST(DocumentKind, KnowsEachByItsKeys) {
  EXPECT_EQ(kindOf(R"({ "nodes": [], "outputs": [] })"), DocumentKind::graph);
  EXPECT_EQ(kindOf(R"({ "lights": [] })"), DocumentKind::environment);
  EXPECT_EQ(kindOf(R"({ "output": "x", "shaders": [] })"), DocumentKind::manifest);
  EXPECT_EQ(kindOf(R"({ "shadres": [] })"), DocumentKind::manifest);
  EXPECT_EQ(kindOf(R"({ "whatever": [] })"), std::nullopt);
  EXPECT_EQ(kindOf("[]"), std::nullopt);
}

TEST(DocumentKind, RootKeysAreThoseOfTheRootAlone) {
  const std::vector<std::string> keys = {"a", "b\\\"", "c"};
  EXPECT_EQ(rootKeys(R"( { "a": {"x": [{"y": 1}]}, "b\"" : "c\":", "c": 1 } )"), keys);
}

TEST(DocumentKind, BrokenTextsGiveTheKeysBeforeTheirFault) {
  EXPECT_EQ(rootKeys(R"({ "nodes": [ { "x")"), std::vector<std::string>{"nodes"});
  EXPECT_EQ(rootKeys(R"({ "nodes)"), std::vector<std::string>());
  EXPECT_EQ(rootKeys("{ \"nodes\\"), std::vector<std::string>());
  EXPECT_EQ(rootKeys("}{"), std::vector<std::string>());
  EXPECT_EQ(rootKeys(""), std::vector<std::string>());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

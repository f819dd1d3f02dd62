#include "tools/lsp/document_kind.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

using host::DocumentKind;

std::optional<DocumentKind> kind(const std::string& text, const std::string& path = "/a.json",
                                 const std::string& language = "json") {
  const JsonScan scan(text);
  return kindOf(path, language, scan);
}

TEST(DocumentKindTest, KnowsLibrariesByTheirFiles) {
  EXPECT_EQ(kind("", "/a.fraglib"), DocumentKind::library);
  EXPECT_EQ(kind(R"({ "nodes": [] })", "/a.fraglib"), DocumentKind::library);
}

TEST(DocumentKindTest, KnowsTheOthersByTheirKeys) {
  EXPECT_EQ(kind(R"({ "inputs": [], "nodes": [)"), DocumentKind::graph);
  EXPECT_EQ(kind(R"({ "noeds": [] })"), DocumentKind::graph);
  EXPECT_EQ(kind(R"({ "postproces": [] })"), DocumentKind::graph);
  EXPECT_EQ(kind(R"({ "output": "o", "ligths": [] })"), DocumentKind::environment);
}

TEST(DocumentKindTest, KnowsThemByTheirSchemaOrTheEditorsWord) {
  EXPECT_EQ(kind(R"({ "$schema": "../graph.schema.json" })"), DocumentKind::graph);
  EXPECT_EQ(kind(R"({ "$schema": "https://x/environment.json", "nodes": [] })"), DocumentKind::environment);
  EXPECT_EQ(kind("{", "/a.json", "sfg-environment"), DocumentKind::environment);
}

TEST(DocumentKindTest, LeavesOtherFilesAlone) {
  EXPECT_EQ(kind(R"({ "name": "package", "dependencies": {} })"), std::nullopt);
  EXPECT_EQ(kind(""), std::nullopt);
  EXPECT_EQ(kind("[1]"), std::nullopt);
  EXPECT_EQ(kind(R"({ "a": { "nodes": [] } })"), std::nullopt);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp

#include "host/documents/document_reader.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

DocumentReader reader(const std::string& text) { return DocumentReader(Document::fromText(text, "doc")); }

/// "PLACE: REASON" of what `read` is refused with.
template <class Read>
std::string refusal(Read&& read) {
  try {
    read();
  } catch (const InputError& error) {
    return error.place() + ": " + error.what();
  }
  return "(nothing thrown)";
}

TEST(DocumentReaderTest, SaysWhatIsWrongWithATextAndWhere) {
  EXPECT_EQ(refusal([] { reader("[]"); }), "doc:1:1: expected an object at the top level");
  EXPECT_EQ(refusal([] { reader("{\n  \"a\": }"); }).substr(0, 9), "doc:2:8: ");
  EXPECT_EQ(refusal([] { DocumentReader(Document::fromFile("/no/such/file")); }).substr(0, 15),
            "/no/such/file: ");
}

TEST(DocumentReaderTest, ReadsNamesArraysAndObjects) {
  const DocumentReader document =
      reader(R"({ "name": "noise", "list": [ {}, "x" ], "object": {}, "none": null })");
  const IObjectDataNode& root = document.root();
  EXPECT_EQ(document.requiredName(root, L"name"), L"noise");
  EXPECT_EQ(document.optionalName(root, L"other"), std::nullopt);
  EXPECT_EQ(document.optionalName(root, L"none"), std::nullopt);
  const IObjectDataNode* const list = document.optionalArray(root, L"list");
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(document.objectAt(*list, 0).kind(), NodeKind::object);
  EXPECT_EQ(document.nameAt(*list, 1), L"x");
  EXPECT_NE(document.optionalObject(root, L"object"), nullptr);
  EXPECT_EQ(document.optionalArray(root, L"other"), nullptr);
}

TEST(DocumentReaderTest, RefusesOtherKindsAtTheirPlaces) {
  const DocumentReader document = reader(R"({ "name": 3, "list": {}, "items": [ 1, "" ] })");
  const IObjectDataNode& root = document.root();
  const IObjectDataNode& items = *document.optionalArray(root, L"items");
  EXPECT_EQ(refusal([&] { document.requiredName(root, L"name"); }),
            "doc:1:11: `name` must be a string that is not empty");
  EXPECT_EQ(refusal([&] { document.requiredName(root, L"title"); }), "doc:1:1: `title` is missing");
  EXPECT_EQ(refusal([&] { document.optionalArray(root, L"list"); }), "doc:1:22: `list` must be an array");
  EXPECT_EQ(refusal([&] { document.optionalObject(root, L"items"); }), "doc:1:35: `items` must be an object");
  EXPECT_EQ(refusal([&] { document.objectAt(items, 0); }), "doc:1:37: expected an object");
  EXPECT_EQ(refusal([&] { document.nameAt(items, 1); }), "doc:1:40: expected a string that is not empty");
}

TEST(DocumentReaderTest, NamesNoPlacesInADocumentWithoutAny) {
  Graph graph;
  graph.nodes = {{"", "f", {}, std::nullopt}};
  const DocumentReader document(Document::from(graph, "material"));
  const IObjectDataNode& node = document.objectAt(*document.optionalArray(document.root(), L"nodes"), 0);
  EXPECT_EQ(document.positionOf(node).line, 0u);
  EXPECT_EQ(refusal([&] { document.requiredName(node, L"name"); }),
            "material: `name` must be a string that is not empty");
}

TEST(DocumentReaderTest, RefusesValuesThatDoNotFit) {
  const DocumentReader document = reader(R"({ "a": [1, 2], "b": 1.5 })");
  const AParameter pair(TypeID_fvec2, L"pair");
  const AParameter integer(TypeID_int, L"integer");
  const auto named = [] { return std::string("`value`"); };
  EXPECT_EQ(toShaderText(document.value(*document.root().member(L"a"), pair, named)), L"float2(1.0, 2.0)");
  EXPECT_EQ(refusal([&] { document.value(*document.root().member(L"b"), pair, named); }),
            "doc:1:21: `value` does not fit the type `float2`: expected an array of 2 numbers");
  EXPECT_EQ(refusal([&] { document.value(*document.root().member(L"b"), integer, named); }),
            "doc:1:21: `value` does not fit the type `int`: expected an integer");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

#include "host/library/fragment_files.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

RefPtr<IObjectDataNode> parsed(const WString& text) {
  RefPtr<IObjectDataNode> node(createJsonNode());
  EXPECT_TRUE(node->loadFromText(text));
  return node;
}

TEST(FragmentFilesTest, KnowTheLastPlaceOfAName) {
  const RefPtr<IObjectDataNode> first = parsed(L"\n { \"description\": \"first\" }");
  const RefPtr<IObjectDataNode> second = parsed(L"{}");
  FragmentFiles files;
  files.addFile(L"b.fraglib");
  files.addFragment(L"b.fraglib", L"f", *first);
  files.addFragment(L"b.fraglib", L"g", *first);
  files.addFile(L"a.fraglib");
  files.addFragment(L"a.fraglib", L"f", *second);
  EXPECT_EQ(files.files(), (std::vector<std::string>{"b.fraglib", "a.fraglib"}));
  EXPECT_EQ(files.entries().size(), 2u);
  EXPECT_EQ(files.find(L"f")->place(), "a.fraglib:1:1");
  EXPECT_EQ(files.find(L"f")->description, L"");
  EXPECT_EQ(files.find(L"g")->place(), "b.fraglib:2:2");
  EXPECT_EQ(files.find(L"g")->description, L"first");
  EXPECT_EQ(files.find(L"h"), nullptr);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

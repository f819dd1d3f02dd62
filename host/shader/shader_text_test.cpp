#include "host/shader/shader_text.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Kind = ShaderSection::Kind;

TEST(ShaderText, RecordsTheLinesOfItsSections) {
  ShaderText text;
  text.section(Kind::declarations);
  text.write(L"a\nb\n");
  text.section(Kind::include, L"x.h");
  text.writef(L"c %s", L"d");
  text.section(Kind::function, L"f");
  text.write(L"e\n");
  const std::vector<ShaderSection> sections = text.takeSections();
  EXPECT_EQ(text.takeText(), L"a\nb\nc d\ne\n");
  ASSERT_EQ(sections.size(), 3u);
  EXPECT_EQ(sections[1].name, L"x.h");
  EXPECT_EQ(sections[1].firstLine, 3u);
  EXPECT_EQ(sections[1].lastLine, 3u);
  EXPECT_EQ(sections[2].firstLine, 4u);
  EXPECT_EQ(sections[2].lastLine, 4u);
}

TEST(ShaderText, LeavesNoRecordOfAnEmptySection) {
  ShaderText text;
  text.section(Kind::declarations);
  text.section(Kind::function, L"f");
  text.write(L"e\n");
  EXPECT_EQ(text.takeSections().size(), 1u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

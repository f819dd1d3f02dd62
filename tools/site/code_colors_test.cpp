#include "tools/site/code_colors.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::site {
namespace {

TEST(CodeColors, TellsWordsApart) {
  EXPECT_EQ(coloredCode("void a(float3 x, out float4x4 y) { return sfg_time * 1.5e-3 + floaty; }").html(),
            "<span class=\"type\">void</span> a(<span class=\"type\">float3</span> x, "
            "<span class=\"keyword\">out</span> <span class=\"type\">float4x4</span> y) { "
            "<span class=\"keyword\">return</span> <span class=\"ours\">sfg_time</span> * "
            "<span class=\"number\">1.5e-3</span> + floaty; }");
}

TEST(CodeColors, KeepsCommentsAndDirectivesWhole) {
  EXPECT_EQ(coloredCode("  #if 1 < 2\na # b // return <x>\n/* if\n*/ \"a b").html(),
            "  <span class=\"directive\">#if 1 &lt; 2</span>\na # b "
            "<span class=\"comment\">// return &lt;x&gt;</span>\n<span class=\"comment\">/* if\n*/</span> "
            "<span class=\"string\">&quot;a b</span>");
}

TEST(CodeColors, TakesWhatEndsTooEarly) {
  EXPECT_EQ(coloredCode("/*").html(), "<span class=\"comment\">/*</span>");
  EXPECT_EQ(coloredCode(".").html(), ".");
  EXPECT_EQ(coloredCode("").html(), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::site

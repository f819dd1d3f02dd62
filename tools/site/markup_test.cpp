#include "tools/site/markup.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::site {
namespace {

TEST(Markup, EscapesTextAndAttributes) {
  EXPECT_EQ(element("a", {{"href", "?q=\"<&"}}, "x < 'y' & z\x01\n").html(),
            "<a href=\"?q=&quot;&lt;&amp;\">x &lt; &#39;y&#39; &amp; z\n</a>");
}

TEST(Markup, NestsWithoutEscapingTwice) {
  Markup content("a&b");
  content << element("b", "c");
  EXPECT_EQ(element("p", content).html(), "<p>a&amp;b<b>c</b></p>");
}

TEST(Markup, WritesElementsWithoutContent) {
  EXPECT_EQ(element("img", {{"src", "a.png"}, {"alt", ""}}).html(), "<img src=\"a.png\" alt=\"\">");
  EXPECT_EQ(element("p", {{"hidden", ""}}).html(), "<p hidden></p>");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::site

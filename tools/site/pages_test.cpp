#include "tools/site/pages.h"

#include <gmock/gmock.h>

#include "tools/site/fragment_graph.h"

namespace TolmSDK::Graphics::sfg::site {
namespace {

using testing::HasSubstr;
using testing::Not;

Site smallSite() {
  Site site;
  site.title = "Ours";
  site.fragments.resize(2);
  Fragment& tint = site.fragments[0];
  tint.name = "tint";
  tint.description = "Colours <all> & more.";
  tint.source = "Blinn 1977";
  tint.topic = "color";
  tint.place = "color.fraglib, line 3";
  tint.ports = {{Port::Role::input, "a", "float3", "Colour", "what is tinted", "color", "linear", "(1, 0, 0)",
                 "0 to 1", "0.1"},
                {Port::Role::output, "result", "float3", "", "", "", "", "", "", ""}};
  tint.profiles = {{"default", "100", "dx11", "", {"own.h", "gone.h"}, "void tint(float3 a)\n"}};
  tint.pictures = {{"pictures/tint-100.png", "level 100"}};
  tint.examples = {0};
  site.fragments[1].name = "Tint";
  site.fragments[1].topic = "color";
  site.includes = {{"own.h", "// own\n"}};
  Example ball;
  ball.name = "main";
  ball.text = "{}";
  ball.fragments = {"tint"};
  site.examples = {ball};
  return site;
}

TEST(Pages, HaveOneForEachFragmentAndIncludeFile) {
  std::vector<std::string> names;
  for (const auto& [name, bytes] : pagesOf(smallSite())) names.push_back(name);
  EXPECT_THAT(names, testing::ElementsAre("fragments/Tint-2.html", "fragments/tint.html", "gallery.html",
                                          "includes.html", "includes/own-h.html", "index.html", "search.js",
                                          "style.css"));
}

TEST(Pages, TellAllOfAFragment) {
  const std::string text = pagesOf(smallSite()).at("fragments/tint.html");
  EXPECT_THAT(text, HasSubstr("<h1>tint</h1><p class=\"lead\">Colours &lt;all&gt; &amp; more.</p>"));
  EXPECT_THAT(text, HasSubstr("<img src=\"../pictures/tint-100.png\" alt=\"tint, level 100\""));
  EXPECT_THAT(text, HasSubstr("<h2>Inputs</h2>"));
  EXPECT_THAT(text, HasSubstr("<th scope=\"row\"><code>a</code> <small>Colour</small></th>"
                              "<td><code>float3</code></td><td>(1, 0, 0)</td><td>0 to 1, step 0.1</td>"
                              "<td>color, linear</td><td>what is tinted</td>"));
  EXPECT_THAT(text, HasSubstr("<h2>Outputs</h2>"));
  EXPECT_THAT(text, Not(HasSubstr("<h2>Uniforms</h2>")));
  EXPECT_THAT(text, HasSubstr("Includes: <a href=\"../includes/own-h.html\">own.h</a> <code>gone.h</code>"));
  EXPECT_THAT(text, HasSubstr("<span class=\"type\">void</span> tint("));
  EXPECT_THAT(text, HasSubstr("<a href=\"../gallery.html#example-main\">main</a>"));
  EXPECT_THAT(text, HasSubstr("<h2>Source</h2><p>Blinn 1977</p>"));
  EXPECT_THAT(text, HasSubstr("color.fraglib, line 3"));
}

TEST(Pages, SearchReadsNamesDescriptionsAndTopics) {
  EXPECT_THAT(pagesOf(smallSite()).at("index.html"),
              HasSubstr("<li data-words=\"tint colours &lt;all&gt; &amp; more. color\">"));
}

TEST(Pages, GiveEachNameAFileOfItsOwn) {
  std::map<std::string, int> taken;
  EXPECT_EQ(fileNameOf("a/b", taken), "a-b");
  EXPECT_EQ(fileNameOf("A-B", taken), "A-B-2");
  EXPECT_EQ(fileNameOf("a-b-2", taken), "a-b-2-2");
  EXPECT_EQ(fileNameOf("", taken), "-");
  EXPECT_EQ(fileNameOf("../..", taken), "-----");
}

Fragment noise() {
  Fragment fragment;
  fragment.name = "noise";
  fragment.ports = {{Port::Role::input, "p", "float3", "", "", "position", "", "", "", ""},
                    {Port::Role::output, "result", "float", "", "", "", "", "", "", ""}};
  fragment.profiles.resize(1);
  return fragment;
}

TEST(FragmentGraph, ShowsTheFirstOutput) {
  EXPECT_EQ(graphShowing(noise(), false),
            R"({"inputs":[],"nodes":[{"fragment":"noise","name":"shown"}],)"
            R"("outputs":[{"name":"color","node":"shown","output":"result","type":"float"}]})");
}

TEST(FragmentGraph, FeedsPlaces) {
  EXPECT_EQ(graphShowing(noise(), true),
            R"({"inputs":[{"name":"position","type":"float3"}],)"
            R"("nodes":[{"fragment":"noise","inputs":{"p":{"graphInput":"position"}},"name":"shown"}],)"
            R"("outputs":[{"name":"color","node":"shown","output":"result","type":"float"}]})");
}

TEST(FragmentGraph, GivesExpressionsTheirPorts) {
  Fragment fragment = noise();
  fragment.profiles[0].mode = "inline";
  EXPECT_THAT(graphShowing(fragment, false).value(),
              HasSubstr(R"("interface":{"inputs":[{"name":"p","type":"float3"}],"outputs":[{"name":)"));
}

TEST(FragmentGraph, ShowsNeitherStructuresNorNothing) {
  Fragment fragment = noise();
  fragment.ports[1].type = "sfg_Light";
  EXPECT_EQ(graphShowing(fragment, false), std::nullopt);
  fragment.ports.pop_back();
  EXPECT_EQ(graphShowing(fragment, false), std::nullopt);
  Fragment fixed = noise();
  fixed.ports[0].kind = "";
  EXPECT_EQ(graphShowing(fixed, true), std::nullopt);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::site

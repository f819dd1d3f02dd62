// Sites that the command writes.

#include <gmock/gmock.h>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

using testing::HasSubstr;

class DocsTest : public CommandTest {
protected:
  DocsTest() {
    write("lib/shades.fraglib", R"json({
  "shade": {
    "description": "Darkens.",
    "source": "Own",
    "ports": { "a": { "description": "how much", "value": 0.5, "min": 0.0, "max": [1.0] }, "result": "less" },
    "uniforms": [ { "name": "tint", "type": "float3", "value": [1, 0.5, 0], "min": [0, 0, 0], "description": "hue" } ],
    "profiles": [
      { "name": "default", "lod": 100, "language": ["dx11"], "includes": ["shades.h"],
        "predefine": [ "float half(float a) { return a / 2; }" ],
        "implementation": [ "void shade(float a, out float result)", "{", "  result = half(a);", "}" ] },
      { "name": "default", "lod": "20", "language": ["dx11"],
        "implementation": [ "void shade(float a, out float result)", "{", "  result = a;", "}" ] }
    ]
  }
})json");
    write("lib/shades.h", "// <shades>\n");
    write("graphs/dusk.json",
          R"({ "description": "Evening.", "nodes": [ { "name": "n", "fragment": "shade" } ],
      "outputs": [ { "name": "color", "type": "float", "node": "n" } ] })");
    write("graphs/none.json", "[]");
  }
  CommandRun docs(const std::string& more) const {
    return run("docs -L lib -I lib --no-standard-library --no-pictures -o site " + more);
  }
};

TEST_F(DocsTest, WritesAPageForEachFragment) {
  const CommandRun written = docs("--examples graphs --title Shades");
  EXPECT_EQ(written.err, "");
  EXPECT_EQ(written.out, "");
  EXPECT_EQ(written.status, 0);
  const std::string page = read("site/fragments/shade.html");
  EXPECT_THAT(page, HasSubstr("<title>shade - Shades</title>"));
  EXPECT_THAT(page, HasSubstr("<td><code>float</code></td><td>0.5</td><td>0 to 1</td>"));
  EXPECT_THAT(page, HasSubstr("<td><code>float3</code></td><td>(1, 0.5, 0)</td><td>at least 0</td>"
                              "<td></td><td>hue</td>"));
  EXPECT_THAT(page, HasSubstr("<td><code>float</code></td><td></td><td></td><td></td><td>less</td>"));
  EXPECT_THAT(page, HasSubstr("<h3>Profile default, level 100 (dx11)</h3>"));
  EXPECT_THAT(page, HasSubstr("<h3>Profile default, level 20 (dx11)</h3>"));
  EXPECT_THAT(page,
              HasSubstr("<span class=\"keyword\">return</span> a / <span class=\"number\">2</span>; }\n\n"
                        "<span class=\"type\">void</span> shade("));
  EXPECT_THAT(page, HasSubstr("<h2>Source</h2><p>Own</p>"));
  EXPECT_THAT(page, HasSubstr("<a href=\"../gallery.html#example-dusk\">dusk</a>"));
  EXPECT_THAT(read("site/includes/shades-h.html"), HasSubstr("// &lt;shades&gt;"));
  EXPECT_THAT(read("site/includes/shades-h.html"),
              HasSubstr("<a href=\"../fragments/shade.html\">shade</a>"));
  EXPECT_THAT(read("site/gallery.html"), HasSubstr("<h3>dusk</h3><p>Evening.</p>"));
  EXPECT_THAT(read("site/gallery.html"), testing::Not(HasSubstr("none")));
  EXPECT_THAT(read("site/index.html"), HasSubstr("<h2>shades</h2>"));
  EXPECT_FALSE(exists("site/pictures"));
}

TEST_F(DocsTest, HasNoGalleryWithoutExamples) {
  EXPECT_EQ(docs("").status, 0);
  EXPECT_FALSE(exists("site/gallery.html"));
  EXPECT_THAT(read("site/index.html"), testing::Not(HasSubstr("gallery")));
}

TEST_F(DocsTest, WritesWhatLoadsAndTellsTheRest) {
  write("lib/wrong.fraglib", R"({ "broken": { "language": ["dx11"] } })");
  const CommandRun written = docs("");
  EXPECT_EQ(written.status, 1);
  EXPECT_THAT(written.err, HasSubstr("lib/wrong.fraglib:1:13: "));
  EXPECT_TRUE(exists("site/fragments/shade.html"));
}

TEST_F(DocsTest, RefusesWrongFolders) {
  EXPECT_THAT(run("docs -o site --no-standard-library --no-pictures").err,
              HasSubstr("no folder of libraries is given (`-L DIR`)"));
  write("file", "");
  const CommandRun taken = run("docs -L lib --no-standard-library --no-pictures -o file");
  EXPECT_EQ(taken.status, 2);
  EXPECT_THAT(taken.err, HasSubstr("file: is not a folder"));
  const CommandRun gone = docs("--examples gone");
  EXPECT_EQ(gone.status, 2);
  EXPECT_THAT(gone.err, HasSubstr("gone: cannot be read as a folder"));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools

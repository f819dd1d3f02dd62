#include "sfg/host/source_map.h"

#include <algorithm>
#include <utility>

#include "host/origins/tone_fixture.h"
#include "host/shader/shader_assembly.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class SourceMapTest : public ToneFixture {
protected:
  void assemble(const char* graph) {
    job_ = collapsed(graph);
    assembled_ = assembleShader(*job_, ShaderStage::pixel, NameStyle::readable);
    text_ = toUtf8(std::as_const(assembled_.shader).getCompleteShader());
  }

  /// "KIND PLACE TOKEN FRAGMENT.INPUT by USERS" of the first place where the shader holds `token`.
  std::string told(const SourcePlace& place) const {
    constexpr const char* kKinds[] = {"unknown", "implementation", "predefine", "include",
                                      "node",    "input",          "assembly"};
    std::string text = kKinds[static_cast<std::size_t>(place.kind)];
    if (!place.file.empty()) {
      std::string where = place.place();
      const std::size_t folder = where.find(folder_.string());
      if (folder != where.npos) where.erase(folder, folder_.string().size() + 1);
      text += " " + where;
    }
    if (!place.isExact) text += " ~";
    if (!place.token.empty()) text += " `" + place.token + "`";
    if (!place.fragment.empty()) text += " " + place.fragment;
    if (!place.input.empty()) text += "." + place.input;
    for (const SourceUser& user : place.users) text += " by " + user.kind + " " + user.name;
    return text;
  }

  std::string found(const std::string& token) const {
    const std::size_t place = text_.find(token);
    if (place == std::string::npos) return "not in " + text_;
    const auto line = static_cast<std::size_t>(
        std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(place), '\n'));
    return told(SourceMap(*job_, assembled_).find(line + 1, place - text_.rfind('\n', place)));
  }

  std::unique_ptr<CollapseJob> job_;
  AssembledShader assembled_;
  std::string text_;
};

TEST_F(SourceMapTest, FindsCodeNodesAndInputs) {
  assemble(kTones);
  EXPECT_EQ(found("tone("), "predefine lib.fraglib:1:56 `tone` tint by node a by node b");
  EXPECT_EQ(found("color * tone"), "implementation lib.fraglib:2:98 `color` tint by node a by node b");
  EXPECT_EQ(found("* 0.5"), "implementation lib.fraglib:3:77 `*` half by node in");
  EXPECT_EQ(found("tint1(\n    float"), "implementation lib.fraglib:2:29 `tint` tint by node a by node b");
  EXPECT_EQ(found("tint1(\n        (in_x"), "node graph.json:5:5 tint by node a");
  EXPECT_EQ(found("in_x *"), "input graph.json:3:5 half.x by node in");
  EXPECT_EQ(found("result_n1_01,\n        color"), "input graph.json:6:61 tint.color by node b");
  EXPECT_EQ(found("sfg_PixelOutput"), "assembly ~");
}

TEST_F(SourceMapTest, KnowsNothingOutsideTheShader) {
  assemble(kTones);
  const SourceMap map(*job_, assembled_);
  EXPECT_EQ(told(map.find(0, 1)), "unknown ~");
  EXPECT_EQ(told(map.find(100000, 1)), "unknown ~");
  EXPECT_EQ(told(map.findUnbalanced()), "unknown ~");
}

TEST_F(SourceMapTest, NamesWhatIsNotClosed) {
  writeLibrary("{" + fragment("tint", "out float3 result", "result = (1;") + "}");
  assemble(R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "tint" } ] })");
  EXPECT_EQ(told(SourceMap(*job_, assembled_).findUnbalanced()),
            "implementation lib.fraglib:1:101 `(` tint by node a");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

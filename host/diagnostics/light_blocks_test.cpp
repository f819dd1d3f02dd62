#include "host/diagnostics/light_blocks.h"

#include <utility>

#include "host/test_job_fixture.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// "OFFSET TEXT" for code in which `(` and `)` stand for the markers.
std::string openIn(const std::string& shape, std::size_t lights) {
  WString code;
  for (const char c : shape) {
    if (c == '(') {
      code += L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
    } else if (c == ')') {
      code += L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";
    } else {
      code += static_cast<wchar_t>(c);
    }
  }
  const std::optional<OpenLightBlock> open = findOpenLightBlock(code, lights);
  return open ? std::to_string(open->place) + " " + open->text : std::string();
}

TEST(OpenLightBlockTest, IsSilentOnBlocksThatClose) {
  for (const char* const code : {"", "x", "(a)", "(a) b (c)", "(a))"}) {
    for (const std::size_t lights : {0u, 1u, 2u}) EXPECT_EQ(openIn(code, lights), "") << code;
  }
  EXPECT_EQ(openIn("(a(b))", 1), "");
  EXPECT_EQ(openIn("((a)", 0), "");
}

TEST(OpenLightBlockTest, NamesTheMarkerWithoutAnother) {
  const std::string noEnd =
      "`TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` has no `TOLM_VESSOR_LIGHT_AND_SHADOW_END` behind it";
  EXPECT_EQ(openIn("ab(c", 2), "2 " + noEnd);
  EXPECT_EQ(openIn("()(c", 0), "66 " + noEnd);
  EXPECT_EQ(openIn("(()", 1), "0 " + noEnd);
  const std::string noBegin = "`TOLM_VESSOR_LIGHT_AND_SHADOW_END` closes no light and shadow block";
  EXPECT_EQ(openIn("a)b(c)", 1), "1 " + noBegin);
  EXPECT_EQ(openIn("(a))b(c)", 2), "67 " + noBegin);
  EXPECT_EQ(
      openIn("((a))", 2),
      "34 `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` stands inside another light and shadow block, which only "
      "one light allows");
}

class LightBlocksTest : public JobFixture {
protected:
  std::string told(const std::string& members) const {
    writeLibrary("{ \"glow\": { \"mode\": \"metaSL\", \"language\": [\"dx11\"],\n" + members + " } }");
    const std::unique_ptr<CollapseJob> made = job(
        R"({ "outputs": [ { "name": "o", "type": "float3", "node": "a" } ], "nodes": [ { "name": "a", "fragment": "glow" } ] })");
    const std::optional<Diagnostic> found = findOpenLightBlock(*made);
    return found ? textOf({*found}) : std::string();
  }
};

TEST_F(LightBlocksTest, TellsThePlaceOfTheMarker) {
  EXPECT_EQ(told(R"json("implementation": [
    "void glow(out float3 result)", "{",
    "\tresult = 1.0;",
    "\tTOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN result += 1.0;",
    "}" ])json"),
            path("lib.fraglib") + ":5:8: fragment `glow`: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` has no "
                                  "`TOLM_VESSOR_LIGHT_AND_SHADOW_END` behind it\n");
  EXPECT_EQ(told(R"json("predefine": ["TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN"],
  "implementation": [ "void glow(out float3 result)", "{", "result = 1.0;", "}" ])json"),
            path("lib.fraglib") + ":2:16: fragment `glow`: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` has no "
                                  "`TOLM_VESSOR_LIGHT_AND_SHADOW_END` behind it\n");
}

TEST_F(LightBlocksTest, IsSilentOnSoundCode) {
  EXPECT_EQ(
      told(R"json("implementation": [ "void glow(out float3 result)", "{", "result = 1.0;", "}" ])json"), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

#include "host/lints/assignment_flow.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// `fill` writes its second argument, DIE and `END` are macros with a `return`, `n` is given from outside.
class Names : public IFlowNames {
public:
  bool mayWrite(std::wstring_view function, std::size_t argument) const override {
    return function == L"unknown" || (function == L"fill" && argument == 1);
  }
  bool isStatementMacro(std::wstring_view name) const override { return name == L"DIE"; }
  bool isUnknownValue(std::wstring_view name) const override { return name == L"n" || name == L"c"; }
};

std::vector<FlowOutput> outputs() {
  FlowOutput number;
  number.name = L"r";
  FlowOutput vector;
  vector.name = L"v";
  vector.isVector = true;
  vector.parts = {L"x", L"y", L"z"};
  FlowOutput structure;
  structure.name = L"s";
  structure.parts = {L"a", L"b"};
  return {number, vector, structure};
}

/// What is told of these outputs: "r: never", "v: parts 4", "s: at `return`", "r: at the end".
std::string told(const std::wstring& body, const std::wstring& names = L"r") {
  std::vector<FlowOutput> asked;
  for (const FlowOutput& output : outputs())
    if (names.find(output.name) != names.npos) asked.push_back(output);
  const CodeTokens tokens = tokensOf(body);
  const PlainCode code = plainCode(body, tokens);
  std::string text;
  for (const FlowFinding& finding : findUnassigned(code, 0, code.tokens.size(), asked, Names())) {
    const std::wstring_view name = asked[finding.output].name;
    if (!text.empty()) text += "; ";
    text += std::string(name.begin(), name.end()) + ": ";
    if (finding.kind == FlowFinding::Kind::never) text += "never";
    if (finding.kind == FlowFinding::Kind::parts) text += "parts " + std::to_string(finding.missing);
    if (finding.kind == FlowFinding::Kind::somewhere) {
      text +=
          finding.token == FlowFinding::kNowhere ? "at the end" : "at token " + std::to_string(finding.token);
    }
  }
  return text;
}

TEST(AssignmentFlow, AcceptsAnAssignment) {
  EXPECT_EQ(told(L"r = 1.0;"), "");
  EXPECT_EQ(told(L"{ { r = 1.0; } }"), "");
  EXPECT_EQ(told(L"float x = r = 1.0;"), "");
  EXPECT_EQ(told(L"r += 1.0;"), "");
  EXPECT_EQ(told(L"r <<= 1;"), "");
  EXPECT_EQ(told(L"++r;"), "");
  EXPECT_EQ(told(L"r--;"), "");
  EXPECT_EQ(told(L"r = 1.0"), "");
}

TEST(AssignmentFlow, MissesAnAssignment) {
  EXPECT_EQ(told(L""), "r: never");
  EXPECT_EQ(told(L"float x = r;"), "r: never");
  EXPECT_EQ(told(L"// r = 1.0;\n/* r = 2.0; */"), "r: never");
  EXPECT_EQ(told(L"log(\"r = 1;\");"), "r: never");
  EXPECT_EQ(told(L"a.r = 1.0; rr = 2.0;"), "r: never");
  EXPECT_EQ(told(L"bool b = r == 1.0; b = r <= 1.0; b = r >= 1.0; b = r != 1.0;"), "r: never");
  EXPECT_EQ(told(L"x = a + -r;"), "r: never");
}

TEST(AssignmentFlow, FollowsBranches) {
  EXPECT_EQ(told(L"if (c) r = 1.0; else r = 2.0;"), "");
  EXPECT_EQ(told(L"if (c) { r = 1.0; } else if (d) { r = 2.0; } else { r = 3.0; }"), "");
  EXPECT_EQ(told(L"if (c) { r = 1.0; }"), "r: at the end");
  EXPECT_EQ(told(L"if (c) { r = 1.0; } else if (d) { r = 2.0; }"), "r: at the end");
  EXPECT_EQ(told(L"if (c) x = 1.0; else r = 2.0;"), "r: at the end");
  EXPECT_EQ(told(L"r = 0.0; if (c) r = 1.0;"), "");
  EXPECT_EQ(told(L"if (c) if (d) r = 1.0; else r = 2.0; else r = 3.0;"), "");
  EXPECT_EQ(told(L"[branch] if (c) { r = 1.0; } else { r = 2.0; }"), "");
  EXPECT_EQ(told(L"if (fill(1, r)) { } else { }"), "");
}

TEST(AssignmentFlow, FollowsEarlyReturns) {
  EXPECT_EQ(told(L"if (c) { r = 1.0; return; } r = 2.0;"), "");
  EXPECT_EQ(told(L"if (c) return; r = 2.0;"), "r: at token 4");
  EXPECT_EQ(told(L"if (c) { r = 1.0; return; }"), "r: at the end");
  EXPECT_EQ(told(L"if (c) { return; } else { r = 1.0; }"), "r: at token 5");
  EXPECT_EQ(told(L"r = 1.0; return;"), "");
  EXPECT_EQ(told(L"if (c) discard; r = 1.0;"), "");
  EXPECT_EQ(told(L"if (c) { discard; } else { r = 1.0; }"), "");
}

TEST(AssignmentFlow, IsSilentAboutBranchesThatMayExcludeEachOther) {
  EXPECT_EQ(told(L"if (c) r = 1.0; if (!c) r = 2.0;"), "");
  EXPECT_EQ(told(L"if (c) r = 1.0; if (!c) discard;"), "");
  // But not about what none of them assigns.
  EXPECT_EQ(told(L"if (c) v.x = 1.0; if (!c) v.y = 2.0;", L"v"), "v: parts 4");
}

TEST(AssignmentFlow, FollowsLoops) {
  EXPECT_EQ(told(L"for (int i = 0; i < n; ++i) { r = 1.0; }"), "r: at the end");
  EXPECT_EQ(told(L"while (x < n) r = 1.0;"), "r: at the end");
  EXPECT_EQ(told(L"[loop] for (int i = 0; i < 4; ++i) { r = 1.0; }"), "");
  EXPECT_EQ(told(L"for (int i = 0; i < COUNT; ++i) r = 1.0;"), "");
  EXPECT_EQ(told(L"do { r = 1.0; } while (c);"), "");
  EXPECT_EQ(told(L"do x = 1.0; while (c); r = 2.0;"), "");
  EXPECT_EQ(told(L"for (r = 0.0; r < n; r += 1.0) { }"), "");
  EXPECT_EQ(told(L"while (true) { if (c) { r = 1.0; break; } }"), "");
  EXPECT_EQ(told(L"for (;;) { if (c) { r = 1.0; return; } }"), "");
  EXPECT_EQ(told(L"for (int i = 0; i < 4; ++i) { if (i == n) { r = 1.0; return; } }"), "r: at the end");
  EXPECT_EQ(told(L"for (int i = 0; i < n; ++i) { if (c) continue; x = 1.0; } r = x;"), "");
}

TEST(AssignmentFlow, FollowsSwitches) {
  EXPECT_EQ(told(L"switch (n) { case 0: r = 1.0; break; default: r = 2.0; }"), "");
  EXPECT_EQ(told(L"switch (n) { case 0: case 1: r = 1.0; break; default: { r = 2.0; break; } }"), "");
  EXPECT_EQ(told(L"switch (n) { case 0: r = 1.0; break; case 1: r = 2.0; break; }"), "r: at the end");
  EXPECT_EQ(told(L"switch (n) { case 0: r = 1.0; break; default: break; }"), "r: at the end");
  EXPECT_EQ(told(L"switch (n) { case 0: r = 1.0; return; default: r = 2.0; break; }"), "");
  EXPECT_EQ(told(L"switch (n) { case 0: if (c) { break; } r = 1.0; break; default: r = 2.0; }"),
            "r: at the end");
  EXPECT_EQ(told(L"switch (n) { default: for (;;) { break; } r = 1.0; }"), "");
}

TEST(AssignmentFlow, CountsComponents) {
  EXPECT_EQ(told(L"v.xy = 1.0; v.z = 2.0;", L"v"), "");
  EXPECT_EQ(told(L"v.rgb = 1.0;", L"v"), "");
  EXPECT_EQ(told(L"v[0] = 1.0; v[1] = 1.0; v[2] = 1.0;", L"v"), "");
  EXPECT_EQ(told(L"for (int i = 0; i < 3; ++i) v[i] = 1.0;", L"v"), "");
  EXPECT_EQ(told(L"v.xy = 1.0;", L"v"), "v: parts 4");
  EXPECT_EQ(told(L"v.x = 1.0; v.z = v.y;", L"v"), "v: parts 2");
  EXPECT_EQ(told(L"v.x = 1.0; if (c) v.yz = 2.0;", L"v"), "v: at the end");
}

TEST(AssignmentFlow, CountsMembers) {
  EXPECT_EQ(told(L"s.a = 1.0; s.b.x = 2.0;", L"s"), "");
  EXPECT_EQ(told(L"s = t;", L"s"), "");
  EXPECT_EQ(told(L"s.a = 1.0;", L"s"), "s: parts 2");
  EXPECT_EQ(told(L"s.inherited = 1.0;", L"s"), "");
  EXPECT_EQ(told(L"s.a[2].z = 1.0; s.b[i] = 2.0;", L"s"), "");
}

TEST(AssignmentFlow, CountsArgumentsThatCallsWrite) {
  EXPECT_EQ(told(L"fill(1.0, r);"), "");
  EXPECT_EQ(told(L"fill(r, 1.0);"), "r: never");
  EXPECT_EQ(told(L"fill(g(1.0, 2.0), v.xyz);", L"v"), "");
  EXPECT_EQ(told(L"fill(1.0, r + 1.0);"), "r: never");
  EXPECT_EQ(told(L"image.GetDimensions(r);"), "");
  EXPECT_EQ(told(L"unknown(r);"), "");
  EXPECT_EQ(told(L"if (c) fill(1.0, r);"), "r: at the end");
}

TEST(AssignmentFlow, IsSilentWhereItLosesItsWay) {
  EXPECT_EQ(told(L"DIE; "), "");
  EXPECT_EQ(told(L"log(\"// \"); x"), "");
  EXPECT_EQ(told(L"if (c) { r = 1.0;"), "");
  EXPECT_EQ(told(L"if c r = 1.0;"), "");
  EXPECT_EQ(told(L"} r = 1.0; if (c) return;"), "");
  EXPECT_EQ(told(L"else r = 1.0;"), "");
  EXPECT_EQ(told(L"break; r = 1.0;"), "");
  EXPECT_EQ(told(L"#ifdef A\nif (c) r = 1.0;\n#endif"), "");
  EXPECT_EQ(told(L"if (c) { float r = 1.0; }"), "r: at the end");
  // What nothing assigns at all is certain.
  EXPECT_EQ(told(L"#ifdef A\nif (c) x = 1.0;\n#endif"), "r: never");
}

TEST(AssignmentFlow, PassesOverLightMarkers) {
  EXPECT_EQ(
      told(L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN if (c) { x = 1; } TOLM_VESSOR_LIGHT_AND_SHADOW_END r = 1;"),
      "");
}

TEST(AssignmentFlow, TellsOfEachOutputOnceInTheirOrder) {
  EXPECT_EQ(told(L"if (c) return; if (d) return; s.a = 1.0;", L"rvs"), "r: never; v: never; s: parts 2");
  EXPECT_EQ(told(L"if (c) return; if (d) return; r = 1.0; v = 1.0;", L"rv"), "r: at token 4; v: at token 4");
}

TEST(AssignmentFlow, IsLinearAndNeedsNoStack) {
  const auto work = [](const std::wstring& piece, const std::wstring& end) {
    return test::costGrowth(2000, [&](std::size_t count) {
      std::wstring body;
      for (std::size_t i = 0; i < count; ++i) body += piece;
      body += end;
      told(body, L"rvs");
    });
  };
  EXPECT_LT(work(L"if (c) { ", L"r = 1.0;"), test::kLinearGrowth);
  EXPECT_LT(work(L"if (c) r = 1.0; else ", L"r = 1.0;"), test::kLinearGrowth);
  EXPECT_LT(work(L"f(", L"r"), test::kLinearGrowth);
  EXPECT_LT(work(L"switch (n) { case 0: ", L"break;"), test::kLinearGrowth);
  EXPECT_LT(work(L"r = v.x;\n", L""), test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

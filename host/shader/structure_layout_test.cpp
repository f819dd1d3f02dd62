#include "host/shader/structure_layout.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// "NAME@OFFSET+SIZE " for each member, those of structures in braces, then the size; "none" without a
/// layout.
std::string written(const std::vector<InterfaceMember>& members) {
  std::string text;
  for (const InterfaceMember& member : members) {
    text += member.name + "@" + std::to_string(member.offset) + "+" + std::to_string(member.size) + " ";
    if (!member.members.empty()) text += "{ " + written(member.members) + "} ";
  }
  return text;
}

std::string layout(const WString& text, const WString& name = L"S") {
  const std::optional<StructureLayout> made = StructureLayouts(text).find(name);
  return made ? written(made->members) + "= " + std::to_string(made->size) : "none";
}

TEST(StructureLayout, FollowsTheRulesOfBuffers) {
  EXPECT_EQ(layout(L"struct S { float a; float2 b; float3 c; float d; bool e; uint4 f; };"),
            "a@0+4 b@8+8 c@16+12 d@28+4 e@32+4 f@48+16 = 64");
}

TEST(StructureLayout, GivesColumnsAndElementsRegisters) {
  EXPECT_EQ(layout(L"struct S { float2x3 a; float b; int c[3]; float d; };"),
            "a@0+48 b@48+4 c@64+48 d@112+4 = 128");
}

TEST(StructureLayout, NestsStructures) {
  EXPECT_EQ(layout(L"struct Inner { float2 x; };\nstruct S { float a; Inner b; float c; };"),
            "a@0+4 b@16+16 { x@0+8 } c@32+4 = 48");
}

TEST(StructureLayout, PassesOverCommentsAndReadsLists) {
  EXPECT_EQ(layout(L"// struct S { int x; };\nstruct S { /* a */ float a, b; // c\n float c; };"),
            "a@0+4 b@4+4 c@8+4 = 16");
}

TEST(StructureLayout, IsNoneForWhatIsNotUnderstood) {
  for (const wchar_t* text :
       {L"", L"struct T { float a; };", L"struct S { half a; };", L"struct S { float a[N]; };",
        L"struct S { float a[0]; };", L"struct S { float a[99999]; };", L"struct S { float5 a; };",
        L"struct S {\n#if X\nfloat a;\n#endif\n};", L"struct S { row_major float2x2 a; };", L"struct S { };",
        L"struct S { float a", L"struct S { int2x2 a; };", L"struct S", L"struct S { S s; };",
        L"struct S { float a : COLOR; };"}) {
    EXPECT_EQ(layout(text), "none") << "case";
  }
}

TEST(StructureLayout, EndsForStructuresThatDoubleAtEachLevel) {
  WString text;
  for (int i = 0; i < 30; ++i) {
    const WString next = L"S" + WString(std::to_wstring(i + 1).c_str());
    text += L"struct S" + WString(std::to_wstring(i).c_str()) + L" { " + next + L" a; " + next + L" b; };\n";
  }
  text += L"struct S30 { float x; };\n";
  EXPECT_EQ(layout(text, L"S0"), "none");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

#include "host/shader/predefine_parts.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

WString joined(const PredefineParts& parts, const std::vector<std::size_t>& places) {
  WString text;
  for (const std::size_t place : places) text += parts.all()[place].text;
  return text;
}

TEST(PredefineParts, LoseNoText) {
  const WString text =
      L"// one\nstruct A { float a; };\n#define B 1\nfloat f(A a)\n{\n  return a.a;\n}\n// end";
  PredefineParts parts(text);
  EXPECT_EQ(joined(parts, parts.takeRest()), text);
}

TEST(PredefineParts, TakeAStructureBehindThoseItIsMadeOf) {
  const WString text =
      L"struct Outer { Inner i; };\nstruct Other { float o; };\nstruct Inner { float a; };\n";
  PredefineParts parts(text);
  EXPECT_EQ(joined(parts, parts.takeStructures({L"Outer", L"Inner", L"Nothing"})),
            L"struct Inner { float a; };\nstruct Outer { Inner i; };\n");
  EXPECT_EQ(joined(parts, parts.takeRest()), L"struct Other { float o; };\n");
  EXPECT_TRUE(parts.takeRest().empty());
}

TEST(PredefineParts, TakeStructuresThatNameEachOtherOnce) {
  const WString text = L"struct A { B b; };\nstruct B { A a; };\n";
  PredefineParts parts(text);
  EXPECT_EQ(joined(parts, parts.takeStructures({L"A"})), L"struct B { A a; };\nstruct A { B b; };\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

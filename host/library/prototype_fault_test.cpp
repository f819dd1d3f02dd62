// Faults of a function's first line.

#include "host/library/prototype_fault.h"

#include <gtest/gtest.h>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// The line with `^` in front of the character that is meant, and what is told of it.
std::string told(const std::string& line) {
  const PrototypeFault fault = prototypeFault(fromUtf8(line));
  if (fault.text.empty()) return std::string();
  return std::string(line).insert(fault.index, "^") + ": " + fault.text;
}

TEST(PrototypeFaultTest, TellsNothingOfSoundLines) {
  for (const char* const line :
       {"void f()", "void f( )", "void f(float2 uv, out float3 result)", "void f(inout S s : TEXCOORD0)",
        "void f(const in Texture2D<float4> t, uniform unsigned int n /* = 4, */, row_major float4x4 m)",
        "void f(/* nothing */)", "void f(float a) {"}) {
    EXPECT_EQ(told(line), "") << line;
  }
}

TEST(PrototypeFaultTest, TellsTheFirstFaultAtItsCharacter) {
  EXPECT_EQ(told("void f"), "void ^f: `(` is missing behind the function's name");
  EXPECT_EQ(told("void (float a)"), "void ^(float a): the function has no name in front of `(`");
  EXPECT_EQ(told("void f(float a"), "void f^(float a: `(` is not closed");
  EXPECT_EQ(
      told("void f(float a, // firstout float r)"),
      "void f(float a, ^// firstout float r): this comment hides the parameters behind it: write it between "
      "`/*` and `*/`");
  EXPECT_EQ(told("void f(uv, out float3 r)"),
            "void f(^uv, out float3 r): the parameter `uv` needs a type and a name");
  EXPECT_EQ(told("void f(float a, out r)"),
            "void f(float a, out ^r): the parameter `r` needs a type and a name");
  EXPECT_EQ(told("void f(float a, out)"), "void f(float a, ^out): `out` is no parameter");
  EXPECT_EQ(told("void f(float a,, out float r)"),
            "void f(float a^,, out float r): a parameter is missing behind `,`");
  EXPECT_EQ(told("void f(, float a)"), "void f(^, float a): a parameter is missing in front of `,`");
  EXPECT_EQ(told("void f(float a,)"), "void f(float a^,): a parameter is missing behind `,`");
  EXPECT_EQ(told("void f(float a = 1, out float r)"),
            "void f(float a ^= 1, out float r): a parameter has no value in the code; give it one as `value` "
            "in `ports`");
  EXPECT_EQ(told("void f(float a[2], out float r)"),
            "void f(float a^[2], out float r): a parameter cannot be an array");
  EXPECT_EQ(told("void f(float a; out float r)"),
            "void f(float a^; out float r): unexpected `;` in a parameter");
  EXPECT_EQ(told("void f(float a, float2 a)"),
            "void f(float a, float2 ^a): the name `a` is given to two parameters");
  EXPECT_EQ(told("void f(/*, */ float a out float r)"),
            "void f(/*, */ float a ^out float r): `,` is missing in front of `out`");
  EXPECT_EQ(told("void f(float a, ot float r)"),
            "void f(float a, ^ot float r): unexpected `ot`; did you mean `out`?");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

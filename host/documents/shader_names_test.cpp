#include "host/documents/shader_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(ShaderNamesTest, PassesIdentifiers) {
  for (const char* name : {"color", "c", "_x", "Albedo2", "sample", "output", "floats", "position"})
    EXPECT_EQ(nameFault(name, false), "") << name;
  EXPECT_EQ(nameFault("state.normal", true), "");
}

TEST(ShaderNamesTest, RefusesWordsOfTheLanguage) {
  EXPECT_EQ(nameFault("float", false), "`float` is a word of the shading language; did you mean `float_`?");
  EXPECT_EQ(nameFault("float4x4", true),
            "`float4x4` is a word of the shading language; did you mean `float4x4_`?");
  EXPECT_EQ(nameFault("return", false),
            "`return` is a word of the shading language; did you mean `return_`?");
}

TEST(ShaderNamesTest, RefusesWhatIsNoIdentifier) {
  EXPECT_EQ(nameFault("color; } void evil() {", false),
            "`color; } void evil() {` is no identifier; did you mean `color_void_evil`?");
  EXPECT_EQ(nameFault("base color", false), "`base color` is no identifier; did you mean `base_color`?");
  EXPECT_EQ(nameFault("2nd", false), "`2nd` is no identifier; did you mean `_2nd`?");
  EXPECT_EQ(nameFault("float!", false), "`float!` is no identifier; did you mean `float_`?");
  EXPECT_EQ(nameFault("f\u00e4rbe", false), "`f\u00e4rbe` is no identifier; did you mean `f_rbe`?");
  EXPECT_EQ(nameFault("%", false), "`%` is no identifier");
  EXPECT_EQ(nameFault("a.b", false), "`a.b` is no identifier; did you mean `a_b`?");
  EXPECT_EQ(nameFault("a.", true), "`a.` is no identifier; did you mean `a`?");
  EXPECT_EQ(nameFault("a..b", true), "`a..b` is no identifier; did you mean `a_b`?");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

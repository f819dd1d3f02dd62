#include "host/diagnostics/wire_types.h"

#include <gtest/gtest.h>

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

AParameter parameterOf(const TypeID& type, const WString& structure = WString()) {
  AParameter parameter(type, L"p");
  parameter.setStructName(structure);
  return parameter;
}

Fit fit(const TypeID& from, const TypeID& to, bool isWritten = false) {
  return fitOf(parameterOf(from), parameterOf(to), isWritten);
}

TEST(FitTest, FitsEqualTypesNumbersOfOneShapeAndScalarsIntoVectors) {
  for (const TypeID& type : allTypes()) EXPECT_EQ(fit(type, type), Fit::fits) << type.toString().c_str();
  EXPECT_EQ(fit(TypeID_int, TypeID_float), Fit::fits);
  EXPECT_EQ(fit(TypeID_bool, TypeID_uint), Fit::fits);
  EXPECT_EQ(fit(TypeID_ivec3, TypeID_fvec3), Fit::fits);
  EXPECT_EQ(fit(TypeID_fvec3, TypeID_uvec3), Fit::fits);
  EXPECT_EQ(fit(TypeID_float, TypeID_fvec4), Fit::fits);
  EXPECT_EQ(fit(TypeID_bool, TypeID_ivec2), Fit::fits);
}

TEST(FitTest, DropsComponentsOfVectors) {
  EXPECT_EQ(fit(TypeID_fvec3, TypeID_fvec2), Fit::drops);
  EXPECT_EQ(fit(TypeID_fvec4, TypeID_ivec3), Fit::drops);
}

TEST(FitTest, RefusesEverythingElse) {
  EXPECT_EQ(fit(TypeID_fvec2, TypeID_fvec3), Fit::not_);
  EXPECT_EQ(fit(TypeID_fvec3, TypeID_float), Fit::not_);
  EXPECT_EQ(fit(TypeID_float, TypeID_fmat3), Fit::not_);
  EXPECT_EQ(fit(TypeID_fmat4, TypeID_fmat3), Fit::not_);
  EXPECT_EQ(fit(TypeID_fmat2, TypeID_fvec4), Fit::not_);
  EXPECT_EQ(fit(TypeID_fvec4, TypeID_fmat2), Fit::not_);
  EXPECT_EQ(fit(TypeID_sampler2D, TypeID_samplerCube), Fit::not_);
  EXPECT_EQ(fit(TypeID_sampler2D, TypeID_fvec4), Fit::not_);
  EXPECT_EQ(fit(TypeID_fvec4, TypeID_struct), Fit::not_);
}

TEST(FitTest, ComparesStructuresByName) {
  EXPECT_EQ(fitOf(parameterOf(TypeID_struct, L"Lamp"), parameterOf(TypeID_struct, L"Lamp"), false),
            Fit::fits);
  EXPECT_EQ(fitOf(parameterOf(TypeID_struct, L"Lamp"), parameterOf(TypeID_struct, L"Patch"), false),
            Fit::not_);
}

TEST(FitTest, AsksForTheVeryTypeOfWhatIsWritten) {
  EXPECT_EQ(fit(TypeID_float, TypeID_float, true), Fit::fits);
  EXPECT_EQ(fit(TypeID_int, TypeID_float, true), Fit::not_);
  EXPECT_EQ(fit(TypeID_fvec3, TypeID_fvec2, true), Fit::not_);
}

class WireTypesTest : public JobFixture {
protected:
  WireTypesTest() {
    writeLibrary("{ " + fragment("two", "out float2 result", "result = 0;") + ",\n" +
                 fragment("three", "out float3 result", "result = 0;") + ",\n" +
                 fragment("take3", "float3 a, out float3 result", "result = a;") + ",\n" +
                 fragment("take2", "float2 a, out float3 result", "result = 0;") + ",\n" +
                 fragment("write", "inout float a, out float3 result", "result = a;") + ",\n" +
                 fragment("whole", "out int result", "result = 1;") + ",\n" +
                 fragment("lamp", "out Lamp result", "result.c = 1;",
                          "\"predefine\": [\"struct Lamp { float c; };\"], ") +
                 ",\n" +
                 fragment("patch", "Patch p, out float3 result", "result = p.c;",
                          "\"predefine\": [\"struct Patch { float c; };\"], ") +
                 ",\n" +
                 fragment("join", "float2 xy, float z, out float3 result", "result = float3(xy, z);") +
                 ",\n" + fragment("foreign", "vec3 albedo, out float3 result", "result = 0;") + " }");
  }

  std::string errors(const std::string& graph) const {
    return textOf(findTypeErrors(*job(graph), Severity::error));
  }
  std::string dropped(const std::string& graph) const { return textOf(findDroppedComponents(*job(graph))); }
};

std::string wired(const std::string& source, const std::string& taker, const std::string& input) {
  return R"json({ "outputs": [ { "name": "c", "type": "float3", "node": "b" } ],
  "nodes": [ { "name": "a", "fragment": ")json" +
         source + "\" },\n{ \"name\": \"b\", \"fragment\": \"" + taker + "\", \"inputs\": { \"" + input +
         "\": { \"node\": \"a\" } } } ] }";
}

TEST_F(WireTypesTest, NamesBothPortsAndWhatConverts) {
  EXPECT_EQ(
      errors(wired("two", "take3", "a")),
      "graph.json:3:54: output `result` of node `a` of type `float2` does not fit input `a` of node `b` of "
      "type `float3`; fragments that convert are `take2`, `join`\n");
  EXPECT_EQ(errors(wired("three", "take3", "a")), "");
}

TEST_F(WireTypesTest, WarnsOfDroppedComponents) {
  EXPECT_EQ(errors(wired("three", "take2", "a")), "");
  EXPECT_EQ(
      dropped(wired("three", "take2", "a")),
      "graph.json:3:54: output `result` of node `a` of type `float3` is cut to input `a` of node `b` of type "
      "`float2`: its last component is dropped\n");
  EXPECT_EQ(dropped(wired("two", "take3", "a")), "");
}

TEST_F(WireTypesTest, ChecksInoutPortsAndStructures) {
  EXPECT_EQ(
      errors(wired("whole", "write", "a")),
      "graph.json:3:54: output `result` of node `a` of type `int` does not fit input `a` of node `b` of type "
      "`float`; it is `inout`, and takes its own type only\n");
  EXPECT_EQ(
      errors(wired("lamp", "patch", "p")),
      "graph.json:3:54: output `result` of node `a` of type `Lamp` does not fit input `p` of node `b` of "
      "type `Patch`\n");
}

TEST_F(WireTypesTest, ChecksGraphInputsAndOutputs) {
  EXPECT_EQ(
      errors(R"json({ "inputs": [ { "name": "uv", "type": "float2" } ],
  "outputs": [ { "name": "c", "type": "float4", "node": "a" }, { "name": "d", "type": "float2", "node": "a" } ],
  "nodes": [ { "name": "a", "fragment": "take3", "inputs": { "a": { "graphInput": "uv" } } } ] })json"),
      "graph.json:3:67: graph input `uv` of type `float2` does not fit input `a` of node `a` of type "
      "`float3`; fragments that convert are `take2`, `join`\n"
      "graph.json:2:16: output `result` of node `a` of type `float3` does not fit graph output `c` of type "
      "`float4`\n");
}

TEST_F(WireTypesTest, TellsTypesThatNothingDeclares) {
  EXPECT_EQ(errors(wired("three", "foreign", "albedo")),
            path("lib.fraglib") +
                ":10:70: fragment `foreign`: the type `vec3` of `albedo` is none of the "
                "language, and nothing declares it as a structure; did you mean `float3`?\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

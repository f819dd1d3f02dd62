// Small graphs with their whole results: each through the model and through the real tools.

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/model/real_collapse.h"
#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using model::ToolKind;
using test::TestScene;

struct Example {
  const char* name;
  ToolKind tool;
  void (*fill)(TestScene& scene);
  const char* expected;
};

std::ostream& operator<<(std::ostream& out, const Example& example) { return out << example.name; }

// ---- Calls of functions written before

void fillBlurs(TestScene& scene) {
  const auto blur = test::loadFragment(
      L"blur", test::functionJson(L"void blur(float f, float x, out float r)\n{\n// blur1(\n"
                                  L"float blur1x = x;\nsfg_shader(f, x, 2.0, r, r);\n}"));
  AShaderFragment* first = scene.add(*blur, L"n0");
  AShaderFragment* second = scene.add(*blur, L"n1");
  AShaderFragment* third = scene.add(*blur, L"n2");
  second->setInputConnection(L"f", first, L"r");
  third->setInputConnection(L"f", second, L"r");
  scene.output(L"color", TypeID_float, third);
}

constexpr const char* kBlurs =
    "void blur1(\n"
    "    float f,\n"
    "    float x,\n"
    "    out float r)\n"
    "{\n"
    "\t// blur1(\n"
    "\tfloat blur1x = x;\n"
    "\t;\n"
    "}\n"
    "void blur11(\n"
    "    float f,\n"
    "    float x,\n"
    "    out float r)\n"
    "{\n"
    "\t// blur11(\n"
    "\tfloat blur11x = x;\n"
    "\t    blur1(\n"
    "        fn0,\n"
    "        2.0,\n"
    "        r);\n"
    ";\n"
    "}\n"
    "void blur12(\n"
    "    float f,\n"
    "    float x,\n"
    "    out float r)\n"
    "{\n"
    "\t// blur12(\n"
    "\tfloat blur12x = x;\n"
    "\t    blur11(\n"
    "        state.shaderInput0,\n"
    "        2.0,\n"
    "        r);\n"
    ";\n"
    "}\n"
    "-- CollapsedFunction\n"
    "    float result_n1_01;\n"
    "    float result_n0_01;\n"
    "    state.shaderInput0 = fn1;\n"
    "    blur12(\n"
    "        fn2,\n"
    "        xn2,\n"
    "        color);\n"
    "--\n"
    "inputs:\n"
    "outputs: float|color\n"
    "profile: default 100.000000\n"
    "languages: dx11\n"
    "includes:\n"
    "state:\n"
    "custom state:\n"
    "result uniforms: float/fn0 float/xn0 float/fn1 float/xn1 float/fn2 float/xn2\n"
    "result inputs:\n"
    "result outputs:\n"
    "shader inputs: float\n";

// ---- Variables of inserted calls

AShaderFragment* addCalled(TestScene& scene) {
  return scene.addFunction(L"n0", L"void f(float x, out float r)\n{\nr = x;\n}");
}

void fillTwoUses(TestScene& scene) {
  AShaderFragment* called = addCalled(scene);
  AShaderFragment* caller = scene.addFunction(
      L"n1", L"void call(float f, out float r)\n{\nsfg_shader(f, x, 1.0);\nsfg_shader(f, x, 2.0);\n"
             L"if (true) {\nsfg_shader(f, x, 3.0);\n}\n}");
  caller->setInputConnection(L"f", called, L"r");
  scene.output(L"color", TypeID_float, caller);
}

constexpr const char* kCalled = "void f1(\n"
                                "    float x,\n"
                                "    out float r)\n"
                                "{\n"
                                "\tr = x;\n"
                                "}\n"
                                "void call1(\n"
                                "    float f,\n"
                                "    out float r)\n"
                                "{\n";

constexpr const char* kCallOfCall = "}\n"
                                    "-- CollapsedFunction\n"
                                    "    float result_n0_01;\n"
                                    "    call1(\n"
                                    "        fn1,\n"
                                    "        color);\n"
                                    "--\n"
                                    "inputs:\n"
                                    "outputs: float|color\n"
                                    "profile: default 100.000000\n"
                                    "languages: dx11\n"
                                    "includes:\n"
                                    "state:\n"
                                    "custom state:\n"
                                    "result uniforms: float/xn0 float/fn1\n"
                                    "result inputs:\n"
                                    "result outputs:\n"
                                    "shader inputs:\n";

constexpr const char* kTwoUses = "\tfloat result_n0_01_temp;\n"
                                 "    f1(\n"
                                 "        1.0,\n"
                                 "        result_n0_01_temp);\n"
                                 ";\n"
                                 "\tfloat result_n0_01_temp2;\n"
                                 "    f1(\n"
                                 "        2.0,\n"
                                 "        result_n0_01_temp2);\n"
                                 ";\n"
                                 "\tif (true) {\n"
                                 "\t\tfloat result_n0_01_temp;\n"
                                 "    f1(\n"
                                 "        3.0,\n"
                                 "        result_n0_01_temp);\n"
                                 ";\n"
                                 "\t}\n";

void fillUsesInComments(TestScene& scene) {
  AShaderFragment* called = addCalled(scene);
  AShaderFragment* caller = scene.addFunction(
      L"n1", L"void call(float f, out float r)\n{\n/* { sfg_shader(f, x, 1.0); */\nsfg_shader(f, x, 1.0);\n"
             L"}\n// sfg_shader(f, x, 1.0);\nsfg_shader(f, x, 1.0);\n}");
  caller->setInputConnection(L"f", called, L"r");
  scene.output(L"color", TypeID_float, caller);
}

constexpr const char* kUsesInComments = "\t/* { float result_n0_01_temp;\n"
                                        "    f1(\n"
                                        "        1.0,\n"
                                        "        result_n0_01_temp);\n"
                                        "; */\n"
                                        "\t\tfloat result_n0_01_temp;\n"
                                        "    f1(\n"
                                        "        1.0,\n"
                                        "        result_n0_01_temp);\n"
                                        ";\n"
                                        "\t}\n"
                                        "\t// float result_n0_01_temp;\n"
                                        "    f1(\n"
                                        "        1.0,\n"
                                        "        result_n0_01_temp);\n"
                                        ";\n"
                                        "\tfloat result_n0_01_temp2;\n"
                                        "    f1(\n"
                                        "        1.0,\n"
                                        "        result_n0_01_temp2);\n"
                                        ";\n";

// ---- Shader inputs that only the active profile has

void fillLateShaderInput(TestScene& scene) {
  const auto late = test::loadFragment(
      L"late", test::profilesJson(
                   {test::functionJson(L"void plain(float a, out float r)\n{\nr = a;\n}", LR"(,"lod":1)"),
                    test::functionJson(L"void call(float a, out float r)\n{\nsfg_shader(a, r, r);\n}")}));
  AShaderFragment* called = scene.addFunction(L"n0", L"void f(out float r)\n{\nr = 1;\n}");
  AShaderFragment* caller = scene.add(*late, L"n1");
  caller->setInputConnection(L"a", called, L"r");
  scene.output(L"color", TypeID_float, caller);
}

constexpr const char* kLateShaderInput = "void f1(\n"
                                         "    out float r)\n"
                                         "{\n"
                                         "\tr = 1;\n"
                                         "}\n"
                                         "void call2(\n"
                                         "    float a,\n"
                                         "    out float r)\n"
                                         "{\n"
                                         "\t    f1(\n"
                                         "        r);\n"
                                         ";\n"
                                         "}\n"
                                         "-- CollapsedFunction\n"
                                         "    float result_n0_01;\n"
                                         "    call2(\n"
                                         "        an1,\n"
                                         "        color);\n"
                                         "--\n"
                                         "inputs:\n"
                                         "outputs: float|color\n"
                                         "profile: default 100.000000\n"
                                         "languages: dx11\n"
                                         "includes:\n"
                                         "state:\n"
                                         "custom state:\n"
                                         "result uniforms: float/an1\n"
                                         "result inputs:\n"
                                         "result outputs:\n"
                                         "shader inputs:\n";

/// The second light's profile calls an input, a sampler, that the first light's profile reads; by then the
/// uniforms are written.
void fillLaterShaderInput(TestScene& scene) {
  const auto late = test::loadFragment(
      L"late",
      test::profilesJson(
          {test::functionJson(L"void plain(float a, out float r)\n{\nr = sfg_currentLight.x;\n}"),
           test::namedFunctionJson(
               L"PointLight",
               L"void call(float a, out float r)\n{\nsfg_shader(a, r, r);\nr = sfg_currentLight.x;\n}")}));
  AShaderFragment* called = scene.addFunction(L"n0", L"void f(out float r)\n{\nr = 1;\n}");
  AShaderFragment* caller = scene.addWithPorts(*late, L"n1", {test::parameter(TypeID_sampler2D, L"a")},
                                               {test::parameter(TypeID_float, L"r")});
  caller->setInputConnection(L"a", called, L"r");
  scene.output(L"color", TypeID_float, caller);
  scene.addLight(L"l0", test::functionJson(L"void lit(out Light r)\n{\nr.x = 1;\n}"));
  scene.addLight(L"l1", test::namedFunctionJson(L"PointLight", L"void lit(out Light r)\n{\nr.x = 2;\n}"));
}

constexpr const char* kLaterShaderInput =
    "void lit1(\n"
    "    out Light r)\n"
    "{\n"
    "\tr.x = 1;\n"
    "}\n"
    "void f1(\n"
    "    out float r)\n"
    "{\n"
    "\tr = 1;\n"
    "}\n"
    "void plain1(\n"
    "    float a,\n"
    "    default result_l0_01,\n"
    "    out float r)\n"
    "{\n"
    "\tr = result_l0_01.x;\n"
    "}\n"
    "void lit11(\n"
    "    out Light r)\n"
    "{\n"
    "\tr.x = 2;\n"
    "}\n"
    "void call2(\n"
    "    float a,\n"
    "    PointLight result_l1_01,\n"
    "    out float r)\n"
    "{\n"
    "\t    f1(\n"
    "        r);\n"
    ";\n"
    "\tr = result_l1_01.x;\n"
    "}\n"
    "-- AccumulatedLitSurface\n"
    "    float accumulate_n1_r = 0.0;\n"
    "    // ------------------------------------------------------------ \n"
    "    // Light 0 \n"
    "    // ------------------------------------------------------------ \n"
    "    Light result_l0_01;\n"
    "    lit1(\n"
    "        result_l0_01);\n"
    "    float result_n1_01;\n"
    "    float result_n0_01;\n"
    "    f1(\n"
    "        result_n0_01);\n"
    "    plain1(\n"
    "        result_n0_01,\n"
    "        result_l0_01,\n"
    "        result_n1_01);\n"
    "    accumulate_n1_r += result_n1_01;\n"
    "    // ------------------------------------------------------------ \n"
    "    // Light 1 \n"
    "    // ------------------------------------------------------------ \n"
    "    Light result_l1_01;\n"
    "    lit11(\n"
    "        result_l1_01);\n"
    "    float result_n1_02;\n"
    "    call2(\n"
    "        sfg_make_sampler2D(an1, sampler_an1),\n"
    "        result_l1_01,\n"
    "        result_n1_02);\n"
    "    accumulate_n1_r += result_n1_02;\n"
    "    output_0 = accumulate_n1_r;\n"
    "--\n"
    "inputs:\n"
    "outputs: float|output_0\n"
    "profile: default 100.000000\n"
    "languages: dx11\n"
    "includes: sfg_samplers.h\n"
    "state:\n"
    "custom state:\n"
    "result uniforms: sampler2D/an1\n"
    "result inputs:\n"
    "result outputs: float/color\n"
    "shader inputs:\n";

// ---- Outputs of the default collapse

void fillTwoOutputs(TestScene& scene) {
  AShaderFragment* f = scene.addFunction(L"n0", L"void f(out float r)\n{\nr = 1;\n}");
  scene.output(L"x", TypeID_float, f);
  scene.output(L"y", TypeID_float, f);
}

constexpr const char* kTwoOutputs = "void f1(\n"
                                    "    out float r)\n"
                                    "{\n"
                                    "\tr = 1;\n"
                                    "}\n"
                                    "-- CollapsedFunction\n"
                                    "    f1(\n"
                                    "        y);\n"
                                    "    x = y;\n"
                                    "--\n"
                                    "inputs:\n"
                                    "outputs: float|x float|y\n"
                                    "profile: default 100.000000\n"
                                    "languages: dx11\n"
                                    "includes:\n"
                                    "state:\n"
                                    "custom state:\n"
                                    "result uniforms:\n"
                                    "result inputs:\n"
                                    "result outputs:\n"
                                    "shader inputs:\n";

void fillExpressionOutputs(TestScene& scene) {
  AShaderFragment* f = scene.addInline(L"n0", L"{{a}} * 2", {L"a"});
  scene.output(L"x", TypeID_float, f);
  scene.output(L"y", TypeID_float, f);
}

constexpr const char* kExpressionOutputs = "-- CollapsedFunction\n"
                                           "    x = (an0 * 2);\n"
                                           "    y = (an0 * 2);\n"
                                           "--\n"
                                           "inputs:\n"
                                           "outputs: float|x float|y\n"
                                           "profile: default 100.000000\n"
                                           "languages: dx11\n"
                                           "includes:\n"
                                           "state:\n"
                                           "custom state:\n"
                                           "result uniforms: float/an0\n"
                                           "result inputs:\n"
                                           "result outputs:\n"
                                           "shader inputs:\n";

void fillSecondOutputOfAnExpression(TestScene& scene) {
  AShaderFragment* f = scene.addInline(L"n0", L"{{a}} * 2", {L"a"});
  f->addOutput(TypeID_float, L"second");
  scene.output(L"x", TypeID_float, f, 1);
}

// ---- Expressions called as shaders

void fillCalledExpression(TestScene& scene) {
  AShaderFragment* called = scene.addInline(L"n0", L"{{a}} * 2", {L"a"});
  AShaderFragment* caller =
      scene.addFunction(L"n1", L"void call(float f, out float r)\n{\nsfg_shader(f, {{a}}, 1.0);\n}");
  caller->setInputConnection(L"f", called, L"result");
  scene.output(L"color", TypeID_float, caller);
}

constexpr const char* kCalledExpression = "Failed to evaluate fragment!";

const std::string kTwoUsesText = std::string(kCalled) + kTwoUses + kCallOfCall;
const std::string kUsesInCommentsText = std::string(kCalled) + kUsesInComments + kCallOfCall;

class CollapseExamples : public ::testing::TestWithParam<Example> {
protected:
  CollapseExamples() { GetParam().fill(scene_); }
  TestScene scene_;
};

INSTANTIATE_TEST_SUITE_P(
    Each, CollapseExamples,
    ::testing::Values(
        Example{"DefinitionsCallWhatWasWrittenBefore", ToolKind::byDefault, fillBlurs, kBlurs},
        Example{"EachUseOfABlockHasItsVariable", ToolKind::byDefault, fillTwoUses, kTwoUsesText.c_str()},
        Example{"CommentsAreNoBlocks", ToolKind::byDefault, fillUsesInComments, kUsesInCommentsText.c_str()},
        Example{"LateShaderInputsAreMade", ToolKind::byDefault, fillLateShaderInput, kLateShaderInput},
        Example{"LateShaderInputsFollowWrittenUniforms", ToolKind::lightLoop, fillLaterShaderInput,
                kLaterShaderInput},
        Example{"OutputsOfOneFragmentOutputAreAssigned", ToolKind::byDefault, fillTwoOutputs, kTwoOutputs},
        Example{"ExpressionsAreAssigned", ToolKind::byDefault, fillExpressionOutputs, kExpressionOutputs},
        Example{"ExpressionsHaveOneOutput", ToolKind::byDefault, fillSecondOutputOfAnExpression,
                "Failed to evaluate fragment!"},
        Example{"ExpressionsAreNotCalled", ToolKind::byDefault, fillCalledExpression, kCalledExpression},
        Example{"ExpressionsAreNotCalledInTheLightLoop", ToolKind::lightLoop, fillCalledExpression, "null"}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(CollapseExamples, ByTheModel) {
  EXPECT_EQ(model::collapseByModel(GetParam().tool, scene_), GetParam().expected);
}

TEST_P(CollapseExamples, ByTheTools) {
  EXPECT_EQ(model::collapseReally(GetParam().tool, scene_), GetParam().expected);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

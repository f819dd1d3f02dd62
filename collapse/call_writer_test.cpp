#include "collapse/call_writer.h"

#include <gtest/gtest.h>

#include "sfg/shader_collapse_context.h"
#include "sfg/size_limit.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

constexpr std::wstring_view kSplit =
    L"void split(float a, float2 b, out float x, out float2 y)\n{\nx = a;\ny = b;\n}";

struct CallWriting : ::testing::Test {
  void SetUp() override {
    ASSERT_TRUE(context.initialize(scene.language, scene.environment, scene.graph, scene.options));
  }
  FragmentInstance& made(const AShaderFragment* fragment) {
    FragmentInstance& instance = context.getFragmentInstance(fragment);
    EXPECT_TRUE(instance.create(context, scene.language.get(), fragment));
    return instance;
  }
  std::string body() const { return toUtf8(context.getResultProfile()->getFunctionBody()); }
  std::string predefines() const { return toUtf8(context.getResultProfile()->predefines()); }

  TestScene scene;
  AShaderCollapseContext context;
  CallWriter writer{context};
  WString value;
};

// Declarations.

TEST_F(CallWriting, DeclaresEveryOutputOnce) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  EXPECT_TRUE(writer.declareOutputs(instance));
  EXPECT_TRUE(writer.declareOutputs(instance));
  EXPECT_EQ(body(), "    float result_n_01;\n    float2 result_n_11;\n");
}

TEST_F(CallWriting, DeclaresTheOutputsThatHaveNoValueAndNamesThem) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  Array<WString> values = {L"", L"color"};
  EXPECT_TRUE(writer.declareOutputs(instance, values));
  EXPECT_EQ(body(), "    float result_n_01;\n");
  EXPECT_EQ(values, (Array<WString>{L"result_n_01", L"color"}));
}

TEST_F(CallWriting, DeclaresNothingWhenAValueBelongsToNoOutput) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  Array<WString> values = {L"", L"", L"color"};
  EXPECT_FALSE(writer.declareOutputs(instance, values));
  EXPECT_EQ(body(), "");
}

// Input values.

TEST_F(CallWriting, TakesTheOutputsOfASource) {
  const FragmentInstance& source = made(scene.addFunction(L"n", kSplit));
  EXPECT_TRUE(writer.writeOutputOf(value, source, 1));
  EXPECT_EQ(value, L"result_n_11");
  value.clear();
  EXPECT_FALSE(writer.writeOutputOf(value, source, 2));
  EXPECT_EQ(value, L"");
}

TEST_F(CallWriting, TakesTheUniformOfAnOpenInput) {
  const FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  EXPECT_TRUE(writer.writeOpenInput(value, instance, 1));
  EXPECT_EQ(value, L"bn");
}

TEST_F(CallWriting, TakesTheGraphInputThatFeedsAnInput) {
  scene.graph->addInput(TypeID_fvec2, L"uv");
  AShaderFragment* fragment = scene.addFunction(L"n", kSplit);
  ASSERT_TRUE(fragment->setInputConnection(std::size_t{1}, std::size_t{0}));
  const FragmentInstance& instance = made(fragment);
  EXPECT_TRUE(writer.writeOpenInput(value, instance, 1));
  EXPECT_EQ(value, L"uv");
}

TEST_F(CallWriting, MakesTheUniformOfACalledInputLate) {
  AShaderFragment* source = scene.addFunction(L"s", kSplit);
  AShaderFragment* fragment = scene.addFunction(L"n", kSplit);
  fragment->setInputConnection(std::size_t{0}, source, 0);
  made(source);
  const FragmentInstance& instance = made(fragment);
  EXPECT_EQ(instance.findInputUniform(0), nullptr);
  EXPECT_TRUE(writer.writeCalledInput(value, instance, 0));
  EXPECT_EQ(value, L"an");
  ASSERT_NE(instance.findInputUniform(0), nullptr);
  EXPECT_EQ(instance.findInputUniform(0)->getName(), L"an");
  EXPECT_FALSE(writer.writeCalledInput(value, instance, 2));
}

// Calls.

TEST_F(CallWriting, WritesRequirementsDefinitionAndCallOnce) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(writer.write(instance, {L"1.0", L"uv"}));
  EXPECT_EQ(predefines(), "void split1(\n    float a,\n    float2 b,\n    out float x,\n    out float2 y)\n"
                          "{\n\tx = a;\n\ty = b;\n}\n");
  EXPECT_EQ(body(), "    split1(\n        1.0,\n        uv,\n        result_n_01,\n        result_n_11);\n");
  ASSERT_EQ(context.getResult()->getNumUniforms(), 2u);
  EXPECT_EQ(context.getResult()->getUniform(0)->getName(), L"an");
  EXPECT_EQ(context.getResult()->getUniform(1)->getName(), L"bn");
}

TEST_F(CallWriting, PassesOtherNamesForTheOutputs) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  EXPECT_TRUE(writer.write(instance, {L"1.0", L"uv"}, {L"color", L"rest"}));
  EXPECT_EQ(body(), "    split1(\n        1.0,\n        uv,\n        color,\n        rest);\n");
}

TEST_F(CallWriting, WritesTheNamesOfEachInstanceOneAfterTheOther) {
  FragmentInstance& two = made(scene.addFunction(L"two", kSplit));
  FragmentInstance& one = made(scene.addFunction(L"one", L"void set(out float x)\n{\nx = 1.0;\n}"));
  EXPECT_TRUE(writer.write(two, {L"a", L"b"}));
  EXPECT_TRUE(writer.write(one, {}));
  EXPECT_EQ(body(), "    split1(\n        a,\n        b,\n        result_two_01,\n        result_two_11);\n"
                    "    set1(\n        result_one_01);\n");
}

TEST_F(CallWriting, WritesNothingForAnotherNumberOfInputs) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  EXPECT_FALSE(writer.write(instance, {L"1.0"}));
  EXPECT_EQ(predefines(), "");
  EXPECT_EQ(body(), "");
  EXPECT_EQ(context.getResult()->getNumUniforms(), 0u);
}

TEST_F(CallWriting, GivesAnExpressionItsValueAndWritesNoCall) {
  FragmentInstance& instance = made(scene.addInline(L"n", L"{{a}} * 2.0", {L"a"}));
  EXPECT_TRUE(writer.write(instance, {L"gain"}));
  EXPECT_EQ(body(), "");
  EXPECT_TRUE(writer.writeOutputOf(value, instance, 0));
  EXPECT_EQ(value, L"(gain * 2.0)");
}

TEST_F(CallWriting, RefusesACallBeyondTheSizeLimitBeforeItIsWritten) {
  FragmentInstance& instance = made(scene.addFunction(L"n", kSplit));
  context.getResultProfile()->getFunctionBody().resize(kMaximumTextLength - 1, L' ');
  try {
    writer.write(instance, {L"1.0", L"uv"});
    FAIL();
  } catch (const Exception& error) {
    EXPECT_EQ(error.getMessage(), L"sfgError : the generated code is too large!");
  }
  EXPECT_EQ(context.getResultProfile()->getFunctionBody().size(), kMaximumTextLength - 1);
}

// Shader functions.

struct ShaderCalling : CallWriting {
  /// Calls `f` for its first output; the second one and `b` are its own business.
  FragmentInstance& madeCaller(AShaderFragment& source) {
    AShaderFragment* fragment = scene.addFunction(
        L"caller", L"void caller(float f, out float r)\n{\nsfg_shader(f, a, 3.0, x, r);\n}");
    fragment->setInputConnection(std::size_t{0}, &source, 0);
    return made(fragment);
  }
};

TEST_F(ShaderCalling, HandsInputsOverThroughTheStateAndReplacesTheUse) {
  AShaderFragment* source = scene.addFunction(L"s", kSplit);
  scene.graph->addInput(TypeID_fvec2, L"uv");
  ASSERT_TRUE(source->setInputConnection(std::size_t{1}, std::size_t{0}));
  FragmentInstance& called = made(source);
  FragmentInstance& calling = madeCaller(*source);
  FragmentProfileInstance& caller = *calling.getActiveProfileInstance();
  ShaderUses uses{{}, &caller.getShaderReplacePattern(), &caller};
  ASSERT_TRUE(caller.GetShaderFunctions(0, uses.calls));

  Array<WString> inputs = {L"as", L"uv"};
  EXPECT_TRUE(writer.writeShaderFunction(called, inputs, uses));
  EXPECT_EQ(inputs, (Array<WString>{L"as", L"state.shaderInput0"}));
  EXPECT_EQ(context.getShaderInputTypes(), Array<WString>{L"float2"});
  EXPECT_EQ(body(), "    state.shaderInput0 = uv;\n");

  EXPECT_TRUE(writer.write(calling, {L"fcaller"}));
  EXPECT_NE(predefines().find("float2 result_s_11_temp;\n"
                              "    split1(\n        3.0,\n        state.shaderInput0,\n        r,\n"
                              "        result_s_11_temp);\n"),
            std::string::npos)
      << predefines();
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

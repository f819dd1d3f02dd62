#include "sfg/shader_collapse_tool_default.h"

#include <gtest/gtest.h>

#include "tests/support/collapse.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::collapseDefault;
using test::collapseWith;
using test::TestScene;

constexpr std::wstring_view kScale = L"void scale(float a, float k, out float result)\n{\nresult = a * k;\n}";
constexpr std::wstring_view kSum = L"void add(float a, float b, out float result)\n{\nresult = a + b;\n}";
constexpr std::wstring_view kOne = L"void one(out float result)\n{\nresult = 1.0;\n}";
constexpr std::wstring_view kSplit =
    L"void split(float2 v, out float x, out float y, out float sum)\n{\nx = v.x;\n}";

TEST(DefaultCollapse, WritesSourcesInFrontOfTheirConsumer) {
  TestScene scene;
  scene.graph->addInput(TypeID_float, L"x");
  AShaderFragment* inner = scene.addFunction(L"n0", kScale);
  AShaderFragment* outer = scene.addFunction(L"n1", kSum);
  ASSERT_TRUE(inner->setInputConnection(L"a", L"x"));
  ASSERT_TRUE(outer->setInputConnection(L"a", inner, L"result"));
  scene.output(L"color", TypeID_float, outer);
  EXPECT_EQ(collapseDefault(scene), R"(void scale1(
    float a,
    float k,
    out float result)
{
	result = a * k;
}
void add1(
    float a,
    float b,
    out float result)
{
	result = a + b;
}
void CollapsedFunction(
    float x,
    out float color)
{
    float result_n0_01;
    scale1(
        x,
        kn0,
        result_n0_01);
    add1(
        result_n0_01,
        bn1,
        color);
}
uniforms: float/kn0 float/bn1
)");
}

TEST(DefaultCollapse, WritesASharedNodeOnce) {
  TestScene scene;
  AShaderFragment* one = scene.addFunction(L"n0", kOne);
  AShaderFragment* twice = scene.addFunction(L"n1", kSum);
  twice->setInputConnection(L"a", one, L"result");
  twice->setInputConnection(L"b", one, L"result");
  scene.output(L"color", TypeID_float, twice);
  EXPECT_EQ(collapseDefault(scene), R"(void one1(
    out float result)
{
	result = 1.0;
}
void add1(
    float a,
    float b,
    out float result)
{
	result = a + b;
}
void CollapsedFunction(
    out float color)
{
    float result_n0_01;
    one1(
        result_n0_01);
    add1(
        result_n0_01,
        result_n0_01,
        color);
}
)");
}

TEST(DefaultCollapse, WritesOneFunctionForTwoUsesOfAFragment) {
  TestScene scene;
  AShaderFragment* a = scene.addFunction(L"n0", kScale);
  AShaderFragment* b = scene.addFunction(L"n1", kScale);
  b->setInputConnection(L"a", a, L"result");
  scene.output(L"color", TypeID_float, b);
  EXPECT_EQ(collapseDefault(scene), R"(void scale1(
    float a,
    float k,
    out float result)
{
	result = a * k;
}
void CollapsedFunction(
    out float color)
{
    float result_n0_01;
    scale1(
        an0,
        kn0,
        result_n0_01);
    scale1(
        result_n0_01,
        kn1,
        color);
}
uniforms: float/an0 float/kn0 float/kn1
)");
}

/// The lines of a text that call a function.
std::string callsIn(const std::string& text) {
  std::string calls;
  for (std::size_t at = 0; (at = text.find("(\n        ", at)) != std::string::npos; ++at) {
    calls += text.substr(text.rfind(' ', at) + 1, at - text.rfind(' ', at) - 1) + ";";
  }
  return calls;
}

TEST(DefaultCollapse, CallsEveryUseOfAFragmentByTheNameItsFunctionWasGiven) {
  // Two fragments with functions of one name and different texts, in turns; and one whose text depends on its
  // inputs.
  TestScene scene;
  const auto one =
      test::loadFragment(L"one", test::functionJson(L"void f(float a, out float r)\n{\nr = 1;\n}"));
  const auto two =
      test::loadFragment(L"two", test::functionJson(L"void f(float a, out float r)\n{\nr = 2;\n}"));
  const auto any = test::loadFragment(
      L"any", test::functionJson(L"void g(float a, float b, out float r)\n{\nr = sfg_isConnected(b);\n}"));
  AShaderFragment* last = nullptr;
  int count = 0;
  for (const auto& fragment : {one, two, one, two, any, any, any}) {
    AShaderFragment* next = scene.add(*fragment, L"n" + itos(count++));
    if (last != nullptr) next->setInputConnection(L"a", last, L"r");
    if (count == 6) next->setInputConnection(L"b", last, L"r");
    last = next;
  }
  scene.output(L"color", TypeID_float, last);
  const std::string text = collapseDefault(scene);
  EXPECT_EQ(callsIn(text), "f1;f11;f1;f11;g1;g12;g1;") << text;
  EXPECT_EQ(text.substr(0, text.find("void CollapsedFunction")), R"(void f1(
    float a,
    out float r)
{
	r = 1;
}
void f11(
    float a,
    out float r)
{
	r = 2;
}
void g1(
    float a,
    float b,
    out float r)
{
	r = false;
}
void g12(
    float a,
    float b,
    out float r)
{
	r = true;
}
)");
}

TEST(DefaultCollapse, WritesAConstantInPlaceOfAUniform) {
  TestScene scene;
  AShaderFragment* scale = scene.addWithPorts(
      *test::loadFragment(L"scale", test::functionJson(kScale)), L"n0",
      {test::parameter(TypeID_float, L"a"), test::parameter(TypeID_float, L"k", AParameter::kConstantFlag)},
      {test::parameter(TypeID_float, L"result")});
  AValue two(TypeID_float);
  two.set(0, 2.0);
  scene.options->constants[L"k"] = two;
  scene.output(L"color", TypeID_float, scale);
  EXPECT_EQ(collapseDefault(scene), R"(void scale1(
    float a,
    float k,
    out float result)
{
	result = a * k;
}
void CollapsedFunction(
    out float color)
{
    scale1(
        an0,
        2.0,
        color);
}
uniforms: float/an0
)");
}

TEST(DefaultCollapse, MakesASamplerOfATextureInput) {
  TestScene scene;
  AShaderFragment* texture = scene.addFunction(
      L"tex", L"void read(sfg_sampler2D map, float2 uv, out float4 result)\n{\nresult = map.sample(uv);\n}");
  scene.output(L"color", TypeID_fvec4, texture);
  EXPECT_EQ(collapseDefault(scene), R"(void read1(
    sfg_sampler2D map,
    float2 uv,
    out float4 result)
{
	result = map.sample(uv);
}
void CollapsedFunction(
    out float4 color)
{
    read1(
        sfg_make_sampler2D(maptex, sampler_maptex),
        uvtex,
        color);
}
uniforms: sampler2D/maptex fvec2/uvtex
includes: sfg_samplers.h
)");
}

TEST(DefaultCollapse, PutsInlineExpressionsIntoTheCall) {
  TestScene scene;
  AShaderFragment* one = scene.addFunction(L"n0", kOne);
  AShaderFragment* half = scene.addInline(L"n1", L"{{a}} * 0.5", {L"a"});
  AShaderFragment* minus = scene.addInline(L"n2", L"{{a}} - {{b}}", {L"a", L"b"});
  AShaderFragment* scale = scene.addFunction(L"n3", kScale);
  half->setInputConnection(L"a", one, L"result");
  minus->setInputConnection(L"a", half, L"result");
  scale->setInputConnection(L"a", minus, L"result");
  scale->setInputConnection(L"k", half, L"result");
  scene.output(L"color", TypeID_float, scale);
  EXPECT_EQ(collapseDefault(scene), R"(void one1(
    out float result)
{
	result = 1.0;
}
void scale1(
    float a,
    float k,
    out float result)
{
	result = a * k;
}
void CollapsedFunction(
    out float color)
{
    float result_n0_01;
    one1(
        result_n0_01);
    scale1(
        ((result_n0_01 * 0.5) - bn2),
        (result_n0_01 * 0.5),
        color);
}
uniforms: float/bn2
)");
}

// Outputs that the evaluation is not given.

/// The body of the collapsed function.
std::string defaultBody(const std::string& text) {
  const std::size_t at = text.find("{\n", text.find("void CollapsedFunction"));
  return at != std::string::npos ? text.substr(at) : text;
}

TEST(DefaultCollapse, AssignsAnOutputThatAnInlineExpressionFeeds) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addInline(L"n0", L"1.0", {}));
  EXPECT_EQ(collapseDefault(scene),
            "void CollapsedFunction(\n    out float color)\n{\n    color = (1.0);\n}\n");
}

TEST(DefaultCollapse, AssignsAnExpressionToEveryOutputItFeeds) {
  TestScene scene;
  AShaderFragment* one = scene.addFunction(L"n0", kOne);
  AShaderFragment* half = scene.addInline(L"n1", L"{{a}} * 0.5", {L"a"});
  half->setInputConnection(L"a", one, L"result");
  scene.output(L"x", TypeID_float, half);
  scene.output(L"y", TypeID_float, half);
  EXPECT_EQ(defaultBody(collapseDefault(scene)), R"({
    float result_n0_01;
    one1(
        result_n0_01);
    x = (result_n0_01 * 0.5);
    y = (result_n0_01 * 0.5);
}
)");
}

TEST(DefaultCollapse, RefusesAnOutputThatAnInlineExpressionDoesNotHave) {
  TestScene scene;
  AShaderFragment* expression = scene.addInline(L"n0", L"1.0", {});
  expression->addOutput(TypeID_float, L"second");
  scene.output(L"x", TypeID_float, expression);
  scene.output(L"y", TypeID_float, expression, 1);
  EXPECT_EQ(collapseDefault(scene), "Failed to evaluate fragment!");
}

TEST(DefaultCollapse, RefusesAnOutputThatAFunctionDoesNotHave) {
  TestScene scene;
  AShaderFragment* one = scene.addFunction(L"n0", kOne);
  one->addOutput(TypeID_float, L"second");
  scene.output(L"x", TypeID_float, one);
  scene.output(L"y", TypeID_float, one, 1);
  EXPECT_EQ(collapseDefault(scene), "Failed to evaluate fragment!");
}

TEST(DefaultCollapse, AssignsGraphOutputsOfOneFragmentOutputFromTheLastOfThem) {
  TestScene scene;
  AShaderFragment* split = scene.addFunction(L"n0", kSplit);
  scene.output(L"a", TypeID_float, split, 0);
  scene.output(L"b", TypeID_float, split, 2);
  scene.output(L"c", TypeID_float, split, 0);
  scene.output(L"d", TypeID_float, split, 2);
  scene.output(L"e", TypeID_float, split, 0);
  EXPECT_EQ(defaultBody(collapseDefault(scene)), R"({
    float result_n0_11;
    split1(
        vn0,
        e,
        result_n0_11,
        d);
    a = e;
    b = d;
    c = e;
}
uniforms: fvec2/vn0
)");
}

TEST(DefaultCollapse, ReplacesBuiltInCallsByTheirValues) {
  TestScene scene;
  constexpr std::wstring_view kSwitch = L"void pick(float a, float b, out float r, out float s)\n{\n"
                                        L"r = sfg_isConnected(a) ? a : b;\n"
                                        L"if (sfg_isConnected(b)) r = b;\n"
                                        L"if (sfg_isFinalOutput(s)) s = r;\n}";
  AShaderFragment* first = scene.addFunction(L"n0", kSwitch);
  AShaderFragment* second = scene.addFunction(L"n1", kSwitch);
  second->setInputConnection(L"a", first, L"r");
  scene.output(L"color", TypeID_float, second, 1);
  EXPECT_EQ(collapseDefault(scene), R"(void pick1(
    float a,
    float b,
    out float r,
    out float s)
{
	r = false ? a : b;
	if (false) r = b;
	if (false) s = r;
}
void pick11(
    float a,
    float b,
    out float r,
    out float s)
{
	r = true ? a : b;
	if (false) r = b;
	if (true) s = r;
}
void CollapsedFunction(
    out float color)
{
    float result_n1_01;
    float result_n0_01;
    float result_n0_11;
    pick1(
        an0,
        bn0,
        result_n0_01,
        result_n0_11);
    pick11(
        result_n0_01,
        bn1,
        result_n1_01,
        color);
}
uniforms: float/an0 float/bn0 float/bn1
)");
}

/// A consumer that calls two sources, the one of two outputs and the one of one output.
class UsesOfShaderFunctions : public testing::Test {
protected:
  /// What the collapse writes for the consumer: its predefines and its definition.
  static std::string consumerOf(std::wstring_view body, std::wstring_view predefine = L"") {
    TestScene scene;
    AShaderFragment* wave = scene.addFunction(
        L"n0", L"void wave(float2 uv, out float height, out float slope)\n{\nheight = uv.x;\n}");
    AShaderFragment* dots =
        scene.addFunction(L"n1", L"void dots(float2 uv, out float dot)\n{\ndot = uv.y;\n}");
    const std::wstring function =
        L"void mix(float tex, float cell, out float r)\n{\n" + std::wstring(body) + L"\n}";
    const std::wstring more = L",\"predefine\":[\"" + std::wstring(predefine) + L"\"]";
    AShaderFragment* mix = scene.add(*test::loadFragment(L"n2", test::functionJson(function, more)), L"n2");
    EXPECT_TRUE(mix->setInputConnection(L"tex", wave, L"height"));
    EXPECT_TRUE(mix->setInputConnection(L"cell", dots, L"dot"));
    scene.output(L"color", TypeID_float, mix);
    const std::string text = collapseDefault(scene);
    const std::string lastSource = "\tdot = uv.y;\n}\n";
    const std::size_t begin = text.find(lastSource) + lastSource.size();
    return text.substr(begin, text.find("void CollapsedFunction(") - begin);
  }
};

constexpr const char* kMixHead = "void mix1(\n    float tex,\n    float cell,\n    out float r)\n{\n";

TEST_F(UsesOfShaderFunctions, DeclareDifferentTemporariesInOneBlock) {
  EXPECT_EQ(consumerOf(L"float a; float b; float c;\nsfg_shader(tex, uv, p, height, a);\n"
                       L"sfg_shader(tex, uv, q, height, b);\nsfg_shader(tex, uv, q, slope, c);\n"
                       L"sfg_shader(cell, uv, p);\nr = a;"),
            kMixHead + std::string(R"(	float a; float b; float c;
	float result_n0_11_temp;
    wave1(
        p,
        a,
        result_n0_11_temp);
;
	float result_n0_11_temp2;
    wave1(
        q,
        b,
        result_n0_11_temp2);
;
	float result_n0_01_temp;
    wave1(
        q,
        result_n0_01_temp,
        c);
;
	float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
;
	r = a;
}
)"));
}

TEST_F(UsesOfShaderFunctions, DeclareDifferentTemporariesWithTheSameText) {
  EXPECT_EQ(consumerOf(L"if (r > 0) {\nsfg_shader(cell, uv, p);\nsfg_shader(cell, uv, p);\n}\n"
                       L"sfg_shader(cell, uv, p); sfg_shader(cell, uv, p);"),
            kMixHead + std::string(R"(	if (r > 0) {
		float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
;
		float result_n1_01_temp2;
    dots1(
        p,
        result_n1_01_temp2);
;
	}
	float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
; float result_n1_01_temp2;
    dots1(
        p,
        result_n1_01_temp2);
;
}
)"));
}

TEST_F(UsesOfShaderFunctions, DeclareTemporariesInEachFunctionOfThePredefines) {
  EXPECT_EQ(
      consumerOf(L"sfg_shader(cell, uv, p);",
                 L"float g(float2 p) { sfg_shader(cell, uv, p); sfg_shader(cell, uv, p); return 1; }\",\""
                 L"float h(float2 p) { sfg_shader(cell, uv, p); sfg_shader(cell, uv, p); return 1; }"),
      R"(float g(float2 p) { float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
; float result_n1_01_temp2;
    dots1(
        p,
        result_n1_01_temp2);
; return 1; }
float h(float2 p) { float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
; float result_n1_01_temp2;
    dots1(
        p,
        result_n1_01_temp2);
; return 1; }
)" + std::string(kMixHead) +
          R"(	float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
;
}
)");
}

TEST_F(UsesOfShaderFunctions, LeaveTheAuthorsVariablesAlone) {
  EXPECT_EQ(consumerOf(L"float result_n1_01_temp = 1;\n{\nsfg_shader(cell, uv, p);\n"
                       L"sfg_shader(cell, uv, q);\n}\nr = result_n1_01_temp;"),
            kMixHead + std::string(R"(	float result_n1_01_temp = 1;
	{
		float result_n1_01_temp;
    dots1(
        p,
        result_n1_01_temp);
;
		float result_n1_01_temp2;
    dots1(
        q,
        result_n1_01_temp2);
;
	}
	r = result_n1_01_temp;
}
)"));
}

TEST(DefaultCollapse, CallsAShaderFunctionFromItsConsumersCode) {
  TestScene scene;
  AShaderFragment* warp =
      scene.addFunction(L"n0", L"void warp(float2 p, out float2 result)\n{\nresult = p.yx;\n}");
  AShaderFragment* noise = scene.addFunction(
      L"n1", L"void noise(float2 uv, float scale, out float result)\n{\nresult = uv.x * scale;\n}");
  AShaderFragment* blur = scene.addFunction(L"n2", L"void blur(float tex, float2 uv, out float result)\n{\n"
                                                   L"float2 p = uv * 2.0;\nfloat t;\n"
                                                   L"sfg_shader(tex, uv, p, result, t);\n"
                                                   L"result = t;\n}");
  noise->setInputConnection(L"uv", warp, L"result");
  blur->setInputConnection(L"tex", noise, L"result");
  scene.output(L"color", TypeID_float, blur);
  EXPECT_EQ(collapseDefault(scene), R"(void warp1(
    float2 p,
    out float2 result)
{
	result = p.yx;
}
void noise1(
    float2 uv,
    float scale,
    out float result)
{
	result = uv.x * scale;
}
void blur1(
    float tex,
    float2 uv,
    out float result)
{
	float2 p = uv * 2.0;
	float t;
	    noise1(
        p,
        scalen1,
        t);
;
	result = t;
}
void CollapsedFunction(
    out float color)
{
    float result_n1_01;
    float2 result_n0_01;
    warp1(
        pn0,
        result_n0_01);
    state.shaderInput0 = result_n0_01;
    blur1(
        texn2,
        uvn2,
        color);
}
uniforms: fvec2/pn0 float/scalen1 float/texn2 fvec2/uvn2
shader inputs: float2
)");
}

TEST(DefaultCollapse, AShaderFunctionCallsTheOtherUseOfItself) {
  TestScene scene;
  constexpr std::wstring_view kBlur =
      L"void blur(float f, out float r)\n{\n"
      L"// blur1 is not called here\nfloat blur1x = 1.0;\nsfg_shader(f, r, r);\n}";
  AShaderFragment* previous = scene.addFunction(L"n0", kBlur);
  for (const wchar_t* name : {L"n1", L"n2"}) {
    AShaderFragment* blur = scene.addFunction(name, kBlur);
    blur->setInputConnection(L"f", previous, L"r");
    previous = blur;
  }
  scene.output(L"color", TypeID_float, previous);
  EXPECT_EQ(collapseDefault(scene), R"(void blur1(
    float f,
    out float r)
{
	// blur1 is not called here
	float blur1x = 1.0;
	;
}
void blur11(
    float f,
    out float r)
{
	// blur11 is not called here
	float blur11x = 1.0;
	    blur1(
        fn0,
        r);
;
}
void blur12(
    float f,
    out float r)
{
	// blur12 is not called here
	float blur12x = 1.0;
	    blur11(
        state.shaderInput0,
        r);
;
}
void CollapsedFunction(
    out float color)
{
    float result_n1_01;
    float result_n0_01;
    state.shaderInput0 = fn1;
    blur12(
        fn2,
        color);
}
uniforms: float/fn0 float/fn1 float/fn2
shader inputs: float
)");
}

TEST(DefaultCollapse, RefusesAnExpressionThatIsCalledAsAFunction) {
  TestScene scene;
  AShaderFragment* half = scene.addInline(L"n0", L"{{a}} * 0.5", {L"a"});
  AShaderFragment* call =
      scene.addFunction(L"n1", L"void call(float f, out float r)\n{\nsfg_shader(f, {{a}}, r);\n}");
  call->setInputConnection(L"f", half, L"result");
  scene.output(L"color", TypeID_float, call);
  EXPECT_EQ(collapseDefault(scene), "Failed to evaluate fragment!");
}

TEST(DefaultCollapse, WritesPreProcessFragmentsFirst) {
  TestScene scene;
  const auto pre = scene.instance(
      *test::loadFragment(
          L"tint", test::functionJson(L"void tint(out float3 color, out float amount)\n{\namount = 1.0;\n}")),
      L"pre0");
  scene.graph->addPreprocessFragment(pre.get());
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  EXPECT_EQ(collapseDefault(scene), R"(void tint1(
    out float3 color,
    out float amount)
{
	amount = 1.0;
}
void one1(
    out float result)
{
	result = 1.0;
}
void CollapsedFunction(
    out float color)
{
    float3 color = float3(0.0, 0.0, 0.0);
    float amount = 0.0;
    tint1(
        color,
        amount);
    one1(
        color);
}
)");
}

TEST(DefaultCollapse, WritesOnlyTheRequirementsOfPostProcessFragments) {
  TestScene scene;
  const auto post = scene.instance(
      *test::loadFragment(
          L"tone", test::functionJson(
                       L"void tone(float c, out float result)\n{\nresult = gain(c);\n}",
                       LR"(,"predefine":["float gain(float c) { return c; }"],"includes":["sfg_color.h"])")),
      L"post0");
  ASSERT_TRUE(scene.graph->addPostprocessFragment(post.get()));
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  EXPECT_EQ(collapseDefault(scene), R"(float gain(float c) { return c; }
void one1(
    out float result)
{
	result = 1.0;
}
void CollapsedFunction(
    out float color)
{
    one1(
        color);
}
includes: sfg_color.h
)");
}

TEST(DefaultCollapse, NamesEveryGraphOutputAtItsPlaceAndDeclaresTheOthers) {
  TestScene scene;
  AShaderFragment* split = scene.addFunction(L"n0", kSplit);
  scene.output(L"last", TypeID_float, split, 2);
  scene.output(L"first", TypeID_float, split, 0);
  EXPECT_EQ(collapseDefault(scene), R"(void split1(
    float2 v,
    out float x,
    out float y,
    out float sum)
{
	x = v.x;
}
void CollapsedFunction(
    out float last,
    out float first)
{
    float result_n0_11;
    split1(
        vn0,
        first,
        result_n0_11,
        last);
}
uniforms: fvec2/vn0
)");
}

TEST(DefaultCollapse, AddsTheGraphsUniformsBehindThoseOfTheFragments) {
  TestScene scene;
  scene.graph->addUniform(makeRef<AParameter>(TypeID_fvec3, L"sun").get());
  scene.graph->addUniform(makeRef<AParameter>(TypeID_float, L"fog").get());
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kScale));
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  const IShaderFragment* result =
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  ASSERT_NE(result, nullptr);
  ASSERT_EQ(result->getNumUniforms(), 4u);
  EXPECT_EQ(result->getUniform(0)->getName(), L"an0");
  EXPECT_EQ(result->getUniform(2)->getName(), L"sun");
  EXPECT_EQ(result->getUniform(3)->getName(), L"fog");
}

TEST(DefaultCollapse, TakesTheNamesOfTheCaller) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  tool->setCollpaseFunctionName(L"Surface");
  tool->setCollapseProfileName(L"lit");
  const IShaderFragment* result =
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  ASSERT_NE(result, nullptr);
  ASSERT_EQ(result->getNumProfiles(), 1u);
  EXPECT_EQ(result->getProfile(0)->getFunctionName(), L"Surface");
  EXPECT_EQ(result->getProfile(0)->getProfilename(), L"lit");
  EXPECT_TRUE(result->getProfile(0)->languages().contains(UString(L"dx11")));
}

TEST(DefaultCollapse, KeepsTheResultForACallerThatHoldsIt) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  RefPtr<IShaderFragment> result;
  {
    const auto tool = makeRef<AShaderCollapseToolDefault>();
    result =
        tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  }
  scene.graph.reset();
  ASSERT_TRUE(result);
  EXPECT_EQ(result->getProfile(0)->getFunctionName(), L"CollapsedFunction");
}

// Refusals.

TEST(DefaultCollapse, AnswersNullForANullArgument) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  const auto* graph = scene.graph.get();
  const auto* environment = scene.environment.get();
  const auto* options = scene.options.get();
  const auto* language = scene.language.get();
  EXPECT_EQ(tool->collapse(nullptr, environment, options, language), nullptr);
  EXPECT_EQ(tool->collapse(graph, nullptr, options, language), nullptr);
  EXPECT_EQ(tool->collapse(graph, environment, nullptr, language), nullptr);
  EXPECT_EQ(tool->collapse(graph, environment, options, nullptr), nullptr);
  // Nothing was begun: the tool is as good as new.
  EXPECT_NE(tool->collapse(graph, environment, options, language), nullptr);
}

TEST(DefaultCollapse, AnswersNullWhenOptionsWantAnotherLanguage) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  const RefPtr<test::TestOptions> options = scene.options;
  scene.options = makeRef<test::TestOptions>(L"glsl");
  EXPECT_EQ(collapseWith(*tool, scene), "null");
  scene.options = options;
  EXPECT_NE(collapseWith(*tool, scene), "null");
}

TEST(DefaultCollapse, RefusesASecondCollapse) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  EXPECT_NE(collapseWith(*tool, scene), "null");
  EXPECT_EQ(collapseWith(*tool, scene), "Cannot collapse twice!");
}

TEST(DefaultCollapse, RefusesASecondCollapseAlsoWhenTheFirstThrew) {
  TestScene scene;
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  EXPECT_EQ(collapseWith(*tool, scene), "sfgError : the graph should has at least one output!");
  EXPECT_EQ(collapseWith(*tool, scene), "Cannot collapse twice!");
}

TEST(DefaultCollapse, AnswersNullWhenAFragmentHasNoDefaultProfile) {
  TestScene scene;
  AShaderFragment* glow =
      scene.add(*test::loadFragment(L"glow", test::functionJson(kOne, LR"(,"name":"glow")")), L"n0");
  scene.output(L"color", TypeID_float, glow);
  EXPECT_EQ(collapseDefault(scene), "null");
}

TEST(DefaultCollapse, RefusesAnOpenOutputBeforeAnythingIsEvaluated) {
  TestScene scene;
  scene.output(L"color", TypeID_float, scene.addFunction(L"n0", kOne));
  scene.graph->addOutput(TypeID_float, L"open");
  const auto tool = makeRef<AShaderCollapseToolDefault>();
  EXPECT_EQ(collapseWith(*tool, scene), "Graph output must be connected to a fragment!");
}

TEST(DefaultCollapse, RefusesOutputsOfSeveralFragments) {
  TestScene scene;
  scene.output(L"a", TypeID_float, scene.addFunction(L"n0", kOne));
  scene.output(L"b", TypeID_float, scene.addFunction(L"n1", kOne));
  EXPECT_EQ(collapseDefault(scene), "Failed to evaluate fragment!");
}

TEST(DefaultCollapse, RefusesAFragmentOfAnotherLanguage) {
  TestScene scene;
  constexpr std::wstring_view kForeign =
      LR"x({"language":["glsl"],"implementation":["void one(out float result)","{","}"]})x";
  scene.output(L"color", TypeID_float, scene.add(*test::loadFragment(L"one", kForeign), L"n0"));
  EXPECT_EQ(collapseDefault(scene), "null");
}

TEST(DefaultCollapse, RefusesAGraphWiredIntoACycle) {
  TestScene scene;
  AShaderFragment* a = scene.addFunction(L"n0", kSum);
  AShaderFragment* b = scene.addFunction(L"n1", kSum);
  a->setInputConnection(L"a", b, L"result");
  b->setInputConnection(L"b", a, L"result");
  scene.output(L"color", TypeID_float, a);
  EXPECT_EQ(collapseDefault(scene), "Failed to evaluate fragment!");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

// A definition over a plain body is not parsed: these tests hold it against the parse.

#include "profiles/function_definition.h"

#include <gtest/gtest.h>

#include "profiles/parameter_text.h"
#include "sfg/shader_fragment_profile_function.h"

namespace TolmSDK::Graphics::sfg {
namespace {

struct BodyCase {
  const char* name;
  const wchar_t* body;
  bool isPlain;
};

void PrintTo(const BodyCase& c, std::ostream* os) { *os << c.name; }

class Body : public testing::TestWithParam<BodyCase> {};

TEST_P(Body, IsPlainExactlyWhenItsDefinitionIsOneFunctionWithoutBuiltInCalls) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setFunctionBody(GetParam().body);
  EXPECT_EQ(profile->hasPlainBody(), GetParam().isPlain);

  const WString code = L"void f(\n    float a,\n    out float b)\n{\n" + WString(GetParam().body) + L"}\n";
  CodeSnippet parsed;
  parsed.addCode(code);
  parsed.parse();
  const bool isOneFunction = parsed.getNumSymbols() == 1 &&
                             parsed.getSymbol(0).getType() == EShaderSymbolType::function &&
                             parsed.getSymbol(0).getRange().length == code.size() &&
                             parsed.getBuiltinFunctions().empty() && parsed.getShaderFunctions().empty();
  // What runs to the end without being closed looks like one function too, and is left to the parse.
  if (!GetParam().isPlain) return;
  ASSERT_TRUE(isOneFunction);

  CodeSnippet taken;
  taken.takePlainFunction(WString(code), 5, 1, code.find(L'{'));
  ASSERT_EQ(taken.getNumSymbols(), 1u);
  EXPECT_EQ(taken.getSymbol(0).getKey(), parsed.getSymbol(0).getKey());
  EXPECT_EQ(taken.getSymbol(0).getName().view(), L"f");
  EXPECT_EQ(taken.getSymbol(0).getRange().view(), code);
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, Body,
    testing::Values(BodyCase{"empty", L"", true}, BodyCase{"statement", L"\tb = a;\n", true},
                    BodyCase{"block", L"\tif (a > 0) {\n\t\tb = a;\n\t}\n", true},
                    BodyCase{"comment", L"\tb = a; // }\n", true},
                    BodyCase{"preprocessor", L"#define X }\n\tb = a;\n", true},
                    BodyCase{"stateVariable", L"\tb = sfg_time;\n", true},
                    BodyCase{"closesTooEarly", L"\tb = a;\n}\nfloat g() {\n\treturn 1;\n", false},
                    BodyCase{"staysOpen", L"\tif (a > 0) {\n\t\tb = a;\n", false},
                    BodyCase{"swallowsTheBrace", L"\tb = a; //", false},
                    BodyCase{"builtInCall", L"\tb = sfg_isConnected(a) ? 1 : 0;\n", false},
                    BodyCase{"shaderFunction", L"\tsfg_shader(a);\n", false}),
    [](const auto& body) { return body.param.name; });

TEST(ParameterWriter, LaysParametersOutAsTheListDoes) {
  ATextParameterList list;
  list.addInput(L"float3", L"a");
  list.addInput(L"", L"b");
  list.addInput(L"inout State", L"state");
  list.addOutput(L"float", L"r");
  list.addOutput(L"", L"s");
  WString declared;
  ParameterWriter declaration(declared, 4);
  WString called;
  ParameterWriter call(called, 8);
  for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
    declaration.writeDeclaration(L"", list.getInputType(i), list.getInputName(i));
    call.writeName(list.getInputName(i));
  }
  for (std::size_t i = 0; i < list.getNumOutputs(); ++i) {
    declaration.writeDeclaration(L"out ", list.getOutputType(i), list.getOutputName(i));
    call.writeName(list.getOutputName(i));
  }
  WString expected;
  list.writeParameters(expected, L"    ", true);
  EXPECT_EQ(declared, expected);
  expected.clear();
  list.writeParameters(expected, L"        ", false);
  EXPECT_EQ(called, expected);
}

TEST(PlainBody, IsForgottenWhenTheBodyIsWrittenTo) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setFunctionBody(L"\tb = a;\n");
  profile->getFunctionBody() += L"}";
  EXPECT_FALSE(profile->hasPlainBody());
  profile->setFunctionBody(L"\tb = a;\n");
  EXPECT_TRUE(profile->hasPlainBody());
  profile->clear();
  EXPECT_FALSE(profile->hasPlainBody());
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

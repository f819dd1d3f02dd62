#include "sfg/shader_symbol.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/cost.h"
#include "text/test_views.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Type = EShaderSymbolType;

/// One symbol with the text it was found in.
struct Found {
  bool isFound = false;
  std::size_t pos = 0;
  ShaderSymbol symbol;
};

Found find(const ScopedText& text, std::size_t pos = 0) {
  Found found;
  found.pos = pos;
  found.isFound = ShaderSymbol::findFirstSymbol(found.symbol, text, found.pos);
  return found;
}

struct Case {
  const wchar_t* text;
  Type type;
  const wchar_t* name;
  const wchar_t* range;
  const wchar_t* key;  // of a function: the signature only
};

void expectSymbol(const Case& c) {
  inEveryPlace(c.text, [&](const ScopedText& view) {
    SCOPED_TRACE(std::string(c.text, c.text + std::wstring_view(c.text).size()));
    const Found found = find(view);
    EXPECT_TRUE(found.isFound);
    EXPECT_EQ(found.symbol.getType(), c.type);
    EXPECT_EQ(found.symbol.getName().view(), c.name);
    EXPECT_EQ(found.symbol.getRange().view(), c.range);
    const ScopedText& range = found.symbol.getRange();
    EXPECT_EQ(range.text + range.length, view.text + found.pos) << "stands behind the symbol";
    if (c.type == Type::function) {
      EXPECT_EQ(found.symbol.getKey().substr(0, std::wstring_view(c.key).size()), c.key);
    } else {
      EXPECT_EQ(found.symbol.getKey(), c.key);
    }
  });
}

TEST(FindFirstSymbol, Structures) {
  const Case cases[] = {
      {L"struct S;", Type::structure, L"S", L"struct S;", L"structS;"},
      {L"struct S ;x", Type::structure, L"S", L"struct S ;", L"structS;"},
      {L"struct S { float a; };\n\nx", Type::structure, L"S", L"struct S { float a; };\n",
       L"structS{floata;};"},
      {L"struct S { float a; }; \nx", Type::structure, L"S", L"struct S { float a; };", L"structS{floata;};"},
      {L"struct S { float a; }", Type::structure, L"S", L"struct S { float a; }", L"structS{floata;}"},
      // Without a semicolon, blanks and comments behind the body belong to the range.
      {L"struct S {} /*c*/ x", Type::structure, L"S", L"struct S {} /*c*/ ", L"structS{}/*c*/"},
      {L"struct S /*{*/ { /*}*/ };", Type::structure, L"S", L"struct S /*{*/ { /*}*/ };",
       L"structS/*{*/{/*}*/};"},
      {L"struct { int a; };", Type::structure, L"", L"struct { int a; };", L"struct{inta;};"},
      {L"struct S { int a;", Type::structure, L"S", L"struct S { int a;", L"structS{inta;"},
      {L"SamplerState s { Filter = X; };\n", Type::structure, L"s", L"SamplerState s { Filter = X; };\n",
       L"SamplerStates{Filter=X;};"},
      // Prefixes without a boundary.
      {L"Structure x;", Type::structure, L"x", L"Structure x;", L"Structurex;"},
      {L"samplerstates x;", Type::structure, L"x", L"samplerstates x;", L"samplerstatesx;"},
      // A base class is not understood: the range ends in front of it.
      {L"struct S : B { };", Type::structure, L"S", L"struct S ", L"structS"},
      {L"// struct A;\n#define struct\n struct B;", Type::structure, L"B", L"struct B;", L"structB;"},
  };
  for (const Case& c : cases) expectSymbol(c);
}

TEST(FindFirstSymbol, Techniques) {
  const Case cases[] = {
      {L"TECHNIQUE11 T { pass P {} }", Type::technique, L"T", L"TECHNIQUE11 T { pass P {} }", L"T"},
      {L"technique T { pass P {} };\nx", Type::technique, L"T", L"technique T { pass P {} }", L"T"},
      {L"technique /*c*/ T /*c*/ {", Type::technique, L"T", L"technique /*c*/ T /*c*/ {", L"T"},
      {L"technique { }", Type::technique, L"", L"technique { }", L""},
      {L"technique T x", Type::technique, L"T", L"technique T ", L"T"},
      {L"technique", Type::technique, L"", L"technique", L""},
  };
  for (const Case& c : cases) expectSymbol(c);
}

TEST(FindFirstSymbol, Functions) {
  const Case cases[] = {
      {L"float4 main(float2 uv : TEXCOORD0) { return 1; }", Type::function, L"main",
       L"float4 main(float2 uv : TEXCOORD0) { return 1; }", L"float4main(float2uv:TEXCOORD0)13"},
      {L" static inline float f ( ) {}\n\nx", Type::function, L"f", L"static inline float f ( ) {}\n\n",
       L"staticinlinefloatf()4"},
      {L"void f() {};\nx", Type::function, L"f", L"void f() {};\n", L"voidf()4"},
      {L"void f() {} ;x", Type::function, L"f", L"void f() {} ;", L"voidf()4"},
      // Blanks and comments up to the next token belong to the body.
      {L"void f() {} // c\n x", Type::function, L"f", L"void f() {} // c\n ", L"voidf()9"},
      {L"void f() {}\nx", Type::function, L"f", L"void f() {}\n", L"voidf()3"},
      // Prototypes.
      {L"void f(int a);\nx", Type::function, L"f", L"void f(int a);\n", L"voidf(inta)1"},
      {L"void f(int a) ;x", Type::function, L"f", L"void f(int a) ;", L"voidf(inta)1"},
      {L"void f(int a); \nx", Type::function, L"f", L"void f(int a);", L"voidf(inta)1"},
      // A semantic behind the parameters is not understood: the body is empty.
      {L"float4 f() : SV_Target { }", Type::function, L"f", L"float4 f() ", L"float4f()0"},
      {L"void f(int a", Type::function, L"f", L"void f(int a", L"voidf(inta0"},
      {L"void f() { {}", Type::function, L"f", L"void f() { {}", L"voidf()4"},
      {L"#pragma x\n// c\nvoid f() {}", Type::function, L"f", L"void f() {}", L"voidf()2"},
  };
  for (const Case& c : cases) expectSymbol(c);
}

TEST(FindFirstSymbol, Uniforms) {
  const Case cases[] = {
      {L"uniform Texture2D<float4> tex : register(t0);", Type::uniform, L"tex",
       L"uniform Texture2D<float4> tex : register(t0);", L"uniformTexture2D<float4>tex:register(t0);"},
      {L"float4 x;\n\ny", Type::uniform, L"x", L"float4 x;\n", L"float4x;"},
      {L"uniform float4 x;", Type::uniform, L"x", L"uniform float4 x;", L"uniformfloat4x;"},
      {L"extern uniform float4 x = float4(1, 2; 3, 4)", Type::uniform, L"x",
       L"extern uniform float4 x = float4(1, 2;", L"externuniformfloat4x=float4(1,2;"},
      {L"float x = /*;*/ 1 /*;*//*;*/; y", Type::uniform, L"x", L"float x = /*;*/ 1 /*;*//*;*/;",
       L"floatx=/*;*/1/*;*//*;*/;"},
      {L"float x = 1 // ;\n / 2;", Type::uniform, L"x", L"float x = 1 // ;\n / 2;", L"floatx=1//;/2;"},
      {L"float x[3] : SEM = {1};", Type::uniform, L"x", L"float x[3] : SEM = {1};", L"floatx[3]:SEM={1};"},
      {L"float x < string s = \"a\"; > = 1;", Type::uniform, L"x", L"float x < string s = \"a\"; > = 1;",
       L"floatx<strings=\"a\";>=1;"},
      {L"float x /*a*/ : /*b*/ SEM /*c*/ ; y", Type::uniform, L"x", L"float x /*a*/ : /*b*/ SEM /*c*/ ;",
       L"floatx/*a*/:/*b*/SEM/*c*/;"},
      {L"Texture2D<float4> /*c*/ tex;", Type::uniform, L"tex", L"Texture2D<float4> /*c*/ tex;",
       L"Texture2D<float4>/*c*/tex;"},
      {L"uniformity float x;", Type::uniform, L"x", L"uniformity float x;", L"uniformityfloatx;"},
      {L"UNIFORM EXTERNAL float x;", Type::uniform, L"x", L"UNIFORM EXTERNAL float x;",
       L"UNIFORMEXTERNALfloatx;"},
      // One word is a type without a name.
      {L"x;", Type::uniform, L"", L"x;", L"x;"},
      {L"a<b>;", Type::uniform, L"", L"a<b>;", L"a<b>;"},
      // A qualifier behind the first other word is a word like any.
      {L"float uniform;", Type::uniform, L"uniform", L"float uniform;", L"floatuniform;"},
  };
  for (const Case& c : cases) expectSymbol(c);
}

struct Refused {
  const wchar_t* text;
  std::size_t pos;
};

TEST(FindFirstSymbol, LeavesTheSymbolEmptyForAnythingElse) {
  const Refused cases[] = {
      {L"", 0},
      {L" // c\n#x\n", 9},
      {L"[numthreads(8, 8, 1)] void cs() {...}", 11},  // the attribute's word is a function without a type
      {L"cbuffer C : register(b0) { }", 25},
      {L"static const float k = 1;", 21},  // four words without a qualifier
      {L"static const float4 k[2];", 21},
      {L"uniform;", 7},
      {L"extern uniform : x;", 15},
      {L"f(a) {}", 1},
      {L"a b c", 5},
      {L"a b { }", 5},
      {L"a, b;", 2},
      {L"struct", 6},
      {L"struct S ", 9},
      // A uniform ends with a semicolon.
      {L"float x :", 9},
      {L"float x = 1", 11},
      {L"float x = /* ;", 14},
      {L"float x < a ;", 13},
      {L"Texture2D<float4 x;", 19},
      {L"float x [ ;", 11},
      {L"float x : a ( ;", 15},
      {L"float x : register(b0), y;", 22},
  };
  for (const Refused& c : cases)
    inEveryPlace(c.text, [&](const ScopedText& view) {
      SCOPED_TRACE(std::string(c.text, c.text + std::wstring_view(c.text).size()));
      ShaderSymbol symbol;
      symbol.constructUniform(ScopedText(L"old", 3), ScopedText(L"float old;", 10));
      std::size_t pos = 0;
      EXPECT_FALSE(ShaderSymbol::findFirstSymbol(symbol, view, pos));
      EXPECT_EQ(pos, c.pos);
      EXPECT_EQ(symbol.getType(), Type::unknown);
      EXPECT_TRUE(symbol.getRange().empty());
      EXPECT_TRUE(symbol.getName().empty());
      EXPECT_EQ(symbol.getKey(), L"");
    });
}

TEST(FindFirstSymbol, StaysBehindTheEnd) {
  for (const std::size_t pos : positionsBehind(8)) {
    const Found found = find(ExactText(L"float x;").view(), pos);
    EXPECT_FALSE(found.isFound);
    EXPECT_EQ(found.pos, pos);
  }
  EXPECT_FALSE(find(ScopedText()).isFound);
}

TEST(FindFirstSymbol, GoesOnBehindTheSymbolFound) {
  const ExactText text(L"float x;\nfloat y; /*c*/");
  Found found = find(text.view());
  EXPECT_EQ(found.symbol.getName().view(), L"x");
  found = find(text.view(), found.pos);
  EXPECT_EQ(found.symbol.getName().view(), L"y");
  EXPECT_EQ(found.symbol.getRange().view(), L"float y;");
  EXPECT_FALSE(find(text.view(), found.pos).isFound);
}

TEST(FindFirstSymbol, MovesTheStartOfAView) {
  const ExactText exact(L"float x;\n/*c*/ a b c");
  ScopedText text = exact.view();
  const wchar_t* const end = text.text + text.length;
  ShaderSymbol symbol;
  EXPECT_TRUE(ShaderSymbol::findFirstSymbol(symbol, text));
  EXPECT_EQ(symbol.getRange().view(), L"float x;\n");
  EXPECT_EQ(text.view(), L"/*c*/ a b c");
  EXPECT_TRUE(ShaderSymbol::findFirstSymbol(symbol, text)) << "words were consumed";
  EXPECT_TRUE(symbol.getRange().empty());
  EXPECT_EQ(text.length, 0u);
  EXPECT_EQ(text.text, end);
  EXPECT_FALSE(ShaderSymbol::findFirstSymbol(symbol, text));
  ScopedText nothing;
  EXPECT_FALSE(ShaderSymbol::findFirstSymbol(symbol, nothing));
  EXPECT_EQ(nothing.text, nullptr);
}

TEST(FindFirstSymbol, TakesTimeInProportionToTheText) {
  for (const wchar_t* part :
       {L"a ", L"{", L"<", L"a<", L"(", L"/*", L"#", L"//\n", L"uniform ", L"struct ", L"a[", L"="}) {
    const double growth = TolmSDK::test::timeGrowth(10000, [&](std::size_t count) {
      WString text = L"float x ";
      for (std::size_t i = 0; i < count; ++i) text += part;
      std::size_t pos = 0;
      ShaderSymbol symbol;
      const std::clock_t time =
          TolmSDK::test::processorTime([&] { ShaderSymbol::findFirstSymbol(symbol, text, pos); });
      EXPECT_GT(pos, 0u);
      return time;
    });
    EXPECT_LT(growth, TolmSDK::test::kLinearGrowth) << toUtf8(part);
  }
}

TEST(FunctionKey, IsSignatureBodyLengthAndHash) {
  const WString code = L"float4 main (float2 uv : TEXCOORD0)\n{ return 1; }\n";
  const Found found = find(code);
  EXPECT_EQ(found.symbol.getKey(), L"float4main(float2uv:TEXCOORD0)14" + SHA1_GetStringHash(code));
  EXPECT_EQ(found.symbol.getKey(),
            L"float4main(float2uv:TEXCOORD0)14fde71bbdb608fb53547a6b11f236e60f401615ab");
}

TEST(FunctionKey, TellsOverloadsAndBodiesApart) {
  const auto key = [](const wchar_t* code) {
    return find(ScopedText(code, std::wstring_view(code).size())).symbol.getKey();
  };
  EXPECT_EQ(key(L"void f(int a) {}"), key(L"void f(int a) {}"));
  EXPECT_NE(key(L"void f(int a) {}"), key(L"void f(float a) {}"));
  EXPECT_NE(key(L"void f() { a; }"), key(L"void f() { b; }"));
  EXPECT_NE(key(L"void f() { a; }"), key(L"void f() { a;}"));
  EXPECT_NE(key(L"void f() {}"), key(L"void  f() {}")) << "the hash is of the whole text";
}

TEST(ShaderSymbol, NamesItsType) {
  const auto typeString = [](const wchar_t* code) {
    const Found found = find(ScopedText(code, std::wstring_view(code).size()));
    return std::wstring(found.symbol.getTypeString());
  };
  EXPECT_EQ(typeString(L""), L"Unknown Symbol");
  EXPECT_EQ(typeString(L"struct S;"), L"struct");
  EXPECT_EQ(typeString(L"SamplerState s {};"), L"struct");
  EXPECT_EQ(typeString(L"int x;"), L"uniform");
  EXPECT_EQ(typeString(L"void f();"), L"function");
  EXPECT_EQ(typeString(L"technique t {}"), L"technique");
}

struct Body {
  const wchar_t* text;
  std::vector<std::wstring> stateVariables;
  std::vector<std::wstring> builtins;  // their calls
  std::vector<std::wstring> shaders;
};

std::vector<std::wstring> callTexts(const Array<BuiltinFunction>& functions) {
  std::vector<std::wstring> result;
  for (const BuiltinFunction& f : functions) result.emplace_back(f.range.view());
  return result;
}

TEST(ParseKeywords, CollectsStateVariablesAndBuiltinCalls) {
  const Body bodies[] = {
      {L"", {}, {}, {}},
      {L"{ return state.normal; }", {L"state.normal"}, {}, {}},
      {L"{ return state.normal + state.origin + state.normal; }", {L"state.normal", L"state.origin"}, {}, {}},
      {L"state.geometry_normal.x", {L"state.geometry_normal"}, {}, {}},
      {L"sfg_matWorld * sfg_currentLight", {L"sfg_currentLight", L"sfg_matWorld"}, {}, {}},
      // Names are compared whole and with case, the prefix without.
      {L"State.normal state.Normal state.unknown state.zzz state. normal state.", {}, {}, {}},
      {L"sfg_matWorlds SFG_matWorld mysfg_matWorld sfg_ sfg_isNotConnected(a)", {}, {}, {}},
      {L"__x __sfg_matWorld _state.normal", {}, {}, {}},
      {L"scale sf state _ _x __ s", {}, {}, {}},
      // A state variable may be a member of something.
      {L"a.state.normal", {L"state.normal"}, {}, {}},
      {L"mystate.normal", {}, {}, {}},
      // Comments and preprocessor lines do not count, quotes do.
      {L"// state.normal\n/* sfg_matWorld */\n#if sfg_isConnected(a)\n", {}, {}, {}},
      {L"\"sfg_matWorld\"", {L"sfg_matWorld"}, {}, {}},
      {L"sfg_isConnected(a) sfg_shader(b, c) sfg_isFinalOutput()",
       {},
       {L"sfg_isConnected(a)", L"sfg_isFinalOutput()"},
       {L"sfg_shader(b, c)"}},
      // Without an argument list the entry has no range.
      {L"sfg_isConnected; sfg_shader", {}, {L""}, {L""}},
      // Arguments are not looked at.
      {L"sfg_isConnected(state.normal, sfg_shader(a))",
       {},
       {L"sfg_isConnected(state.normal, sfg_shader(a))"},
       {}},
      {L"sfg_isConnected(sfg_isConnected(a", {}, {L"sfg_isConnected(sfg_isConnected(a"}, {}},
  };
  for (const Body& body : bodies)
    inEveryPlace(body.text, [&](const ScopedText& view) {
      SCOPED_TRACE(std::string(body.text, body.text + std::wstring_view(body.text).size()));
      ShaderSymbol symbol;
      symbol.parseKeywords(view);
      std::vector<std::wstring> variables;
      for (const UString& v : symbol.getStateVariables()) variables.emplace_back(v.view());
      EXPECT_EQ(variables, body.stateVariables);
      EXPECT_EQ(callTexts(symbol.getBuiltinFunctions()), body.builtins);
      EXPECT_EQ(callTexts(symbol.getShaderFunctions()), body.shaders);
    });
}

TEST(ParseKeywords, KnowsEveryStateVariable) {
  for (const StateVariableInfo& variable : allStateVariables()) {
    ShaderSymbol symbol;
    symbol.parseKeywords(variable.name.str());
    EXPECT_EQ(symbol.getStateVariables(), Set<UString>{variable.name});
  }
}

TEST(ParseKeywords, RecordsIdsAndArguments) {
  const WString body = L"sfg_isConnected(a) sfg_isFinalOutput(b, c) sfg_shader(d)";
  ShaderSymbol symbol;
  symbol.parseKeywords(body);
  ASSERT_EQ(symbol.getBuiltinFunctions().size(), 2u);
  EXPECT_EQ(symbol.getBuiltinFunctions()[0].id, eBuiltinFunctionIsConnected);
  EXPECT_EQ(symbol.getBuiltinFunctions()[1].id, eBuiltinFunctionIsFinalOutput);
  ASSERT_EQ(symbol.getBuiltinFunctions()[1].arguments.size(), 2u);
  EXPECT_EQ(symbol.getBuiltinFunctions()[1].arguments[1].view(), L"c");
  ASSERT_EQ(symbol.getShaderFunctions().size(), 1u);
  EXPECT_EQ(symbol.getShaderFunctions()[0].id, eBuiltinFunctionShader);
}

TEST(ParseKeywords, StartsAnewExceptForShaderFunctions) {
  const WString first = L"sfg_matWorld sfg_isConnected(a) sfg_shader(b)";
  const WString second = L"sfg_shader(c)";
  ShaderSymbol symbol;
  symbol.parseKeywords(first);
  symbol.parseKeywords(second);
  EXPECT_TRUE(symbol.getStateVariables().empty());
  EXPECT_TRUE(symbol.getBuiltinFunctions().empty());
  EXPECT_EQ(callTexts(symbol.getShaderFunctions()),
            (std::vector<std::wstring>{L"sfg_shader(b)", L"sfg_shader(c)"}));
  symbol.clear();
  EXPECT_TRUE(symbol.getShaderFunctions().empty());
}

TEST(ShaderSymbol, OnlyTheBodyOfAFunctionIsLookedAt) {
  const auto isEmpty = [](const ShaderSymbol& s) {
    return s.getStateVariables().empty() && s.getBuiltinFunctions().empty() && s.getShaderFunctions().empty();
  };
  for (const wchar_t* code : {L"struct S { sfg_matWorld sfg_isConnected(a) };", L"float x = sfg_time;",
                              L"technique t { sfg_shader(a) }", L"void f(int a = sfg_time);"})
    EXPECT_TRUE(isEmpty(find(ScopedText(code, std::wstring_view(code).size())).symbol));
  const WString function = L"float f() { return sfg_time; }";
  EXPECT_FALSE(isEmpty(find(function).symbol));
}

TEST(ShaderSymbol, SettersSetTheirMembers) {
  const WString text = L"name range";
  const WString body = L"sfg_isConnected(a)";
  ShaderSymbol from;
  from.parseKeywords(body);
  ShaderSymbol symbol;
  symbol.setKey(L"key");
  symbol.setName(ScopedText(text, 0, 4));
  symbol.setRange(ScopedText(text, 5, 5));
  symbol.setStateVariables({UString(L"sfg_time")});
  symbol.setBuiltinFunctions(from.getBuiltinFunctions());
  const ShaderSymbol copy = symbol;
  EXPECT_EQ(copy.getType(), Type::unknown);
  EXPECT_EQ(copy.getKey(), L"key");
  EXPECT_EQ(copy.getName().view(), L"name");
  EXPECT_EQ(copy.getRange().view(), L"range");
  EXPECT_EQ(copy.getStateVariables(), Set<UString>{UString(L"sfg_time")});
  EXPECT_EQ(callTexts(copy.getBuiltinFunctions()), (std::vector<std::wstring>{L"sfg_isConnected(a)"}));
}

TEST(ShaderSymbol, CopiesEveryMember) {
  const WString code = L"float f() { return sfg_time * sfg_isConnected(a) * sfg_shader(b); }";
  const ShaderSymbol symbol = find(code).symbol;
  const ShaderSymbol constructed = symbol;
  const WString uniform = L"int x;";
  ShaderSymbol assigned = find(uniform).symbol;
  assigned = symbol;
  for (const ShaderSymbol* copy : {&constructed, &std::as_const(assigned)}) {
    EXPECT_EQ(copy->getType(), Type::function);
    EXPECT_EQ(copy->getKey(), symbol.getKey());
    EXPECT_EQ(copy->getRange().text, code.data());
    EXPECT_EQ(copy->getRange().view(), code);
    EXPECT_EQ(copy->getName().view(), L"f");
    EXPECT_EQ(copy->getStateVariables(), Set<UString>{UString(L"sfg_time")});
    EXPECT_EQ(callTexts(copy->getBuiltinFunctions()), (std::vector<std::wstring>{L"sfg_isConnected(a)"}));
    EXPECT_EQ(callTexts(copy->getShaderFunctions()), (std::vector<std::wstring>{L"sfg_shader(b)"}));
  }
}

TEST(ShaderSymbol, ClearsEverything) {
  const WString code = L"float f() { return sfg_time * sfg_isConnected(a) * sfg_shader(b); }";
  ShaderSymbol symbol = find(code).symbol;
  symbol.clear();
  EXPECT_EQ(symbol.getType(), Type::unknown);
  EXPECT_EQ(symbol.getKey(), L"");
  EXPECT_EQ(symbol.getRange().text, nullptr);
  EXPECT_EQ(symbol.getName().text, nullptr);
  EXPECT_TRUE(symbol.getStateVariables().empty());
  EXPECT_TRUE(symbol.getBuiltinFunctions().empty());
  EXPECT_TRUE(symbol.getShaderFunctions().empty());
}

TEST(ShaderSymbol, ConstructingAnewForgetsTheOld) {
  const WString code = L"float f() { return sfg_time * sfg_shader(b); }";
  ShaderSymbol symbol = find(code).symbol;
  const WString uniform = L"int x;";
  symbol.constructUniform(ScopedText(uniform, 4, 1), uniform);
  EXPECT_EQ(symbol.getType(), Type::uniform);
  EXPECT_EQ(symbol.getKey(), L"intx;");
  EXPECT_TRUE(symbol.getStateVariables().empty());
  EXPECT_TRUE(symbol.getShaderFunctions().empty());
}

/// Access to what derived classes may do.
struct DerivedSymbol : ShaderSymbol {
  using ShaderSymbol::clearThis;
  using ShaderSymbol::parseKeyword;
  using ShaderSymbol::zeroThis;
};

TEST(ShaderSymbol, ZeroThisForgetsTheTypeOnly) {
  const WString text = L"x";
  DerivedSymbol symbol;
  symbol.constructUniform(text, text);
  symbol.zeroThis();
  EXPECT_EQ(symbol.getType(), Type::unknown);
  EXPECT_EQ(symbol.getKey(), L"x");
  symbol.clearThis();
  EXPECT_EQ(symbol.getKey(), L"");
}

TEST(ShaderSymbol, ClassifiesOneWord) {
  const WString text = L"sfg_shader (a) b";
  DerivedSymbol symbol;
  std::size_t pos = 10;
  symbol.parseKeyword(ScopedText(text, 0, 10), text, pos);
  EXPECT_EQ(pos, 14u);
  EXPECT_EQ(callTexts(symbol.getShaderFunctions()), (std::vector<std::wstring>{L"sfg_shader (a)"}));
  pos = 16;
  symbol.parseKeyword(ScopedText(text, 15, 1), text, pos);
  EXPECT_EQ(pos, 16u);
  EXPECT_TRUE(symbol.getBuiltinFunctions().empty());
}

struct Instance {
  explicit Instance(const WString& code) : code_(code), symbol(find(code_).symbol) {}
  ShaderSymbolInstance& construct(const Array<WString>& renames, std::size_t first = 0) {
    instance.construct(&symbol, renames, first);
    return instance;
  }
  WString text() const {
    KeywordReplacer replacer;
    replacer.addReplacePattern(instance.getKeywordReplacePattern());
    WString out;
    replacer.appendAndReplace(out, instance.getText());
    return out;
  }

  WString code_;
  ShaderSymbol symbol;
  ShaderSymbolInstance instance;
};

TEST(ShaderSymbolInstance, RenamesBuiltinCallsByPosition) {
  Instance i(L" bool f() { return sfg_isConnected(a) && sfg_isFinalOutput( b ); }");
  i.construct({L"true", L"false"});
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey() + L"truefalse");
  EXPECT_EQ(i.instance.getKey(), i.symbol.getKey());
  EXPECT_EQ(i.instance.getName().view(), L"f");
  EXPECT_EQ(i.instance.getText().view(), i.symbol.getRange().view());
  EXPECT_EQ(i.instance.getKeywordReplacePattern().getPositionalReplacements(),
            (KeywordReplacePattern::PositionalReplacements{{{18, 18}, L"true"}, {{40, 22}, L"false"}}));
  EXPECT_EQ(i.text(), L"bool f() { return true && false; }");
}

TEST(ShaderSymbolInstance, TakesItsRenamesFromAnIndexOn) {
  Instance i(L"bool f() { return sfg_isConnected(a); }");
  i.construct({L"zero", L"one", L"two"}, 1);
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey() + L"one");
  EXPECT_EQ(i.text(), L"bool f() { return one; }");
}

TEST(ShaderSymbolInstance, CallsWithoutARenameStay) {
  Instance i(L"bool f() { return sfg_isConnected(a) && sfg_isConnected(b); }");
  i.construct({L"x"});
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey() + L"x");
  EXPECT_EQ(i.text(), L"bool f() { return x && sfg_isConnected(b); }");
  for (const std::size_t first : positionsBehind(1)) {
    i.construct({L"x"}, first);
    EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey());
    EXPECT_TRUE(i.instance.getKeywordReplacePattern().empty());
  }
}

TEST(ShaderSymbolInstance, ANameWithoutArgumentsStaysButCounts) {
  Instance i(L"bool f() { return sfg_isConnected + sfg_isConnected(b); }");
  i.construct({L"x", L"y"});
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey() + L"xy");
  EXPECT_EQ(i.text(), L"bool f() { return sfg_isConnected + y; }");
}

TEST(ShaderSymbolInstance, ShaderFunctionsTakeNoRename) {
  Instance i(L"bool f() { return sfg_shader(a) + sfg_isConnected(b); }");
  i.construct({L"x"});
  EXPECT_EQ(i.text(), L"bool f() { return sfg_shader(a) + x; }");
}

TEST(ShaderSymbolInstance, IsEmptyWithoutASymbol) {
  Instance i(L"bool f() { return sfg_isConnected(a); }");
  i.construct({L"true"});
  i.instance.construct(nullptr, {L"true"}, 0);
  EXPECT_EQ(i.instance.getInstanceKey(), L"");
  EXPECT_EQ(i.instance.getKey(), L"");
  EXPECT_TRUE(i.instance.getName().empty());
  EXPECT_TRUE(i.instance.getText().empty());
  EXPECT_TRUE(i.instance.getKeywordReplacePattern().empty());
  const ShaderSymbolInstance fresh;
  EXPECT_EQ(fresh.getInstanceKey(), L"");
}

TEST(ShaderSymbolInstance, ConstructingAnewForgetsTheOldRenames) {
  Instance i(L"bool f() { return sfg_isConnected(a); }");
  i.construct({L"true"});
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey() + L"true");
  i.construct({L"false"});
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey() + L"false");
  i.construct({});
  EXPECT_EQ(i.instance.getInstanceKey(), i.symbol.getKey());
  EXPECT_TRUE(i.instance.getKeywordReplacePattern().empty());
}

TEST(ShaderSymbol, MakesItsKeyAtTheFirstQuestionInAnyThread) {
  const WString code = L"void f(float a) { a = 1; }";
  const ShaderSymbol symbol = find(code).symbol;
  EXPECT_TRUE(symbol.hasKey());
  EXPECT_EQ(symbol.getIdentity(), code);

  std::vector<WString> keys(4);
  std::vector<std::thread> threads;
  for (WString& key : keys) {
    threads.emplace_back([&symbol, &key] {
      const ShaderSymbol copy = symbol;
      key = symbol.getKey() == copy.getKey() ? copy.getKey() : WString();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(keys, std::vector<WString>(4, L"voidf(floata)10" + SHA1_GetStringHash(code)));
}

TEST(ShaderSymbol, KeepsItsKeyWhenItsRangeIsSetLater) {
  const WString code = L"void f() {}";
  ShaderSymbol symbol = find(code).symbol;
  symbol.setRange(ScopedText());
  EXPECT_EQ(symbol.getKey(), L"voidf()2" + SHA1_GetStringHash(code));
}

TEST(ShaderSymbol, IsTheOneItHoldsNow) {
  const WString code = L"void f() {}\nfloat x;";
  ScopedText rest = code;
  ShaderSymbol symbol;
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(symbol, rest));
  EXPECT_EQ(symbol.getIdentity(), L"void f() {}\n");
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(symbol, rest));
  EXPECT_EQ(symbol.getIdentity(), L"floatx;");

  symbol = find(code).symbol;
  symbol.setKey(L"key");
  EXPECT_EQ(symbol.getKey(), L"key");
  EXPECT_EQ(symbol.getIdentity(), L"key");
}

TEST(ShaderSymbol, ACopyHasItsKeyWhenTheTextIsGone) {
  auto code = std::make_unique<WString>(L"void f(float a) { a = 1; }");
  const WString key = L"voidf(floata)10" + SHA1_GetStringHash(*code);
  const ShaderSymbol copied = find(*code).symbol;
  const ShaderSymbol copy = copied;
  const WString uniform = L"int x;";
  ShaderSymbol assigned = find(uniform).symbol;
  assigned = copied;
  ShaderSymbol moved = find(*code).symbol;
  const ShaderSymbol copyOfCopy = copy;
  moved = ShaderSymbol(moved);
  code.reset();
  for (const ShaderSymbol* symbol : {&copy, &std::as_const(assigned), &copyOfCopy, &std::as_const(moved)}) {
    EXPECT_EQ(symbol->getKey(), key);
    EXPECT_EQ(symbol->getIdentity(), key);
    EXPECT_TRUE(symbol->hasOwnKey());
  }
}

TEST(ShaderSymbol, AssignsItselfToItself) {
  const WString code = L"void f() {}";
  ShaderSymbol symbol = find(code).symbol;
  const ShaderSymbol& same = symbol;
  symbol = same;
  EXPECT_EQ(symbol.getKey(), L"voidf()2" + SHA1_GetStringHash(code));
  EXPECT_EQ(symbol.getRange().view(), code);
}

TEST(ShaderSymbol, KnowsWhetherItsKeyIsItsOwn) {
  const WString code = L"void f() {}";
  const ScopedText text(code);
  ShaderSymbol parsed;
  std::size_t pos = 0;
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(parsed, text, pos));
  EXPECT_FALSE(parsed.hasOwnKey());
  parsed.getKey();
  EXPECT_FALSE(parsed.hasOwnKey());
  EXPECT_EQ(parsed.getIdentity(), code);

  ShaderSymbol set;
  EXPECT_FALSE(set.hasOwnKey());
  set.setKey(parsed.getKey());
  EXPECT_TRUE(set.hasOwnKey());
  EXPECT_EQ(set.getKey(), parsed.getKey());
  EXPECT_NE(set.getIdentity(), parsed.getIdentity()) << "only the keys tell that they are the same";
  set.clear();
  EXPECT_FALSE(set.hasOwnKey());

  // One text, but different signatures.
  ShaderSymbol byHand;
  byHand.constructFunction(text.substr(0, 4), text.substr(5, 1), text.substr(6, 1), text.substr(9, 2));
  EXPECT_TRUE(byHand.hasOwnKey());
  EXPECT_EQ(byHand.getIdentity(), parsed.getIdentity());
  EXPECT_NE(byHand.getKey(), parsed.getKey());
  byHand.constructPlainFunction(text.substr(0, 4), text.substr(5, 1), text.substr(6, 2), text.substr(9, 2));
  EXPECT_FALSE(byHand.hasOwnKey());
  EXPECT_EQ(byHand.getKey(), parsed.getKey());
  byHand.constructUniform(text, text);
  EXPECT_TRUE(byHand.hasOwnKey());
  byHand.constructStruct(text, text, text);
  EXPECT_TRUE(byHand.hasOwnKey());
  byHand.constructTechnique(text, text);
  EXPECT_TRUE(byHand.hasOwnKey());
  for (const wchar_t* other : {L"struct S;", L"float x;", L"technique T { }"}) {
    const WString declaration = other;
    pos = 0;
    ASSERT_TRUE(ShaderSymbol::findFirstSymbol(byHand, declaration, pos));
    EXPECT_FALSE(byHand.hasOwnKey()) << other;
    EXPECT_FALSE(ShaderSymbol(byHand).hasOwnKey()) << "a copy's key is the one that was parsed";
  }

  ShaderSymbolInstance instance;
  EXPECT_FALSE(instance.hasOwnKey());
  set.setKey(L"key");
  instance.construct(&set, {}, 0);
  EXPECT_TRUE(instance.hasOwnKey());
  instance.construct(&parsed, {}, 0);
  EXPECT_FALSE(instance.hasOwnKey());
}

TEST(ShaderSymbol, MayBeConstructedFromItsOwnViews) {
  const WString code = L"float x;";
  ShaderSymbol symbol;
  const auto reset = [&] { symbol.constructUniform(ScopedText(code, 6, 1), code); };
  const auto expect = [&](Type type, const wchar_t* key, std::wstring_view name) {
    EXPECT_EQ(symbol.getType(), type);
    EXPECT_EQ(symbol.getKey(), key);
    EXPECT_EQ(symbol.getName().view(), name);
    EXPECT_EQ(symbol.getRange().view(), code);
  };
  reset();
  symbol.constructUniform(symbol.getName(), symbol.getRange());
  expect(Type::uniform, L"floatx;", L"x");
  symbol.constructStruct(symbol.getName(), symbol.getRange(), symbol.getRange());
  expect(Type::structure, L"floatx;", L"x");
  symbol.constructTechnique(symbol.getName(), symbol.getRange());
  expect(Type::technique, L"x", L"x");
  reset();
  symbol.constructFunction(symbol.getRange(), symbol.getName(), symbol.getRange(), symbol.getRange());
  expect(Type::function, (L"floatx;8" + SHA1_GetStringHash(code)).c_str(), L"x");
  reset();
  symbol.constructPlainFunction(symbol.getRange(), symbol.getName(), symbol.getRange(), symbol.getRange());
  expect(Type::function, (L"floatx;8" + SHA1_GetStringHash(code)).c_str(), L"x");
  reset();
  std::size_t pos = 0;
  EXPECT_TRUE(ShaderSymbol::findFirstSymbol(symbol, symbol.getRange(), pos));
  expect(Type::uniform, L"floatx;", L"x");
}

TEST(ParseKeywords, TakesTheTextOfItsOwnCall) {
  const WString body = L"x = sfg_isConnected(a);";
  ShaderSymbol symbol;
  symbol.parseKeywords(body);
  ASSERT_EQ(symbol.getBuiltinFunctions().size(), 1u);
  symbol.parseKeywords(symbol.getBuiltinFunctions()[0].range);
  EXPECT_EQ(callTexts(symbol.getBuiltinFunctions()), (std::vector<std::wstring>{L"sfg_isConnected(a)"}));
}

static_assert(std::has_virtual_destructor_v<ShaderSymbol>);

TEST(ShaderSymbolIdentity, HasAHashThatFollowsIt) {
  const WString code = L"void f() {}\n";
  const WString other = L"void g() {}\n";
  ShaderSymbol first;
  ShaderSymbol second;
  std::size_t pos = 0;
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(first, ScopedText(code), pos));
  const std::size_t hash = first.getIdentityHash();
  EXPECT_NE(hash, 0u);
  pos = 0;
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(second, ScopedText(code), pos));
  EXPECT_EQ(second.getIdentityHash(), hash);
  first.setKey(L"key");
  EXPECT_NE(first.getIdentityHash(), hash);
  pos = 0;
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(first, ScopedText(other), pos));
  EXPECT_NE(first.getIdentityHash(), hash);
  first = std::move(second);
  EXPECT_EQ(first.getIdentityHash(), hash);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

#include "sfg/shader_fragment_profile_base.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "sfg/shader_fragment_profile_metasl.h"
#include "tests/support/json.h"
#include "tests/support/messages.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;
using TolmSDK::test::parseJson;
using TolmSDK::test::WideOutputCapture;

constexpr std::wstring_view kBody = L"\"implementation\": [\"void f()\", \"{\", \"}\"]";

RefPtr<AShaderFragmentProfile> loaded(const std::wstring& text) {
  return AShaderFragmentProfile::loadProfile(parseJson(text).get());
}

/// A function profile with these members beside languages and an empty function.
RefPtr<AShaderFragmentProfile> loadedWith(const std::wstring& members) {
  return loaded(L"{" + members + L", \"language\": [\"dx11\"], " + std::wstring(kBody) + L"}");
}

std::wstring refusalOf(const std::wstring& text) {
  return messageOf([&] { loaded(text); });
}

Array<WString> texts(const Array<BuiltinFunction>& uses) {
  Array<WString> result;
  for (const BuiltinFunction& use : uses) result.emplace_back(use.range.view());
  return result;
}

// Values that a profile starts with

TEST(Profile, StartsEmpty) {
  auto* fresh = new AShaderFragmentProfileFunction();
  EXPECT_EQ(fresh->referenceCount(), 0u);
  const RefPtr<AShaderFragmentProfile> profile(fresh);
  EXPECT_EQ(profile->getLOD(), 100.0f);
  EXPECT_EQ(profile->getProfilename(), L"");
  EXPECT_EQ(profile->getFunctionName(), L"");
  EXPECT_EQ(std::as_const(*profile).getFunctionBody(), L"");
  EXPECT_TRUE(profile->predefines().empty());
  EXPECT_TRUE(profile->languages().empty());
  EXPECT_TRUE(profile->stateVariables().empty());
  EXPECT_TRUE(profile->customStateVariables().empty());
  EXPECT_TRUE(profile->includes().empty());
  EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), 0u);
  EXPECT_EQ(profile->QueryInterface({0x4fe71654u, 0x25c00a56u}), profile.get());
  EXPECT_EQ(profile->QueryInterface({0x25c00a56u, 0x4fe71654u}), nullptr);
}

TEST(Profile, HasTheModeOfItsClass) {
  EXPECT_EQ(makeRef<AShaderFragmentProfileFunction>()->getMode(), EShaderFragmentProfileMode::Function);
  EXPECT_EQ(makeRef<AShaderFragmentProfileInline>()->getMode(), EShaderFragmentProfileMode::Inline);
  EXPECT_EQ(makeRef<AShaderFragmentProfileMetaSL>()->getMode(), EShaderFragmentProfileMode::MetaSL);
  EXPECT_EQ(static_cast<std::uint32_t>(EShaderFragmentProfileMode::Function), 0u);
  EXPECT_EQ(static_cast<std::uint32_t>(EShaderFragmentProfileMode::Inline), 1u);
  EXPECT_EQ(static_cast<std::uint32_t>(EShaderFragmentProfileMode::MetaSL), 2u);
}

TEST(Profile, AnswersTheSameObjectConstAndWritable) {
  AShaderFragmentProfileFunction* made = new AShaderFragmentProfileFunction();
  const RefPtr<IShaderFragmentProfile> profile(made);
  const IShaderFragmentProfile& constant = *profile;
  EXPECT_EQ(&constant.predefines(), &profile->predefines());
  EXPECT_EQ(&constant.languages(), &profile->languages());
  EXPECT_EQ(&constant.stateVariables(), &profile->stateVariables());
  EXPECT_EQ(&constant.customStateVariables(), &profile->customStateVariables());
  EXPECT_EQ(&constant.includes(), &profile->includes());
  EXPECT_EQ(constant.getFunctionParameters(), profile->getFunctionParameters());
  EXPECT_EQ(&constant.getFunctionBody(), &made->getFunctionBody());
}

TEST(Profile, KeepsWhatTheSettersSet) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setLOD(2.5f);
  profile->setProfilename(L"p");
  profile->setFunctionName(L"f");
  EXPECT_EQ(profile->getLOD(), 2.5f);
  EXPECT_EQ(profile->getProfilename(), L"p");
  EXPECT_EQ(profile->getFunctionName(), L"f");
}

// The profile object

TEST(ProfileObject, ChoosesTheModeClass) {
  const struct {
    const wchar_t* mode;
    EShaderFragmentProfileMode expected;
  } cases[] = {
      {L"inline", EShaderFragmentProfileMode::Inline},    {L"INLINE", EShaderFragmentProfileMode::Inline},
      {L"metaSL", EShaderFragmentProfileMode::MetaSL},    {L"MetaSl", EShaderFragmentProfileMode::MetaSL},
      {L"METASL", EShaderFragmentProfileMode::MetaSL},    {L"function", EShaderFragmentProfileMode::Function},
      {L"inlined", EShaderFragmentProfileMode::Function}, {L"", EShaderFragmentProfileMode::Function},
      {L"inline ", EShaderFragmentProfileMode::Function}};
  for (const auto& c : cases) {
    const auto profile = loadedWith(std::wstring(L"\"mode\": \"") + c.mode + L"\"");
    ASSERT_TRUE(profile);
    EXPECT_EQ(profile->getMode(), c.expected) << c.mode;
  }
  const auto profile = loadedWith(L"\"other\": 1");
  EXPECT_NE(dynamic_cast<AShaderFragmentProfileFunction*>(profile.get()), nullptr);
  EXPECT_EQ(profile->referenceCount(), 1u);
}

TEST(ProfileObject, HasDefaults) {
  const auto profile = loaded(L"{\"language\": [\"dx11\"], " + std::wstring(kBody) + L"}");
  EXPECT_EQ(profile->getProfilename(), L"default");
  EXPECT_EQ(profile->getLOD(), 100.0f);
  EXPECT_EQ(profile->languages(), (Set<UString>{UString(L"dx11")}));
  EXPECT_TRUE(profile->customStateVariables().empty());
  EXPECT_TRUE(profile->includes().empty());
  EXPECT_EQ(profile->predefines(), L"");
}

TEST(ProfileObject, IsRead) {
  const auto profile = loaded(LR"json({"name": "p", "lod": 2.5, "language": ["gl", "dx11", "gl"],
      "stateVariables": ["z", "a", "z"], "includes": ["b.h", "", null, "a.h"],
      "predefine": ["float h()", "{", "return 1;", "}"], "implementation": ["void f(float a, out float r)", "{", "}"]})json");
  EXPECT_EQ(profile->getProfilename(), L"p");
  EXPECT_EQ(profile->getLOD(), 2.5f);
  EXPECT_EQ(profile->languages(), (Set<UString>{UString(L"dx11"), UString(L"gl")}));
  EXPECT_EQ(profile->customStateVariables(), (Set<WString>{L"a", L"z"}));
  EXPECT_EQ(profile->includes(), (Set<WString>{L"a.h", L"b.h"}));
  EXPECT_EQ(profile->predefines(), L"float h()\n{\n\treturn 1;\n}\n");
  EXPECT_EQ(profile->getFunctionName(), L"f");
  EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), 1u);
  EXPECT_EQ(profile->getFunctionParameters()->getNumOutputs(), 1u);
}

TEST(ProfileObject, TakesANumericTextAsLevelOfDetail) {
  EXPECT_EQ(loadedWith(L"\"lod\": \"12.5\"")->getLOD(), 12.5f);
  EXPECT_EQ(loadedWith(L"\"lod\": -1")->getLOD(), -1.0f);
}

TEST(ProfileObject, NeedsALanguage) {
  const std::wstring message = L"Profile doesn't specify the language version. ";
  EXPECT_EQ(refusalOf(L"{" + std::wstring(kBody) + L"}"), message);
  EXPECT_EQ(refusalOf(L"{\"language\": null, " + std::wstring(kBody) + L"}"), message);
  EXPECT_EQ(loaded(L"{\"language\": [], " + std::wstring(kBody) + L"}")->languages(), Set<UString>());
}

TEST(ProfileObject, FailsWithoutAnImplementationInEveryMode) {
  for (const wchar_t* mode : {L"function", L"inline", L"metaSL"}) {
    const std::wstring start = std::wstring(L"{\"language\": [\"dx11\"], \"mode\": \"") + mode + L"\"";
    EXPECT_FALSE(loaded(start + L"}")) << mode;
    EXPECT_FALSE(loaded(start + L", \"implementation\": null}")) << mode;
  }
}

TEST(ProfileObject, FailsWithoutANode) {
  EXPECT_FALSE(AShaderFragmentProfile::loadProfile(nullptr));
  const auto profile = loadedWith(L"\"name\": \"p\"");
  EXPECT_FALSE(profile->load(nullptr));
  EXPECT_EQ(profile->getProfilename(), L"");
}

TEST(ProfileObject, RefusesValuesOfAWrongKind) {
  const struct {
    const wchar_t* members;
    const wchar_t* message;
  } cases[] = {
      {L"\"mode\": 1", L"\"mode\" must be a string, not a number (line 1, column 10)!"},
      {L"\"name\": [1]", L"\"name\" must be a string, not an array (line 1, column 10)!"},
      {L"\"lod\": [1]", L"\"lod\" must be a number, not an array (line 1, column 9)!"},
      {L"\"lod\": \"high\"", L"\"lod\" must be a number, not a string (line 1, column 9)!"},
      {L"\"lod\": true", L"\"lod\" must be a number, not a boolean (line 1, column 9)!"},
      {L"\"lod\": 1e99", L"\"lod\" is out of range (line 1, column 9)!"},
      {L"\"predefine\": 3", L"\"predefine\" must be an array of strings, not a number (line 1, column 15)!"},
      {L"\"predefine\": [\"a\",\n null]",
       L"\"predefine\" must be an array of strings, not null (line 2, column 2)!"},
      {L"\"stateVariables\": \"a\"",
       L"\"stateVariables\" must be an array of strings, not a string (line 1, column 20)!"},
      {L"\"includes\": \"a.h\"",
       L"\"includes\" must be an array of strings, not a string (line 1, column 14)!"},
      {L"\"includes\": [\"a.h\", 1]",
       L"\"includes\" must be an array of strings, not a number (line 1, column 22)!"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(messageOf([&] { loadedWith(c.members); }), std::wstring(L"sfgError : ") + c.message);
  EXPECT_EQ(refusalOf(L"{\"language\": \"dx11\"}"),
            L"sfgError : \"language\" must be an array of strings, not a string (line 1, column 14)!");
  EXPECT_EQ(refusalOf(L"{\"language\": [{}]}"),
            L"sfgError : \"language\" must be an array of strings, not an object (line 1, column 15)!");
  for (const wchar_t* mode : {L"function", L"inline", L"metaSL"}) {
    const std::wstring start =
        std::wstring(L"{\"mode\": \"") + mode + L"\", \"language\": [],\n\"implementation\": ";
    EXPECT_EQ(
        refusalOf(start + L"\"void f()\"}"),
        L"sfgError : \"implementation\" must be an array of strings, not a string (line 2, column 19)!");
  }
  EXPECT_EQ(refusalOf(L"{\"language\": [], \"implementation\": [\"void f()\", 1]}"),
            L"sfgError : \"implementation\" must be an array of strings, not a number (line 1, column 49)!");
  EXPECT_EQ(refusalOf(L"{\"mode\": \"inline\", \"language\": [], \"implementation\": [1]}"),
            L"sfgError : \"implementation\" must be a string, not a number (line 1, column 55)!");
}

TEST(ProfileObject, IsReadThroughTheOperationsThatAModeOverrides) {
  struct Own : AShaderFragmentProfileFunction {
    void clear() override {
      calls.push_back(L"clear");
      AShaderFragmentProfileFunction::clear();
    }
    bool setFunctionPrototype(const WString& prototype) override {
      calls.push_back(L"prototype " + prototype);
      return acceptsPrototype;
    }
    void setFunctionBody(const WString& body) override { calls.push_back(L"body " + body); }
    std::vector<WString> calls;
    bool acceptsPrototype = true;
  };
  const auto node = parseJson(L"{\"language\": [], " + std::wstring(kBody) + L"}");
  const auto profile = makeRef<Own>();
  EXPECT_TRUE(profile->load(node.get()));
  EXPECT_EQ(profile->calls, (std::vector<WString>{L"clear", L"prototype void f(){", L"body "}));
  // A prototype that is answered with false makes the whole load fail, and no body is read.
  profile->calls.clear();
  profile->acceptsPrototype = false;
  EXPECT_FALSE(profile->load(node.get()));
  EXPECT_EQ(profile->calls, (std::vector<WString>{L"clear", L"prototype void f(){"}));

  struct OwnInline : AShaderFragmentProfileInline {
    void setFunctionBody(const WString& body) override {
      AShaderFragmentProfileInline::setFunctionBody(body + L" + 1");
    }
  };
  const auto expression = makeRef<OwnInline>();
  EXPECT_TRUE(expression->load(parseJson(L"{\"language\": [], \"implementation\": [\"{{a}}\"]}").get()));
  EXPECT_EQ(std::as_const(*expression).getFunctionBody(), L"({{a}} + 1)");
}

TEST(ProfileObject, LetsExceptionsOfThePrototypeThrough) {
  EXPECT_EQ(refusalOf(L"{\"language\": [], \"implementation\": [\"int f()\"]}"),
            L"sfgError : Function result type is not void!");
  EXPECT_EQ(refusalOf(L"{\"language\": [], \"implementation\": [\"void f\"]}"),
            L"sfgError : Incorrect function declaration!");
}

TEST(ProfileObject, KeepsWhatWasReadBeforeAFailure) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  const auto node = parseJson(L"{\"name\": \"p\", \"lod\": 3, \"includes\": [\"a.h\"]}");
  EXPECT_EQ(messageOf([&] { profile->load(node.get()); }), L"Profile doesn't specify the language version. ");
  EXPECT_EQ(profile->getProfilename(), L"p");
  EXPECT_EQ(profile->getLOD(), 3.0f);
  EXPECT_TRUE(profile->includes().empty());
}

// Prototypes

TEST(Prototype, GivesNameAndParameters) {
  const struct {
    const wchar_t* prototype;
    const wchar_t* name;
    std::size_t inputs;
    std::size_t outputs;
  } cases[] = {{L"void f()", L"f", 0, 0},
               {L"void f(float a, out float3 b, float c)", L"f", 2, 1},
               {L"void  f(float a)", L" f", 1, 0},  // not trimmed
               {L"void f (float a)", L"f ", 1, 0},
               {L"void (float a)", L"", 1, 0},
               {L"void f(float a) { return; }", L"f", 1, 0},
               {L"void f(\n  float a) : SEMANTIC )", L"f", 1, 0}};
  for (const auto& c : cases) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    EXPECT_TRUE(profile->setFunctionPrototype(c.prototype));
    EXPECT_EQ(profile->getFunctionName(), c.name);
    EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), c.inputs) << c.prototype;
    EXPECT_EQ(profile->getFunctionParameters()->getNumOutputs(), c.outputs) << c.prototype;
  }
}

TEST(Prototype, IsRefusedOtherwise) {
  constexpr const wchar_t* kResult = L"sfgError : Function result type is not void!";
  constexpr const wchar_t* kDeclaration = L"sfgError : Incorrect function declaration!";
  const struct {
    const wchar_t* prototype;
    const wchar_t* message;
  } cases[] = {{L"", kResult},
               {L"void", kResult},
               {L"voidfoo()", kResult},
               {L"int f()", kResult},
               {L" void f()", kResult},
               {L"static void f()", kResult},
               {L"void ", kDeclaration},
               {L"void f", kDeclaration},
               {L"void f)", kDeclaration},
               {L"void f(float a", kDeclaration},
               {L"void f)(", kDeclaration},
               {L"void f(float)", kDeclaration},
               {L"void f(float a[2])", kDeclaration}};
  for (const auto& c : cases) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    EXPECT_EQ(messageOf([&] { profile->setFunctionPrototype(c.prototype); }), c.message) << c.prototype;
  }
}

// Bodies and predefines

TEST(Body, GivesStateVariablesAndBuiltinCalls) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->stateVariables().insert(StateVariable_time);
  profile->setFunctionBody(
      L"r = sfg_worldNormal + state.position * sfg_isConnected(a) + sfg_shader(tex, uv);");
  EXPECT_EQ(profile->stateVariables(),
            (Set<UString>{StateVariable_time, StateVariable_worldNormal, StateVariable_mslState_position}));
  EXPECT_EQ(texts(profile->getBodyBuiltinFunctions()), (Array<WString>{L"sfg_isConnected(a)"}));
  EXPECT_TRUE(profile->getPredefineBuiltinFunctions().empty());
  Array<BuiltinFunction> uses;
  ASSERT_TRUE(profile->GetShaderFunctions(L"tex", uses));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(tex, uv)"}));
  EXPECT_TRUE(profile->hasShaderFunctions(L"tex"));
}

TEST(Body, ReplacesBuiltinCallsButGathersTheRest) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setFunctionBody(L"sfg_isConnected(a) sfg_shader(t) sfg_time");
  profile->setFunctionBody(L"sfg_isConnected(b) sfg_shader(t, u) sfg_worldNormal");
  EXPECT_EQ(texts(profile->getBodyBuiltinFunctions()), (Array<WString>{L"sfg_isConnected(b)"}));
  EXPECT_EQ(profile->stateVariables(), (Set<UString>{StateVariable_time, StateVariable_worldNormal}));
  Array<BuiltinFunction> uses;
  ASSERT_TRUE(profile->GetShaderFunctions(L"t", uses));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(t)", L"sfg_shader(t, u)"}));
}

TEST(Predefines, AreFormattedAndParsed) {
  const auto profile = loadedWith(
      LR"json("predefine": ["float h(float x)", "   {", "if (sfg_isConnected(x)) return sfg_time;", "return sfg_shader(t, x);", "}"])json");
  EXPECT_EQ(
      profile->predefines(),
      L"float h(float x)\n{\n\tif (sfg_isConnected(x)) return sfg_time;\n\treturn sfg_shader(t, x);\n}\n");
  EXPECT_EQ(profile->stateVariables(), (Set<UString>{StateVariable_time}));
  EXPECT_EQ(texts(profile->getPredefineBuiltinFunctions()), (Array<WString>{L"sfg_isConnected(x)"}));
  Array<BuiltinFunction> uses;
  ASSERT_TRUE(profile->GetShaderFunctions(L"t", uses));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(t, x)"}));
}

TEST(ShaderFunctions, GatherPredefinesFirst) {
  const auto profile =
      loaded(LR"json({"language": ["dx11"], "predefine": ["float h() { return sfg_shader(t, inPredefine); }"],
      "implementation": ["void f(float t)", "{", "sfg_shader(t, inBody); sfg_shader(u); sfg_shader(); sfg_shader;", "}"]})json");
  Array<BuiltinFunction> uses;
  ASSERT_TRUE(profile->GetShaderFunctions(L"t", uses));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(t, inPredefine)", L"sfg_shader(t, inBody)"}));
  ASSERT_TRUE(profile->GetShaderFunctions(L"u", uses));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(u)"}));
  // The array asked for stays as it is when there is nothing; calls without arguments are nowhere.
  EXPECT_FALSE(profile->GetShaderFunctions(L"T", uses));
  EXPECT_FALSE(profile->GetShaderFunctions(L"", uses));
  EXPECT_FALSE(profile->hasShaderFunctions(L""));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(u)"}));
}

TEST(ShaderFunctions, AreRemovedByTheDefaultPattern) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  EXPECT_TRUE(profile->GetDefaultShaderRepalcePattern().empty());
  profile->setFunctionBody(L"sfg_shader(t, z) sfg_shader(s) sfg_shader(t, a)");
  const KeywordReplacePattern& pattern = profile->GetDefaultShaderRepalcePattern();
  EXPECT_EQ(pattern.getKeywords(),
            (Array<WString>{L"sfg_shader(s)", L"sfg_shader(t, z)", L"sfg_shader(t, a)"}));
  EXPECT_EQ(pattern.getReplacements(), (Array<WString>{L"", L"", L""}));
  EXPECT_TRUE(pattern.getPositionalReplacements().empty());
  // Built once.
  profile->setFunctionBody(L"sfg_shader(late)");
  EXPECT_EQ(profile->GetDefaultShaderRepalcePattern().getKeywords().size(), 3u);
}

// Clearing and loading again

TEST(Clear, LeavesTheCallsFoundAndThePattern) {
  const auto profile = loaded(
      LR"json({"name": "p", "lod": 3, "language": ["dx11"], "stateVariables": ["c"], "includes": ["a.h"],
      "predefine": ["float h() { return sfg_isConnected(p) + sfg_time; }"],
      "implementation": ["void f(float a, out float b)", "{", "sfg_isConnected(a); sfg_shader(t);", "}"]})json");
  profile->GetDefaultShaderRepalcePattern();
  profile->clear();
  EXPECT_EQ(profile->getProfilename(), L"");
  EXPECT_EQ(profile->getLOD(), 100.0f);
  EXPECT_EQ(profile->predefines(), L"");
  EXPECT_EQ(profile->getFunctionName(), L"");
  EXPECT_EQ(std::as_const(*profile).getFunctionBody(), L"");
  EXPECT_TRUE(profile->languages().empty());
  EXPECT_TRUE(profile->stateVariables().empty());
  EXPECT_TRUE(profile->customStateVariables().empty());
  EXPECT_TRUE(profile->includes().empty());
  EXPECT_EQ(profile->getFunctionParameters()->getNumInputs(), 0u);
  EXPECT_EQ(profile->getFunctionParameters()->getNumOutputs(), 0u);
  // What views the texts of before is still there, and so are the texts.
  EXPECT_EQ(texts(profile->getPredefineBuiltinFunctions()), (Array<WString>{L"sfg_isConnected(p)"}));
  EXPECT_EQ(texts(profile->getBodyBuiltinFunctions()), (Array<WString>{L"sfg_isConnected(a)"}));
  EXPECT_TRUE(profile->hasShaderFunctions(L"t"));
  EXPECT_EQ(profile->GetDefaultShaderRepalcePattern().getKeywords(), (Array<WString>{L"sfg_shader(t)"}));
}

TEST(Load, ReplacesTheFieldsAndKeepsViewsAlive) {
  const auto profile =
      loaded(LR"json({"language": ["dx11"], "predefine": ["float h() { return sfg_isConnected(p); }"],
      "implementation": ["void f()", "{", "sfg_isConnected(a); sfg_shader(t, one);", "}"]})json");
  const auto second = parseJson(LR"json({"name": "q", "language": ["gl"],
      "predefine": ["float k() { return sfg_isFinalOutput(q); }"],
      "implementation": ["void g()", "{", "sfg_shader(t, two);", "}"]})json");
  ASSERT_TRUE(profile->load(second.get()));
  EXPECT_EQ(profile->languages(), (Set<UString>{UString(L"gl")}));
  EXPECT_EQ(profile->predefines(), L"float k() { return sfg_isFinalOutput(q); }\n");
  EXPECT_EQ(texts(profile->getPredefineBuiltinFunctions()), (Array<WString>{L"sfg_isFinalOutput(q)"}));
  EXPECT_TRUE(profile->getBodyBuiltinFunctions().empty());
  Array<BuiltinFunction> uses;
  ASSERT_TRUE(profile->GetShaderFunctions(L"t", uses));
  EXPECT_EQ(texts(uses), (Array<WString>{L"sfg_shader(t, one)", L"sfg_shader(t, two)"}));
}

TEST(WritableBody, LeavesTheTextThatCallsView) {
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setFunctionBody(L"sfg_isConnected(a);");
  WString& body = profile->getFunctionBody();
  body.insert(0, 1000, L'x');
  EXPECT_EQ(texts(profile->getBodyBuiltinFunctions()), (Array<WString>{L"sfg_isConnected(a)"}));
  EXPECT_EQ(std::as_const(*profile).getFunctionBody().size(), 1019u);
  EXPECT_EQ(&profile->getFunctionBody(), &body);
}

// Dumps

TEST(ProfileDump, WritesEverySectionToTheCharacter) {
  const auto profile = loaded(
      LR"json({"name": "p", "language": ["dx11"], "stateVariables": ["z", "c"], "includes": ["b.h", "a.h"],
      "predefine": ["float h()", "{", "return sfg_time;", "}"],
      "implementation": ["void f(float a, out float3 b)", "{", "b = sfg_worldNormal;", "}"]})json");
  WideOutputCapture capture;
  profile->debugDump(L"--");
  EXPECT_EQ(capture.text(), L"--profile name: p\n"
                            L"--required code: \n"
                            L"float h()\n{\n\treturn sfg_time;\n}\n\n"
                            L"--state variables: \n"
                            L"--    sfg_time\n"
                            L"--    sfg_worldNormal\n"
                            L"--custom state variables: \n"
                            L"--    c\n"
                            L"--    z\n"
                            L"--includes: \n"
                            L"--    a.h\n"
                            L"--    b.h\n"
                            L"--void f(\n"
                            L"--    float a,\n"
                            L"--    out float3 b)\n"
                            L"--{\n"
                            L"\tb = sfg_worldNormal;\n"
                            L"\n"
                            L"--}\n");
}

TEST(ProfileDump, LeavesEmptySectionsOut) {
  WideOutputCapture capture;
  makeRef<AShaderFragmentProfileInline>()->debugDump(L"");
  EXPECT_EQ(capture.text(), L"profile name: \nvoid ()\n{\n\n}\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

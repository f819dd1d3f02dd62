#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include <unistd.h>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_includes.h"
#include "tests/support/json.h"
#include "tests/support/messages.h"
#include "tolmsdk/sha1.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;
using TolmSDK::test::parseJson;

const UString kLoadedLanguage(L"dx11");

RefPtr<AShaderFragment> loaded(std::wstring_view text) {
  const auto fragment = makeRef<AShaderFragment>();
  EXPECT_TRUE(fragment->load(parseJson(text).get()));
  return fragment;
}

/// The message with which the object is refused, and what the fragment then says it was reading.
struct Refusal {
  std::wstring message;
  std::wstring place;
};

Refusal refusalOf(std::wstring_view text) {
  const auto fragment = makeRef<AShaderFragment>();
  const auto node = parseJson(text);
  Refusal refusal;
  refusal.message = messageOf([&] { fragment->load(node.get()); });
  refusal.place = fragment->getLoadError();
  return refusal;
}

constexpr std::wstring_view kOneProfile =
    LR"json({"name": "p", "lod": 7, "language": ["dx11"], "implementation": ["void f(float a, out float r)", "{", "r = a;", "}"]
})json";

TEST(FragmentLoad, ReadsTheObjectItselfAsItsOneProfile) {
  const auto fragment = loaded(kOneProfile);
  ASSERT_EQ(fragment->getNumProfiles(), 1u);
  EXPECT_EQ(fragment->getProfile(0)->getProfilename(), L"p");
  EXPECT_EQ(fragment->findBestProfile(L"p", kLoadedLanguage, 0.0f), fragment->getProfile(0));
  EXPECT_EQ(fragment->getNumInputs(), 0u);  // ports come from elsewhere
  EXPECT_EQ(fragment->getNumUniforms(), 0u);
}

TEST(FragmentLoad, TakesEmptyAndNullProfilesForNone) {
  for (const wchar_t* profiles : {L"[]", L"[null]", L"[null, null]", L"null"}) {
    const std::wstring text =
        std::wstring(L"{\"profiles\": ") + profiles +
        L", \"language\": [\"dx11\"], \"implementation\": [\"void own()\", \"{\", \"}\"]}";
    const auto fragment = loaded(text);
    ASSERT_EQ(fragment->getNumProfiles(), 1u) << text.size();
    EXPECT_EQ(fragment->getProfile(0)->getFunctionName(), L"own");
  }
}

TEST(FragmentLoad, ReadsProfilesInOrderWithoutNulls) {
  const auto fragment = loaded(LR"json({"profiles": [
      {"name": "a", "language": ["dx11"], "implementation": ["void f()", "{", "}"]},
      null,
      {"name": "none", "language": [], "implementation": ["void g()", "{", "}"]},
      {"name": "b", "language": ["dx11"], "implementation": ["void h()", "{", "}"]}]
})json");
  ASSERT_EQ(fragment->getNumProfiles(), 2u);  // one without languages is not registered
  EXPECT_EQ(fragment->getProfile(0)->getProfilename(), L"a");
  EXPECT_EQ(fragment->getProfile(1)->getProfilename(), L"b");
}

TEST(FragmentLoad, ReadsUniforms) {
  const auto fragment = loaded(LR"json({"language": ["dx11"], "implementation": ["void f()", "{", "}"],
      "uniforms": [{"name": "u", "type": "float3"}, {"name": "s", "type": "struct", "struct": "S"}]})json");
  ASSERT_EQ(fragment->getNumUniforms(), 2u);
  EXPECT_EQ(fragment->getUniform(0)->getName(), L"u");
  EXPECT_EQ(fragment->getUniform(0)->getType(), TypeID_fvec3);
  EXPECT_EQ(fragment->getUniform(1)->getStructName(), L"S");
}

TEST(FragmentLoad, AnswersFalseForNothing) {
  const auto fragment = loaded(kOneProfile);
  const WString hash = fragment->getHashString();
  fragment->key() = L"k";
  EXPECT_FALSE(fragment->load(nullptr));
  EXPECT_EQ(fragment->getNumProfiles(), 0u);
  EXPECT_EQ(fragment->key(), L"");
  EXPECT_EQ(fragment->getHashString(), hash);  // only a load that succeeds changes it
}

TEST(FragmentLoad, NamesTheProfileThatFails) {
  const Refusal refusal = refusalOf(LR"json({"profiles": [
      {"language": ["dx11"], "implementation": ["void f()", "{", "}"]},
      null,
      {"language": ["dx11"]}]
})json");
  EXPECT_EQ(refusal.message, L"sfgError : Failed to load profile 1!");
  EXPECT_EQ(refusal.place, L"profile 1 (line 4, column 7)");
}

TEST(FragmentLoad, KeepsWhatWasReadBeforeTheProfileThatFails) {
  const auto fragment = makeRef<AShaderFragment>();
  const auto node = parseJson(LR"json({"profiles": [
      {"language": ["dx11"], "implementation": ["void f()", "{", "}"]
}, {"language": ["dx11"]}]
})json");
  EXPECT_EQ(messageOf([&] { fragment->load(node.get()); }), L"sfgError : Failed to load profile 1!");
  EXPECT_EQ(fragment->getNumProfiles(), 1u);
}

TEST(FragmentLoad, NamesTheOnlyProfileZero) {
  EXPECT_EQ(refusalOf(LR"json({"language": ["dx11"]})json").message, L"sfgError : Failed to load profile 0!");
  EXPECT_EQ(refusalOf(LR"json({"language": ["dx11"], "implementation": null})json").message,
            L"sfgError : Failed to load profile 0!");
}

TEST(FragmentLoad, LetsExceptionsOfProfilesThrough) {
  const Refusal refusal = refusalOf(LR"json({"profiles": [{"name": "p"}]})json");
  EXPECT_EQ(refusal.message, L"Profile doesn't specify the language version. ");
  EXPECT_EQ(refusal.place, L"profile 0 (line 1, column 15)");
}

TEST(FragmentLoad, NamesTheUniformThatFails) {
  const auto fragment = makeRef<AShaderFragment>();
  const auto node = parseJson(LR"json({"language": ["dx11"], "implementation": ["void f()", "{", "}"],
  "uniforms": [{"name": "a", "type": "float"}, {"name": "b", "type": "float"}, {"name": "c"}]
})json");
  EXPECT_EQ(messageOf([&] { fragment->load(node.get()); }), L"sfgError : Failed to load uniform 2!");
  EXPECT_EQ(fragment->getNumProfiles(), 1u);
  EXPECT_EQ(fragment->getNumUniforms(), 2u);
  const std::wstring place(fragment->getLoadError());
  const std::wstring start = L"uniform 2 (line 2, column 80): ";
  EXPECT_EQ(place.substr(0, start.size()), start);
  EXPECT_NE(place.find(L"type", start.size()), std::wstring::npos);  // the parameter's own reason follows
}

TEST(FragmentLoad, RefusesNullUniforms) {
  EXPECT_EQ(
      refusalOf(
          LR"json({"language": ["dx11"], "implementation": ["void f()", "{", "}"], "uniforms": [null]})json")
          .message,
      L"sfgError : Failed to load uniform 0!");
}

TEST(FragmentLoad, RefusesValuesOfAWrongKind) {
  const struct {
    const wchar_t* text;
    const wchar_t* message;
  } cases[] = {
      {L"3", L"sfgError : \"fragment\" must be an object, not a number (line 1, column 1)!"},
      {L"{\"profiles\": 3}",
       L"sfgError : \"profiles\" must be an array of objects, not a number (line 1, column 14)!"},
      {L"{\"profiles\": {}}",
       L"sfgError : \"profiles\" must be an array of objects, not an object (line 1, column 14)!"},
      {L"{\"profiles\": [\n 3]}",
       L"sfgError : \"profiles\" must be an array of objects, not a number (line 2, column 2)!"},
      {L"{\"language\": [], \"implementation\": [\"void f()\"], \"uniforms\": {}}",
       L"sfgError : \"uniforms\" must be an array of parameter objects, not an object (line 1, column 62)!"},
  };
  for (const auto& c : cases) EXPECT_EQ(refusalOf(c.text).message, c.message);
}

TEST(FragmentLoad, ReplacesWhatTheFragmentHeld) {
  const auto fragment = loaded(kOneProfile);
  const WString hash = fragment->getHashString();
  const auto node =
      parseJson(LR"json({"name": "q", "language": ["dx11"], "implementation": ["void g()", "{", "}"]
})json");
  ASSERT_TRUE(fragment->load(node.get()));
  ASSERT_EQ(fragment->getNumProfiles(), 1u);
  EXPECT_EQ(fragment->getProfile(0)->getProfilename(), L"q");
  EXPECT_EQ(fragment->findBestProfile(L"p", kLoadedLanguage, 0.0f), nullptr);
  EXPECT_NE(fragment->getHashString(), hash);
  EXPECT_EQ(fragment->getHashString().size(), hash.size());
}

// Hashes

TEST(FragmentHash, IsTheHashOfTheObjectsText) {
  const auto node = parseJson(kOneProfile);
  EXPECT_EQ(loaded(kOneProfile)->getHashString(), SHA1_GetStringHash(node->toText()));
}

TEST(FragmentHash, IsTheSameForTheSameDocument) {
  EXPECT_EQ(loaded(kOneProfile)->getHashString(), loaded(kOneProfile)->getHashString());
  // Blanks are no part of a document.
  EXPECT_EQ(loaded(LR"json({"language":["dx11"],"implementation":["void f(){}"]})json")->getHashString(),
            loaded(LR"json({ "language" : [ "dx11" ], "implementation" : [ "void f(){}" ] })json")
                ->getHashString());
}

TEST(FragmentHash, DiffersForEveryChangedValue) {
  const wchar_t* texts[] = {
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "uniforms": [{"name": "u", "type": "float"}]})json",
      LR"json({"language": ["gl"], "implementation": ["void f() {}"], "uniforms": [{"name": "u", "type": "float"}]})json",
      LR"json({"language": ["dx11"], "implementation": ["void g() {}"], "uniforms": [{"name": "u", "type": "float"}]})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "uniforms": [{"name": "v", "type": "float"}]})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "uniforms": [{"name": "u", "type": "float2"}]})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "uniforms": [{"name": "u", "type": "float", "value": 1}]})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "uniforms": []})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "lod": 1})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "lod": 2})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "includes": ["none.h"]})json",
      LR"json({"language": ["dx11"], "implementation": ["void f() {}"], "description": "ignored, but part of the text"})json",
  };
  std::set<WString> hashes;
  for (const wchar_t* text : texts) EXPECT_TRUE(hashes.insert(loaded(text)->getHashString()).second);
}

/// An include folder that the registry knows while the test runs.
class IncludeFolder {
public:
  IncludeFolder()
      : path_(std::filesystem::temp_directory_path() / ("sfg_hash_" + std::to_string(::getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~IncludeFolder() {
    ShaderIncludes::Singleton().clear();
    std::filesystem::remove_all(path_);
  }
  void add(const std::string& name, const std::string& text) const { std::ofstream(path_ / name) << text; }
  void read() const { ShaderIncludes::Singleton().addIncludePath(path_.wstring().c_str()); }

private:
  std::filesystem::path path_;
};

TEST(FragmentHash, EndsInTheHashOfAllIncludes) {
  // Hashes of include files are kept for the life of the process: each case has a file of its own name.
  const IncludeFolder folder;
  folder.add("hash_a.h", "float a;\n");
  folder.add("hash_b.h", "float b;\n");
  folder.add("hash_c.h", "float a;\n");
  folder.read();
  const auto hashWith = [](const std::wstring& includes) {
    return loaded(L"{\"profiles\": [{\"language\": [\"dx11\"], \"implementation\": [\"void f() {}\"], "
                  L"\"includes\": [" +
                  includes +
                  L"]}, {\"language\": [\"dx11\"], \"implementation\": [\"void g() {}\"], \"includes\": "
                  L"[\"hash_b.h\"]}]}")
        ->getHashString();
  };
  ShaderIncludes& registry = ShaderIncludes::Singleton();
  const WString a = hashWith(L"\"hash_a.h\"");
  const WString b = hashWith(L"\"hash_b.h\", \"hash_b.h\"");
  const WString c = hashWith(L"\"hash_c.h\"");
  EXPECT_EQ(a.substr(40), registry.getIncludesHash({L"hash_a.h", L"hash_b.h"}));
  EXPECT_EQ(b.substr(40), registry.getIncludesHash({L"hash_b.h"}));
  EXPECT_FALSE(b.substr(40).empty());
  EXPECT_NE(a.substr(40), b.substr(40));
  EXPECT_NE(a.substr(0, 40), c.substr(0, 40));
}

TEST(FragmentHash, ChangesWithTheTextOfAnInclude) {
  // The hash of an include file is computed once per process, so that two texts need two names.
  const IncludeFolder folder;
  folder.add("hash_x.h", "float x;\n");
  folder.add("hash_y.h", "float y;\n");
  folder.read();
  const auto hashWith = [](const wchar_t* include) {
    return loaded(
               std::wstring(
                   L"{\"language\": [\"dx11\"], \"implementation\": [\"void f() {}\"], \"includes\": [\"") +
               include + L"\"]}")
        ->getHashString()
        .substr(40);
  };
  EXPECT_EQ(hashWith(L"hash_x.h"), SHA1_GetStringHash(L"float x;\n"));
  EXPECT_EQ(hashWith(L"hash_y.h"), SHA1_GetStringHash(L"float y;\n"));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

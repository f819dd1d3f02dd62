#include "host/origins/fragment_code.h"

#include "host/test_job_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class FragmentCodeTest : public JobFixture {};

std::string placed(const TextPosition& position) {
  return std::to_string(position.line) + ":" + std::to_string(position.column);
}

constexpr const char* kLibrary =
    "{ \"f\": {\n"
    "  \"profiles\": [\n"
    "    { \"language\": [\"other\"], \"implementation\": \"void f(out float x) { x = 2; }\" },\n"
    "    { \"language\": [\"dx11\"], \"predefine\": [\"float\\tone;\", \"float two;\"],\n"
    "      \"implementation\": [\"void f(out float x)\", \"{ x = one; }\"] } ] },\n"
    "  \"g\": { \"language\": [\"dx11\"], \"implementation\": [\"void g(out float y)\", \"{ y = 1; }\"] } "
    "}\n";

TEST_F(FragmentCodeTest, JoinsTheLinesOfAPart) {
  writeLibrary(kLibrary);
  const std::shared_ptr<const LoadedLibraries> libraries = load();
  FragmentCodes codes(*libraries);
  const FragmentCode* const code = codes.find(L"f", 1, CodePart::predefine);
  ASSERT_NE(code, nullptr);
  EXPECT_EQ(code->text, L"float\tone;\nfloat two;\n");
  EXPECT_EQ(code->tokens.size(), 6u);
  EXPECT_EQ(*code->file, path("lib.fraglib"));
  EXPECT_EQ(placed(code->fragment), "1:8");
  EXPECT_EQ(placed(code->profile), "4:5");
}

TEST_F(FragmentCodeTest, FindsProfilesByTheirNumber) {
  writeLibrary(kLibrary);
  const std::shared_ptr<const LoadedLibraries> libraries = load();
  FragmentCodes codes(*libraries);
  const auto textOf = [&](const wchar_t* fragment, std::size_t index, CodePart part) -> WString {
    const FragmentCode* const code = codes.find(fragment, index, part);
    return code != nullptr ? code->text : WString(L"(none)");
  };
  EXPECT_EQ(textOf(L"f", 0, CodePart::implementation), L"void f(out float x) { x = 2; }\n");
  EXPECT_EQ(textOf(L"f", 1, CodePart::implementation), L"void f(out float x)\n{ x = one; }\n");
  EXPECT_EQ(textOf(L"g", 0, CodePart::implementation), L"void g(out float y)\n{ y = 1; }\n");
  EXPECT_EQ(textOf(L"f", 0, CodePart::predefine), L"(none)");
  EXPECT_EQ(textOf(L"f", 2, CodePart::implementation), L"(none)");
  EXPECT_EQ(textOf(L"g", 1, CodePart::implementation), L"(none)");
  EXPECT_EQ(textOf(L"h", 0, CodePart::implementation), L"(none)");
  EXPECT_EQ(codes.find(L"g", 0, CodePart::implementation), codes.find(L"g", 0, CodePart::implementation));
}

TEST_F(FragmentCodeTest, CountsPlacesInTheFileThatWasLoaded) {
  writeLibrary(kLibrary);
  const std::shared_ptr<const LoadedLibraries> libraries = load();
  writeLibrary("{}");
  FragmentCodes codes(*libraries);
  const FragmentCode* const code = codes.find(L"f", 1, CodePart::predefine);
  ASSERT_NE(code, nullptr);
  EXPECT_EQ(placed(code->placeOf(0)), "4:44");
  EXPECT_EQ(placed(code->placeOf(6)), "4:51");
  EXPECT_EQ(placed(code->placeOf(code->text.find(L"two"))), "4:65");
  FragmentCode empty;
  empty.profile = {7, 9};
  EXPECT_EQ(placed(empty.placeOf(0)), "7:9");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

#include "host/check/own_fragments.h"

#include "host/check/check_fixture.h"
#include "host/library/loaded_libraries.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(OwnFragmentsTest, AllLoadAndAreNotAmongTheFiles) {
  LoadedLibraries libraries({}, {}, "dx11");
  SourceFragment source;
  source.name = "sfg_checkSource0";
  source.type = "float2";
  source.inputs = {{"float", "a"}};
  libraries.addOwnFragments(ownFragments({source}));
  for (const std::wstring name : {L"sfg_checkDrop", L"sfg_checkTake", L"sfg_checkPass", L"sfg_checkLight",
                                  L"sfg_checkLit1", L"sfg_checkLit4", L"sfg_checkSource0"})
    EXPECT_NE(libraries.language().findFragment(WString(name.c_str())), nullptr);
  EXPECT_TRUE(libraries.files().entries().empty());
  const IShaderFragmentProfile& profile =
      *libraries.language().findFragment(L"sfg_checkSource0")->getProfile(0);
  EXPECT_TRUE(profile.getFunctionBody() == L"\tresult = (float2)0;\n");
}

TEST(OwnFragmentsTest, TextThatDoesNotLoadIsOurOwnMistake) {
  LoadedLibraries libraries({}, {}, "dx11");
  EXPECT_THROW(libraries.addOwnFragments("{"), std::logic_error);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

#include "collapse/result_writer.h"

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_function.h"

namespace TolmSDK::Graphics::sfg {
namespace {

class Writer : public ::testing::Test {
protected:
  const RefPtr<AShaderFragmentProfile> profile_ = makeRef<AShaderFragmentProfileFunction>();
  ResultWriter writer_{*profile_};
};

TEST_F(Writer, AppendsCodeToTheBody) {
  writer_.writeCode(L"a;");
  writer_.writeCode(L"b;");
  EXPECT_EQ(profile_->getFunctionBody(), L"a;b;");
  EXPECT_EQ(profile_->predefines(), L"");
}

TEST_F(Writer, GivesAClashingSymbolAnotherName) {
  writer_.writePredefine(L"float h() { return 1; }\n");
  writer_.writePredefine(L"float h() { return 1; }\n");
  writer_.writePredefine(L"// nothing\n");
  writer_.writePredefine(L"float h() { return 2; }\n");
  EXPECT_EQ(profile_->predefines(), L"float h() { return 1; }\nfloat h1() { return 2; }\n");
}

TEST_F(Writer, KnowsADefinitionUnderTheNameItGotFirst) {
  FragmentProfileInstance first;
  FragmentProfileInstance second;
  for (FragmentProfileInstance* instance : {&first, &second}) instance->setFunctionName(L"mix1");
  EXPECT_FALSE(writer_.takeWrittenDefinition(first, nullptr));
  first.setFunctionName(L"mix12");
  writer_.rememberWrittenDefinition(first);
  EXPECT_TRUE(writer_.takeWrittenDefinition(second, nullptr));
  EXPECT_EQ(second.getFunctionName(), L"mix12");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

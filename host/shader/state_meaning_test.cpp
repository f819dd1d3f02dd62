#include "host/shader/state_meaning.h"

#include <gtest/gtest.h>

#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(StateMeaning, IsToldOfAllThatHostsFill) {
  for (const StateVariableInfo& info : allStateVariables()) {
    const bool isFilled = info.kind == StateVariableKind::uniform || info.kind == StateVariableKind::varying;
    EXPECT_EQ(*meaningOf(info.name).text != '\0', isFilled) << info.name.view().size();
  }
  EXPECT_STREQ(meaningOf(StateVariable_objectNormal).space, "object");
  EXPECT_STREQ(meaningOf(StateVariable_eyePosition).space, "world");
  EXPECT_STREQ(meaningOf(UString(L"other")).text, "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

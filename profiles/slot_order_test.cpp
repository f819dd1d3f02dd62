// Hosts call profiles through their table of virtual operations: the order is part of the interface.

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_base.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tests/support/slots.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::slotOf;

TEST(SlotOrder, OfProfiles) {
  using P = IShaderFragmentProfile;
  EXPECT_EQ(slotOf<const WString& (P::*)() const>(&P::predefines), 5u);
  EXPECT_EQ(slotOf<WString& (P::*)()>(&P::predefines), 6u);
  EXPECT_EQ(slotOf<const Set<UString>& (P::*)() const>(&P::languages), 7u);
  EXPECT_EQ(slotOf<Set<UString>& (P::*)()>(&P::languages), 8u);
  EXPECT_EQ(slotOf(&P::setLOD), 9u);
  EXPECT_EQ(slotOf(&P::getLOD), 10u);
  EXPECT_EQ(slotOf(&P::getProfilename), 11u);
  EXPECT_EQ(slotOf<const Set<UString>& (P::*)() const>(&P::stateVariables), 12u);
  EXPECT_EQ(slotOf<Set<UString>& (P::*)()>(&P::stateVariables), 13u);
  EXPECT_EQ(slotOf<const Set<WString>& (P::*)() const>(&P::customStateVariables), 14u);
  EXPECT_EQ(slotOf<Set<WString>& (P::*)()>(&P::customStateVariables), 15u);
  EXPECT_EQ(slotOf<const Set<WString>& (P::*)() const>(&P::includes), 16u);
  EXPECT_EQ(slotOf<Set<WString>& (P::*)()>(&P::includes), 17u);
  EXPECT_EQ(slotOf(&P::getFunctionName), 18u);
  EXPECT_EQ(slotOf(&P::getFunctionBody), 19u);
  EXPECT_EQ(slotOf<const ITextParameterList* (P::*)() const>(&P::getFunctionParameters), 20u);
  EXPECT_EQ(slotOf<ITextParameterList* (P::*)()>(&P::getFunctionParameters), 21u);
  EXPECT_EQ(slotOf(&P::getMode), 22u);
  EXPECT_EQ(slotOf(&P::setProfilename), 23u);
  EXPECT_EQ(slotOf(&P::setFunctionPrototype), 24u);
  EXPECT_EQ(slotOf(&P::setFunctionName), 25u);
  EXPECT_EQ(slotOf(&P::setFunctionBody), 26u);
}

TEST(SlotOrder, OfTheProfileBase) {
  using P = AShaderFragmentProfile;
  // A class of its own may name the protected operation.
  struct Names : AShaderFragmentProfileFunction {
    static std::size_t loadImplementationSlot() {
      return slotOf<bool (P::*)(const IObjectDataNode*)>(static_cast<bool (P::*)(const IObjectDataNode*)>(
          static_cast<bool (AShaderFragmentProfileFunction::*)(const IObjectDataNode*)>(
              &Names::loadImplementation)));
    }
  };
  EXPECT_EQ(slotOf(&P::clear), 27u);
  EXPECT_EQ(slotOf(&P::load), 28u);
  EXPECT_EQ(slotOf(&P::writePredefines), 29u);
  EXPECT_EQ(slotOf(&P::writeDefinition), 30u);
  EXPECT_EQ(slotOf(&P::writeFunctionCall), 31u);
  EXPECT_EQ(Names::loadImplementationSlot(), 32u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

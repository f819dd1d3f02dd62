// Hosts call fragments and graphs through their tables of virtual operations: the order is part of the
// interface.

#include <gtest/gtest.h>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_graph.h"
#include "tests/support/slots.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::slotOf;

TEST(SlotOrder, OfCountedObjects) {
  EXPECT_EQ(slotOf(&IRefObject::AddRef), 2u);
  EXPECT_EQ(slotOf(&IRefObject::Release), 3u);
  EXPECT_EQ(slotOf(&IRefObject::QueryInterface), 4u);
}

TEST(SlotOrder, OfFragments) {
  using F = IShaderFragment;
  using Type = const WString& (F::*)(const ILanguageTraits*, std::size_t) const;
  EXPECT_EQ(slotOf(&F::clone), 5u);
  EXPECT_EQ(slotOf(&F::key), 6u);
  EXPECT_EQ(slotOf(&F::getHashString), 7u);
  EXPECT_EQ(slotOf(&F::instanceName), 8u);
  EXPECT_EQ(slotOf(&F::getOwnerGraph), 9u);
  EXPECT_EQ(slotOf(&F::setOwnerGraph), 10u);
  EXPECT_EQ(slotOf(&F::getNumProfiles), 11u);
  EXPECT_EQ(slotOf(&F::getProfile), 12u);
  EXPECT_EQ(slotOf(&F::findFirstProfile), 13u);
  EXPECT_EQ(slotOf(&F::findBestProfile), 14u);
  EXPECT_EQ(slotOf(&F::registerProfile), 15u);
  EXPECT_EQ(slotOf(&F::getNumInputs), 16u);
  EXPECT_EQ(slotOf<Type>(&F::getInputType), 17u);
  EXPECT_EQ(slotOf(&F::getInputName), 18u);
  EXPECT_EQ(slotOf(&F::getInput), 19u);
  EXPECT_EQ(slotOf(&F::getNumOutputs), 20u);
  EXPECT_EQ(slotOf<Type>(&F::getOutputType), 21u);
  EXPECT_EQ(slotOf(&F::getOutputName), 22u);
  EXPECT_EQ(slotOf(&F::getOutput), 23u);
  EXPECT_EQ(slotOf<void (F::*)(const AParameter*)>(&F::addInput), 24u);
  EXPECT_EQ((slotOf<void (F::*)(const TypeID&, const WString&)>(&F::addInput)), 25u);
  EXPECT_EQ((slotOf<void (F::*)(const WString&, const WString&)>(&F::addInput)), 26u);
  EXPECT_EQ(slotOf<void (F::*)(const AParameter*)>(&F::addOutput), 27u);
  EXPECT_EQ((slotOf<void (F::*)(const TypeID&, const WString&)>(&F::addOutput)), 28u);
  EXPECT_EQ((slotOf<void (F::*)(const WString&, const WString&)>(&F::addOutput)), 29u);
  EXPECT_EQ(slotOf(&F::findInputIndex), 30u);
  EXPECT_EQ(slotOf(&F::findOutputIndex), 31u);
  EXPECT_EQ(slotOf(&F::getInputConnections), 32u);
  EXPECT_EQ((slotOf<bool (F::*)(const wchar_t*, const wchar_t*)>(&F::setInputConnection)), 33u);
  EXPECT_EQ((slotOf<bool (F::*)(const wchar_t*, IShaderFragment*, const wchar_t*)>(&F::setInputConnection)),
            34u);
  EXPECT_EQ((slotOf<bool (F::*)(std::size_t, std::size_t)>(&F::setInputConnection)), 35u);
  EXPECT_EQ((slotOf<bool (F::*)(std::size_t, IShaderFragment*, std::size_t)>(&F::setInputConnection)), 36u);
  EXPECT_EQ(slotOf<void (F::*)(const wchar_t*)>(&F::clearInputConnect), 37u);
  EXPECT_EQ(slotOf<void (F::*)(std::size_t)>(&F::clearInputConnect), 38u);
  EXPECT_EQ(slotOf(&F::getNumUniforms), 39u);
  EXPECT_EQ(slotOf(&F::getUniform), 40u);
  EXPECT_EQ(slotOf(&F::addUniform), 41u);
  EXPECT_EQ(slotOf(&F::hasAncestor), 42u);
  EXPECT_EQ(slotOf(&F::debugDump), 43u);
  EXPECT_EQ(slotOf(&F::getShaderInputTypes), 44u);
}

TEST(SlotOrder, OfTheFragmentImplementation) {
  EXPECT_EQ(slotOf<const WString& (AShaderFragment::*)() const>(&AShaderFragment::key), 6u);
  EXPECT_EQ(slotOf<WString& (AShaderFragment::*)()>(&AShaderFragment::key), 45u);
}

TEST(SlotOrder, OfGraphs) {
  using G = IShaderFragmentGraph;
  EXPECT_EQ(slotOf(&G::getKey), 5u);
  EXPECT_EQ(slotOf(&G::setKey), 6u);
  EXPECT_EQ(slotOf(&G::getHashString), 7u);
  EXPECT_EQ(slotOf(&G::setHashString), 8u);
  EXPECT_EQ(slotOf(&G::setShaderFlags), 9u);
  EXPECT_EQ(slotOf(&G::getShaderFlags), 10u);
  EXPECT_EQ(slotOf(&G::setNonConsolidatable), 11u);
  EXPECT_EQ(slotOf(&G::isConsolidatable), 12u);
  EXPECT_EQ(slotOf(&G::getNumInputs), 13u);
  EXPECT_EQ(slotOf(&G::getInputType), 14u);
  EXPECT_EQ(slotOf(&G::getInputName), 15u);
  EXPECT_EQ(slotOf(&G::getInput), 16u);
  EXPECT_EQ(slotOf(&G::getNumOutputs), 17u);
  EXPECT_EQ(slotOf(&G::getOutputType), 18u);
  EXPECT_EQ(slotOf(&G::getOutputName), 19u);
  EXPECT_EQ(slotOf(&G::getOutput), 20u);
  EXPECT_EQ(slotOf<void (G::*)(const AParameter*)>(&G::addInput), 21u);
  EXPECT_EQ((slotOf<void (G::*)(const TypeID&, const WString&)>(&G::addInput)), 22u);
  EXPECT_EQ((slotOf<void (G::*)(const WString&, const WString&)>(&G::addInput)), 23u);
  EXPECT_EQ(slotOf<void (G::*)(const AParameter*)>(&G::addOutput), 24u);
  EXPECT_EQ((slotOf<void (G::*)(const TypeID&, const WString&)>(&G::addOutput)), 25u);
  EXPECT_EQ((slotOf<void (G::*)(const WString&, const WString&)>(&G::addOutput)), 26u);
  EXPECT_EQ(slotOf(&G::findInputIndex), 27u);
  EXPECT_EQ(slotOf(&G::findOutputIndex), 28u);
  EXPECT_EQ(slotOf(&G::getOutputConnections), 29u);
  EXPECT_EQ((slotOf<bool (G::*)(const wchar_t*, IShaderFragment*, const wchar_t*)>(&G::setOutputConnection)),
            30u);
  EXPECT_EQ((slotOf<bool (G::*)(std::size_t, IShaderFragment*, std::size_t)>(&G::setOutputConnection)), 31u);
  EXPECT_EQ(slotOf(&G::addFragment), 32u);
  EXPECT_EQ(slotOf(&G::removeFragment), 33u);
  EXPECT_EQ(slotOf(&G::getNumFragments), 34u);
  EXPECT_EQ(slotOf(&G::getFragment), 35u);
  EXPECT_EQ(slotOf(&G::getNumUniforms), 36u);
  EXPECT_EQ(slotOf(&G::getUniform), 37u);
  EXPECT_EQ(slotOf(&G::addUniform), 38u);
  EXPECT_EQ(slotOf(&G::addPreprocessFragment), 39u);
  EXPECT_EQ(slotOf(&G::removePreprocessFragment), 40u);
  EXPECT_EQ(slotOf(&G::getNumPreprocessFragment), 41u);
  EXPECT_EQ(slotOf(&G::getPreprocessFragment), 42u);
  EXPECT_EQ(slotOf(&G::addPostprocessFragment), 43u);
  EXPECT_EQ(slotOf(&G::insertPostprocessFragment), 44u);
  EXPECT_EQ(slotOf(&G::removePostprocessFragment), 45u);
  EXPECT_EQ(slotOf(&G::getNumPostprocessFragments), 46u);
  EXPECT_EQ(slotOf(&G::getPostprocessFragment), 47u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

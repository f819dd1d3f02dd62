#include "collapse/instance_registry.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(InstanceRegistry, KeepsSurfacesAndLightsApart) {
  Arena arena;
  InstanceRegistry registry(arena);
  FragmentInstance& surface = registry.getSurface(L"a");
  EXPECT_EQ(&registry.getSurface(L"a"), &surface);
  EXPECT_NE(&registry.getSurface(L"b"), &surface);
  EXPECT_NE(&registry.getLight(L"a"), &surface);
  EXPECT_EQ(&registry.getLight(L"a"), &registry.getLight(L"a"));
}

TEST(InstanceRegistry, NumbersInstancesInTheOrderInWhichTheyAreMade) {
  Arena arena;
  InstanceRegistry registry(arena);
  const FragmentInstance elsewhere;
  EXPECT_EQ(registry.getSurface(L"z").getNumber(), 1u);
  EXPECT_EQ(registry.getLight(L"y").getNumber(), 2u);
  EXPECT_TRUE(registry.admit(elsewhere));
  EXPECT_EQ(elsewhere.getNumber(), 3u);
  EXPECT_EQ(registry.getSurface(L"a").getNumber(), 4u);
  EXPECT_EQ(registry.getSurface(L"z").getNumber(), 1u);
}

TEST(InstanceRegistry, AdmitsNoInstanceOfAnotherCollapse) {
  Arena arena;
  InstanceRegistry first(arena);
  InstanceRegistry second(arena);
  const FragmentInstance& instance = first.getSurface(L"a");
  EXPECT_TRUE(first.admit(instance));
#ifdef NDEBUG
  EXPECT_FALSE(second.admit(instance));
#else
  EXPECT_DEATH(second.admit(instance), "one context only");
#endif
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

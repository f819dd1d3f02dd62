#include "fragments/pointer_set.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(PointerSet, IsEmptyAtFirst) {
  PointerSet set;
  int object = 0;
  EXPECT_FALSE(set.contains(&object));
  EXPECT_FALSE(set.contains(nullptr));
  EXPECT_FALSE(set.erase(&object));
}

TEST(PointerSet, HoldsWhatAnOrderedSetHolds) {
  std::vector<int> objects(3000);
  for (unsigned seed = 0; seed < 20; ++seed) {
    std::mt19937 random(seed);
    PointerSet set;
    std::set<const int*> expected;
    const std::size_t range = 10 + random() % objects.size() * (seed % 2);
    for (int i = 0; i < 5000; ++i) {
      const int* object = &objects[random() % std::min(range, objects.size())];
      if (random() % 3 == 0)
        ASSERT_EQ(set.erase(object), expected.erase(object) == 1);
      else
        ASSERT_EQ(set.insert(object), expected.insert(object).second);
      ASSERT_EQ(set.contains(object), expected.contains(object));
    }
    for (const int& object : objects) ASSERT_EQ(set.contains(&object), expected.contains(&object));
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

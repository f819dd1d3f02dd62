#include "fragments/profile_levels.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <random>
#include <vector>

#include "sfg/shader_fragment.h"
#include "sfg/shader_fragment_profile_function.h"
#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg {
namespace {

const UString kLevelsLanguage(L"dx11");

RefPtr<AShaderFragmentProfileFunction> makeLevel(float level) {
  auto profile = makeRef<AShaderFragmentProfileFunction>();
  profile->setProfilename(L"default");
  profile->languages().insert(kLevelsLanguage);
  profile->setLOD(level);
  return profile;
}

/// A fragment with profiles of one name and language, and the same look-up without an index.
struct Levels {
  RefPtr<AShaderFragment> fragment = makeRef<AShaderFragment>();
  std::vector<RefPtr<AShaderFragmentProfileFunction>> profiles;

  void add(float level) {
    profiles.push_back(makeLevel(level));
    fragment->registerProfile(profiles.back().get());
  }
  const IShaderFragmentProfile* find(float level) const {
    return fragment->findBestProfile(L"default", kLevelsLanguage, level);
  }
  const IShaderFragmentProfile* expected(float level) const {
    const IShaderFragmentProfile* best = profiles.front().get();
    for (const auto& profile : profiles)
      if (std::abs(profile->getLOD() - level) < std::abs(best->getLOD() - level)) best = profile.get();
    return best;
  }
};

TEST(ProfileLevels, FindWhatALookAtEachFinds) {
  std::mt19937 random(1);
  const float special[] = {0.0f, -0.0f, 100.0f, 1e9f, -1e9f, FLT_MAX, -FLT_MAX, INFINITY, -INFINITY, NAN};
  for (int round = 0; round < 50; ++round) {
    Levels levels;
    const auto count = std::uniform_int_distribution<int>(1, 60)(random);
    // Few values, so that levels are equal and distances too.
    const auto pick = [&] {
      const int value = std::uniform_int_distribution<int>(0, 25)(random);
      const bool isAny = round % 5 == 0 && value < 9;
      return isAny ? special[value + (round % 10 == 0 ? 1 : 0)] : 0.5f * static_cast<float>(value);
    };
    for (int i = 0; i < count; ++i) levels.add(pick());
    for (int asked = 0; asked < 100; ++asked) {
      const float level = asked % 3 == 0 ? special[asked % 10] : pick();
      ASSERT_EQ(levels.find(level), levels.expected(level)) << "round " << round << " level " << level;
    }
  }
}

TEST(ProfileLevels, FollowChangesOfLevels) {
  Levels levels;
  for (int i = 0; i < 40; ++i) levels.add(static_cast<float>(i));
  for (int i = 0; i < 40; ++i) {
    for (int again = 0; again < 3; ++again) EXPECT_EQ(levels.find(7.0f), levels.expected(7.0f)) << i;
    levels.profiles[7]->setLOD(static_cast<float>(100 - i));
    for (int again = 0; again < 3; ++again) EXPECT_EQ(levels.find(7.0f), levels.expected(7.0f)) << i;
    levels.profiles[static_cast<std::size_t>(i)]->setLOD(7.25f);
    levels.profiles[7]->setLOD(7.0f);
  }
}

TEST(ProfileLevels, FollowProfilesThatAreAdded) {
  Levels levels;
  for (int i = 0; i < 40; ++i) {
    levels.add(static_cast<float>(100 - i));
    for (int again = 0; again < 3; ++again) EXPECT_EQ(levels.find(0.0f), levels.profiles.back().get()) << i;
  }
  const RefPtr<IShaderFragment> clone(levels.fragment->clone(L"clone"));
  levels.add(0.0f);
  EXPECT_EQ(levels.find(0.0f), levels.profiles[40].get());
  EXPECT_EQ(clone->findBestProfile(L"default", kLevelsLanguage, 0.0f), levels.profiles[39].get());
}

/// A level of a host's own, which changes by itself.
class RisingLevel : public AShaderFragmentProfileFunction {
public:
  float getLOD() const override { return level_ += 1.0f; }

private:
  mutable float level_ = 0.0f;
};

TEST(ProfileLevels, OfAHostsOwnClassAreAskedEachTime) {
  Levels levels;
  for (int i = 0; i < 40; ++i) levels.add(100.0f);
  const auto rising = makeRef<RisingLevel>();
  rising->setProfilename(L"default");
  rising->languages().insert(kLevelsLanguage);
  levels.fragment->registerProfile(rising.get());
  // Its level is the number of the look-up, which is nearer to 51 than the others' from 3 on up to 99.
  for (int i = 1; i <= 150; ++i) {
    const bool isNearer = i > 2 && i < 100;
    EXPECT_EQ(levels.find(51.0f) == rising.get(), isNearer) << i;
  }
}

TEST(ProfileLevels, AreFoundInTimeInProportion) {
  const double growth = TolmSDK::test::timeGrowth(1000, [](std::size_t count) {
    Levels levels;
    for (std::size_t i = 0; i < count; ++i) levels.add(static_cast<float>(i));
    std::size_t found = 0;
    const std::clock_t time = TolmSDK::test::processorTime([&] {
      for (std::size_t i = 0; i < count; ++i) {
        found += levels.find(static_cast<float>(i)) == levels.profiles[i].get() ? 1 : 0;
        // So far away the levels are all the same.
        found += levels.find(FLT_MAX) == levels.profiles.front().get() ? 1 : 0;
      }
    });
    EXPECT_EQ(found, 2 * count);
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

#include "pictures/environment.h"

#include <gtest/gtest.h>

#include "pictures/test_folder.h"

namespace pictures {
namespace {

/// Colours by row, of 64 rows.
Picture panorama(const std::function<float(std::uint32_t x, std::uint32_t y)>& brightness) {
  Picture made(128, 64);
  for (std::uint32_t y = 0; y < made.height; ++y) {
    for (std::uint32_t x = 0; x < made.width; ++x) {
      for (std::size_t k = 0; k < 3; ++k) made.at(x, y)[k] = brightness(x, y);
    }
  }
  return made;
}

TEST(EnvironmentTest, EvenLightStaysEven) {
  const EnvironmentLight light = makeEnvironmentLight(panorama([](auto, auto) { return 0.5f; }));
  for (const Vector& n : {Vector{1, 0, 0}, Vector{0, -1, 0}, unit({1, 2, -3})}) {
    for (const double part : diffuseAt(light, n)) EXPECT_NEAR(part, 0.5, 0.001);
  }
  ASSERT_EQ(light.mirrored.levels.size(), 6u);
  for (const auto& level : light.mirrored.levels) {
    for (std::size_t i = 0; i < level.size(); ++i) {
      if (i % 4 != 3) {
        ASSERT_NEAR(level[i], 0.5f, 0.001f);
      }
    }
  }
}

/// Of a sky that is 1 above and nothing below, what arrives is (1 + cos) / 2; harmonics miss that by little.
TEST(EnvironmentTest, SkyLightFallsWithTheCosine) {
  const EnvironmentLight light =
      makeEnvironmentLight(panorama([](auto, auto y) { return y < 32 ? 1.0f : 0.0f; }));
  for (const double up : {-1.0, -0.5, 0.0, 0.5, 1.0}) {
    const Vector n = {std::sqrt(1 - up * up), up, 0};
    EXPECT_NEAR(diffuseAt(light, n)[1], 0.5 + 0.5 * up, 0.02) << up;
  }
}

/// A lamp right of the middle of a panorama, whose middle is +x, is at +z; rough surfaces spread it.
TEST(EnvironmentTest, LampsAreWhereThePanoramaHasThem) {
  const EnvironmentLight light = makeEnvironmentLight(
      panorama([](auto x, auto y) { return x >= 94 && x < 98 && y >= 30 && y < 34 ? 100.0f : 0.0f; }));
  const auto brightest = [&](std::size_t level, std::size_t face) {
    const std::size_t side = 128u >> level;
    const auto begin =
        light.mirrored.levels[level].begin() + static_cast<std::ptrdiff_t>(4 * face * side * side);
    float most = 0;
    for (std::size_t i = 0; i < side * side; ++i)
      most = std::max(most, begin[static_cast<std::ptrdiff_t>(4 * i)]);
    return most;
  };
  EXPECT_GT(brightest(0, 4), 90.0f);
  for (const std::size_t face : {0u, 1u, 2u, 3u, 5u}) EXPECT_EQ(brightest(0, face), 0.0f) << face;
  for (std::size_t level = 1; level < 6; ++level)
    EXPECT_LT(brightest(level, 4), brightest(level - 1, 4)) << level;
  EXPECT_GT(brightest(5, 4), 0.0f);
  EXPECT_GT(diffuseAt(light, {0, 0, 1})[0], 2 * std::abs(diffuseAt(light, {1, 0, 0})[0]));
}

TEST(EnvironmentTest, KeepsWhatItComputed) {
  const TestFolder folder;
  const Picture picture = panorama([](auto, auto) { return 0.25f; });
  const EnvironmentLight made = keptEnvironmentLight(picture, folder.path());
  ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
  const auto file = std::filesystem::directory_iterator(folder.path())->path();

  // What the file holds is what comes back: here a colour that was not computed.
  {
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    const double marked = 7;
    stream.seekp(16);
    stream.write(reinterpret_cast<const char*>(&marked), sizeof(marked));
  }
  EXPECT_EQ(keptEnvironmentLight(picture, folder.path()).diffuse[0][0], 7);
  EXPECT_EQ(keptEnvironmentLight(picture, folder.path()).mirrored.levels, made.mirrored.levels);
  // A file cut short is computed anew.
  std::filesystem::resize_file(file, 1000);
  EXPECT_EQ(keptEnvironmentLight(picture, folder.path()).diffuse, made.diffuse);
  // Another picture has another file; a folder that cannot be made is passed over.
  keptEnvironmentLight(panorama([](auto, auto) { return 0.5f; }), folder.path());
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
  EXPECT_EQ(keptEnvironmentLight(picture, file / "below a file").diffuse, made.diffuse);
}

/// A mirror sends everything back; a rough surface at least 30 percent, and never more than arrives.
TEST(EnvironmentTest, TheTableOfTheSplitSumKeepsEnergy) {
  const Picture table = splitSumTable();
  for (std::size_t y = 0; y < table.height; ++y) {
    for (std::size_t x = 0; x < table.width; ++x) {
      const float all = table.at(x, y)[0] + table.at(x, y)[1];
      ASSERT_LT(all, 1.02f) << x << ", " << y;
      ASSERT_GT(all, y < 8 ? 0.85f : 0.3f) << x << ", " << y;
    }
  }
  // Along the normal nothing is added; at grazing angles a smooth surface mirrors whatever it is.
  EXPECT_NEAR(table.at(63, 2)[1], 0.0f, 0.001f);
  EXPECT_GT(table.at(0, 2)[1], 0.85f);
}

TEST(EnvironmentTest, TheTableOfTheSplitSumIsKept) {
  const TestFolder folder;
  const std::filesystem::path file = folder.path() / "split-sum.bin";
  const Picture made = keptSplitSumTable(folder.path());
  EXPECT_EQ(made.texels, splitSumTable().texels);
  ASSERT_TRUE(std::filesystem::exists(file));
  {
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    const float changed = 7;
    stream.seekp(8);
    stream.write(reinterpret_cast<const char*>(&changed), sizeof(changed));
  }
  EXPECT_EQ(keptSplitSumTable(folder.path()).texels[0], 7);
  // A file cut short is computed anew.
  std::filesystem::resize_file(file, 1000);
  EXPECT_EQ(keptSplitSumTable(folder.path()).texels, made.texels);
  EXPECT_EQ(keptSplitSumTable(file / "below a file").texels, made.texels);
}

TEST(EnvironmentTest, BuiltInPanoramasHaveLampsOfTheirOwn) {
  const auto brightest = [](const Picture& picture) {
    return *std::max_element(picture.texels.begin(), picture.texels.end());
  };
  EXPECT_GT(brightest(studioPanorama()), 5.0f);
  EXPECT_GT(brightest(skyPanorama()), 100.0f);
  // The sun is up, and adds up to about what makes a white surface white.
  EXPECT_NEAR(diffuseAt(makeEnvironmentLight(skyPanorama()), {0, 1, 0})[1], 1.0, 0.5);
  EXPECT_NEAR(diffuseAt(makeEnvironmentLight(studioPanorama()), {0, 0, 1})[1], 1.0, 0.5);
}

}  // namespace
}  // namespace pictures

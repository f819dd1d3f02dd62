#include "pictures/difference.h"

#include <gtest/gtest.h>

namespace pictures {
namespace {

/// Squares of that many pixels, in two greys; `moved` to the right.
Picture checkers(std::size_t side, std::size_t moved = 0, float dark = 0.2f) {
  Picture picture(32, 32);
  picture.isEncoded = true;
  for (std::size_t y = 0; y < 32; ++y) {
    for (std::size_t x = 0; x < 32; ++x) {
      float* const texel = picture.at(x, y);
      texel[0] = texel[1] = texel[2] = ((x + moved) / side + y / side) % 2 == 0 ? dark : 0.8f;
      texel[3] = 1;
    }
  }
  return picture;
}

TEST(Difference, EqualPicturesDoNotDiffer) {
  const Difference difference = differenceOf(checkers(4), checkers(4));
  EXPECT_EQ(difference.mean, 0);
  EXPECT_EQ(difference.greatest, 0);
  EXPECT_EQ(difference.noticed, 0);
}

TEST(Difference, RoundingIsNotNoticed) {
  const Difference difference = differenceOf(checkers(4), checkers(4, 0, 0.2f + 1.0f / 255));
  EXPECT_GT(difference.mean, 0);
  EXPECT_LT(difference.greatest, 1);
  EXPECT_EQ(difference.noticed, 0);
}

TEST(Difference, AMovedPatternIsNoticed) {
  EXPECT_GT(differenceOf(checkers(4), checkers(4, 1)).noticed, 0.3);
  EXPECT_GT(differenceOf(checkers(4), checkers(4, 4)).noticed, 0.8);
}

TEST(Difference, AHueIsNoticedAtEqualBrightness) {
  Picture red = checkers(32);
  Picture green = red;
  for (std::size_t i = 0; i < red.texels.size(); i += 4) {
    red.texels[i] = 0.6f;
    green.texels[i + 1] = 0.41f;
  }
  EXPECT_GT(differenceOf(red, green).mean, 30);
}

TEST(Difference, ColorsThatNobodySeesDoNotCount) {
  Picture a = checkers(4);
  Picture b = checkers(4, 4);
  for (std::size_t i = 3; i < a.texels.size(); i += 4) a.texels[i] = b.texels[i] = 0;
  EXPECT_EQ(differenceOf(a, b).greatest, 0);
}

TEST(Difference, IsShown) {
  Picture other = checkers(8);
  for (std::size_t i = 0; i < 3; ++i) other.at(16, 16)[i] = 1 - other.at(16, 16)[i];
  const Picture shown = pictureOfDifference(checkers(8), other);
  EXPECT_EQ(shown.at(2, 2)[0], 0);
  EXPECT_GT(shown.at(16, 16)[0], 0.3f);
  EXPECT_EQ(shown.at(2, 2)[3], 1);
}

}  // namespace
}  // namespace pictures

#include "pictures/difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace pictures {

namespace {

using Color = std::array<double, 3>;

/// Linear colours on a middle grey, blurred.
std::vector<Color> blurred(const Picture& picture) {
  const Picture linear = linearized(picture);
  const auto width = static_cast<std::ptrdiff_t>(linear.width);
  const auto height = static_cast<std::ptrdiff_t>(linear.height);
  const auto shown = [&](std::ptrdiff_t x, std::ptrdiff_t y, std::size_t i) {
    const float* const texel =
        linear.at(static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(x, 0, width - 1)),
                  static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(y, 0, height - 1)));
    constexpr double kGrey = 0.18;
    return static_cast<double>(texel[i] * texel[3]) + kGrey * (1 - static_cast<double>(texel[3]));
  };
  std::vector<Color> colors;
  colors.reserve(linear.texels.size() / 4);
  for (std::ptrdiff_t y = 0; y < height; ++y) {
    for (std::ptrdiff_t x = 0; x < width; ++x) {
      Color& color = colors.emplace_back();
      for (std::size_t i = 0; i < 3; ++i) {
        for (std::ptrdiff_t k = 0; k < 9; ++k) color[i] += shown(x + k % 3 - 1, y + k / 3 - 1, i) / 9;
      }
    }
  }
  return colors;
}

/// Of linear Rec. 709 under D65.
Color labOf(const Color& c) {
  const auto bent = [](double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; };
  const double x = bent((0.4124564 * c[0] + 0.3575761 * c[1] + 0.1804375 * c[2]) / 0.95047);
  const double y = bent(0.2126729 * c[0] + 0.7151522 * c[1] + 0.0721750 * c[2]);
  const double z = bent((0.0193339 * c[0] + 0.1191920 * c[1] + 0.9503041 * c[2]) / 1.08883);
  return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

std::vector<double> distances(const Picture& a, const Picture& b) {
  const std::vector<Color> first = blurred(a);
  const std::vector<Color> second = blurred(b);
  std::vector<double> far;
  for (std::size_t i = 0; i < first.size(); ++i) {
    const Color p = labOf(first[i]);
    const Color q = labOf(second[i]);
    far.push_back(std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]));
  }
  return far;
}

}  // namespace

Difference differenceOf(const Picture& a, const Picture& b) {
  Difference difference;
  const std::vector<double> far = distances(a, b);
  for (const double distance : far) {
    difference.mean += distance / static_cast<double>(far.size());
    // A distance that is no number is the greatest there is.
    if (!(distance <= difference.greatest)) difference.greatest = distance;
    if (!(distance <= 2.3)) difference.noticed += 1 / static_cast<double>(far.size());
  }
  return difference;
}

Picture pictureOfDifference(const Picture& a, const Picture& b) {
  Picture shown(a.width, a.height);
  shown.isEncoded = true;
  const std::vector<double> far = distances(a, b);
  for (std::size_t i = 0; i < shown.texels.size(); ++i)
    shown.texels[i] = i % 4 == 3 ? 1.0f : static_cast<float>(std::min(far[i / 4] / 10, 1.0));
  return shown;
}

}  // namespace pictures

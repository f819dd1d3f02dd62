#include "pictures/texture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "pictures/cube.h"
#include "pictures/matrix.h"

namespace pictures {

namespace {

/// Half as large, rounded down, at least one texel: means of what each texel covers.
Picture halved(const Picture& from) {
  Picture to(std::max(from.width / 2, 1u), std::max(from.height / 2, 1u));
  for (std::uint32_t y = 0; y < to.height; ++y) {
    for (std::uint32_t x = 0; x < to.width; ++x) {
      const std::uint32_t left = x * from.width / to.width, right = (x + 1) * from.width / to.width;
      const std::uint32_t top = y * from.height / to.height, bottom = (y + 1) * from.height / to.height;
      const float share = 1.0f / static_cast<float>((right - left) * (bottom - top));
      for (std::uint32_t j = top; j < bottom; ++j) {
        for (std::uint32_t i = left; i < right; ++i) {
          for (std::size_t k = 0; k < 4; ++k) to.at(x, y)[k] += share * from.at(i, j)[k];
        }
      }
    }
  }
  return to;
}

std::vector<float> stored(const Picture& level, ColorSpace space) {
  return space == ColorSpace::srgb ? encoded(level).texels : level.texels;
}

render::Texture makeCube(const Picture& panorama, ColorSpace space, std::uint32_t side) {
  render::Texture texture;
  texture.type = vk::ImageViewType::eCube;
  texture.size = vk::Extent3D(side, side, 1);
  std::vector<Picture> faces;
  for (std::size_t face = 0; face < 6; ++face) {
    Picture& to = faces.emplace_back(side, side);
    for (std::uint32_t y = 0; y < side; ++y) {
      for (std::uint32_t x = 0; x < side; ++x) {
        const Vector direction = cubeDirection(face, (x + 0.5) / side * 2 - 1, (y + 0.5) / side * 2 - 1);
        samplePanorama(panorama, direction.data(), to.at(x, y));
      }
    }
  }
  for (;; side /= 2) {
    std::vector<float>& level = texture.levels.emplace_back();
    for (Picture& face : faces) {
      const std::vector<float> texels = stored(face, space);
      level.insert(level.end(), texels.begin(), texels.end());
      face = halved(face);
    }
    if (side == 1) return texture;
  }
}

}  // namespace

ColorSpace colorSpaceOf(const std::string& space) {
  return space == "linear" ? ColorSpace::linear : space == "srgb" ? ColorSpace::srgb : ColorSpace::data;
}

render::Texture makeTexture(const Picture& picture, ColorSpace space, vk::ImageViewType type) {
  Picture level = picture;
  // Numbers are as the file has them.
  if (space == ColorSpace::data) {
    level.isEncoded = false;
  } else {
    level = linearized(std::move(level));
  }
  if (type == vk::ImageViewType::eCube) {
    std::uint32_t side = 1;
    while (side * 8 <= level.width && side < 1024) side *= 2;
    return makeCube(level, space, side);
  }
  if (type == vk::ImageViewType::e1D) {
    level.texels.resize(std::size_t{4} * level.width);
    level.height = 1;
  }
  render::Texture texture;
  texture.type = type;
  texture.size = vk::Extent3D(level.width, level.height, 1);
  for (;; level = halved(level)) {
    texture.levels.push_back(stored(level, space));
    if (level.width == 1 && level.height == 1) return texture;
  }
}

render::Texture cubeOf(const Picture& panorama, std::uint32_t side) {
  return makeCube(panorama, ColorSpace::linear, side);
}

Picture standIn(ColorSpace space) {
  if (space == ColorSpace::data) {
    Picture flat(1, 1);
    flat.texels = {0.5f, 0.5f, 1.0f, 1.0f};
    return flat;
  }
  constexpr std::uint32_t kSide = 256;
  constexpr std::uint32_t kFields = 8;
  Picture board(kSide, kSide);
  for (std::uint32_t y = 0; y < kSide; ++y) {
    for (std::uint32_t x = 0; x < kSide; ++x) {
      const std::uint32_t column = x * kFields / kSide, row = y * kFields / kSide;
      const float bright = (column + row) % 2 == 0 ? 0.8f : 0.35f;
      const float u = static_cast<float>(column) / (kFields - 1), v = static_cast<float>(row) / (kFields - 1);
      float* const to = board.at(x, y);
      to[0] = bright * (0.35f + 0.65f * u);
      to[1] = bright * (0.35f + 0.65f * v);
      to[2] = bright * (1.0f - 0.5f * u);
      to[3] = 1;
    }
  }
  return board;
}

void samplePanorama(const Picture& panorama, const double direction[3], float out[4]) {
  const double around = std::atan2(direction[2], direction[0]) / (2 * std::numbers::pi);
  const double up = std::asin(std::clamp(direction[1], -1.0, 1.0)) / std::numbers::pi;
  const double x = (0.5 + around) * panorama.width - 0.5;
  const double y = (0.5 - up) * panorama.height - 0.5;
  const double left = std::floor(x), top = std::floor(y);
  const auto column = [&](double at) {
    const auto width = static_cast<double>(panorama.width);
    return static_cast<std::size_t>(at - std::floor(at / width) * width);
  };
  const auto row = [&](double at) {
    return static_cast<std::size_t>(std::clamp(at, 0.0, panorama.height - 1.0));
  };
  std::fill(out, out + 4, 0.0f);
  for (const double j : {0.0, 1.0}) {
    for (const double i : {0.0, 1.0}) {
      const double share = (i > 0 ? x - left : left + 1 - x) * (j > 0 ? y - top : top + 1 - y);
      const float* const texel = panorama.at(column(left + i), row(top + j));
      for (std::size_t k = 0; k < 4; ++k) out[k] += static_cast<float>(share) * texel[k];
    }
  }
}

Vector cubeDirection(std::size_t side, double x, double y) {
  switch (side) {
  case 0: return unit({1, -y, -x});
  case 1: return unit({-1, -y, x});
  case 2: return unit({x, 1, y});
  case 3: return unit({x, -1, -y});
  case 4: return unit({x, -y, 1});
  default: return unit({-x, -y, -1});
  }
}

}  // namespace pictures

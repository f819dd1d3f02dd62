#include "pictures/environment.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <numbers>

#include "pictures/cube.h"
#include "pictures/texture.h"

namespace pictures {

namespace {

constexpr std::uint32_t kSharpestSide = 128;  ///< texels of the sharpest level
constexpr std::uint32_t kLevels = 6;          ///< the last is 4 texels wide
constexpr std::uint32_t kSamples = 128;       ///< for each blurred texel
constexpr std::uint32_t kTable = 64;          ///< texels along each side of the table of the split sum
constexpr double kPi = std::numbers::pi;

/// A point of the square that fills it evenly with the others (Hammersley).
std::pair<double, double> hammersley(std::uint32_t index, std::uint32_t count) {
  std::uint32_t bits = index;
  bits = bits << 16 | bits >> 16;
  bits = (bits & 0x55555555u) << 1 | (bits & 0xAAAAAAAAu) >> 1;
  bits = (bits & 0x33333333u) << 2 | (bits & 0xCCCCCCCCu) >> 2;
  bits = (bits & 0x0F0F0F0Fu) << 4 | (bits & 0xF0F0F0F0u) >> 4;
  bits = (bits & 0x00FF00FFu) << 8 | (bits & 0xFF00FF00u) >> 8;
  return {(index + 0.5) / count, bits * 0x1p-32};
}

/// A micro-facet's normal about z, in proportion to GGX times its cosine.
Vector facet(double alpha, std::pair<double, double> at) {
  const double cosine = std::sqrt((1 - at.second) / (1 + (alpha * alpha - 1) * at.second));
  const double sine = std::sqrt(std::max(0.0, 1 - cosine * cosine));
  return {sine * std::cos(2 * kPi * at.first), sine * std::sin(2 * kPi * at.first), cosine};
}

std::size_t sideOf(const Vector& d) {
  const double x = std::abs(d[0]), y = std::abs(d[1]), z = std::abs(d[2]);
  if (x >= y && x >= z) return d[0] > 0 ? 0 : 1;
  if (y >= z) return d[1] > 0 ? 2 : 3;
  return d[2] > 0 ? 4 : 5;
}

/// The texel of a level of a cube in that direction.
const float* texelAt(const render::Texture& cube, std::size_t level, const Vector& d) {
  const std::size_t side = sideOf(d);
  const double size = std::max(cube.size.width >> level, 1u);
  double x = 0;
  double y = 0;
  switch (side) {
  case 0: x = -d[2] / d[0], y = -d[1] / d[0]; break;
  case 1: x = -d[2] / d[0], y = d[1] / d[0]; break;
  case 2: x = d[0] / d[1], y = d[2] / d[1]; break;
  case 3: x = -d[0] / d[1], y = d[2] / d[1]; break;
  case 4: x = d[0] / d[2], y = -d[1] / d[2]; break;
  default: x = d[0] / d[2], y = d[1] / d[2]; break;
  }
  const auto index = [size](double at) {
    return static_cast<std::size_t>(std::clamp((at + 1) / 2 * size, 0.0, size - 1));
  };
  const auto width = static_cast<std::size_t>(size);
  return &cube.levels[level][4 * ((side * width + index(y)) * width + index(x))];
}

/// A direction that a surface mirrors, about its normal, with the level of the sharp cube whose texels are as
/// large as what it stands for: small bright lights do not sparkle then.
struct Ray {
  Vector local;
  std::size_t level = 0;
};

/// What a surface of that roughness mirrors where it is seen along its normal.
std::vector<Ray> mirroredRays(double roughness, std::size_t levels) {
  const double alpha = std::max(roughness * roughness, 1e-4);
  const double texel = 4 * kPi / (6.0 * kSharpestSide * kSharpestSide);
  std::vector<Ray> rays;
  for (std::uint32_t i = 0; i < kSamples; ++i) {
    const Vector h = facet(alpha, hammersley(i, kSamples));
    const double towards = 2 * h[2] * h[2] - 1;
    if (towards <= 0) continue;
    const double d = h[2] * h[2] * (alpha * alpha - 1) + 1;
    const double density = alpha * alpha / (kPi * d * d) / 4;
    const double level = 0.5 * std::log2(1 / (kSamples * density * texel)) + 1;
    const double last = static_cast<double>(levels) - 1;
    rays.push_back({{2 * h[2] * h[0], 2 * h[2] * h[1], towards},
                    static_cast<std::size_t>(std::lround(std::clamp(level, 0.0, last)))});
  }
  return rays;
}

Vector blurred(const render::Texture& sharp, const Vector& n, const std::vector<Ray>& rays) {
  const Vector aside = unit(cross(std::abs(n[1]) < 0.9 ? Vector{0, 1, 0} : Vector{1, 0, 0}, n));
  const Vector across = cross(n, aside);
  Vector sum{};
  double weights = 0;
  for (const auto& [local, level] : rays) {
    const float* const seen = texelAt(sharp, level, aside * local[0] + across * local[1] + n * local[2]);
    sum = sum + Vector{seen[0], seen[1], seen[2]} * local[2];
    weights += local[2];
  }
  return sum * (1 / weights);
}

std::array<double, 9> harmonics(const Vector& n) {
  const auto [x, y, z] = n;
  return {1, y, z, x, x * y, y * z, 3 * z * z - 1, x * z, x * x - y * y};
}

/// Sums over the sphere, with what each function is scaled by squared, and what a cosine leaves of its band.
std::array<Vector, 9> project(const render::Texture& sharp) {
  const std::array<double, 9> scale = {0.25 / kPi,         0.75 / kPi * 2 / 3, 0.75 / kPi * 2 / 3,
                                       0.75 / kPi * 2 / 3, 3.75 / kPi / 4,     3.75 / kPi / 4,
                                       0.3125 / kPi / 4,   3.75 / kPi / 4,     0.9375 / kPi / 4};
  constexpr std::size_t kLevel = 1;
  const std::uint32_t side = sharp.size.width >> kLevel;
  std::array<Vector, 9> sums{};
  double sphere = 0;
  for (std::size_t face = 0; face < 6; ++face) {
    for (std::uint32_t i = 0; i < side * side; ++i) {
      const double x = (i % side + 0.5) / side * 2 - 1, y = (i / side + 0.5) / side * 2 - 1;
      const Vector n = cubeDirection(face, x, y);
      const double share = std::pow(1 + x * x + y * y, -1.5);
      const float* const texel = &sharp.levels[kLevel][4 * (face * side * side + i)];
      const std::array<double, 9> at = harmonics(n);
      for (std::size_t k = 0; k < 9; ++k)
        sums[k] = sums[k] + Vector{texel[0], texel[1], texel[2]} * (at[k] * share);
      sphere += share;
    }
  }
  for (std::size_t k = 0; k < 9; ++k) sums[k] = sums[k] * (4 * kPi / sphere * scale[k]);
  return sums;
}

/// Colours by direction.
template <class ColorAt>
Picture makePanorama(const ColorAt& colorAt) {
  Picture panorama(512, 256);
  for (std::uint32_t y = 0; y < panorama.height; ++y) {
    for (std::uint32_t x = 0; x < panorama.width; ++x) {
      const double around = ((x + 0.5) / panorama.width - 0.5) * 2 * kPi;
      const double up = (0.5 - (y + 0.5) / panorama.height) * kPi;
      const Vector color =
          colorAt(Vector{std::cos(up) * std::cos(around), std::sin(up), std::cos(up) * std::sin(around)});
      for (std::size_t k = 0; k < 3; ++k) panorama.at(x, y)[k] = static_cast<float>(color[k]);
      panorama.at(x, y)[3] = 1;
    }
  }
  return panorama;
}

double ramp(double low, double high, double at) {
  const double t = std::clamp((at - low) / (high - low), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

/// 1 inside a rectangle that is seen from the origin around `axis`, with soft edges.
double panel(const Vector& d, const Vector& axis, double halfWidth, double halfHeight) {
  const Vector out = unit(axis);
  const double depth = dot(d, out);
  if (depth <= 0) return 0;
  const Vector aside = unit(cross(Vector{0, 1, 0}, out));
  const double x = std::abs(dot(d, aside)) / depth, y = std::abs(dot(d, cross(out, aside))) / depth;
  constexpr double kEdge = 0.04;
  return ramp(halfWidth + kEdge, halfWidth, x) * ramp(halfHeight + kEdge, halfHeight, y);
}

// Files: a mark with the version of the method, the panorama's sum, then all numbers.
constexpr char kTableMark[8] = {'s', 'f', 'g', 's', 'u', 'm', '0', '1'};
constexpr char kMark[8] = {'s', 'f', 'g', 'e', 'n', 'v', '0', '1'};

std::uint64_t sumOf(const Picture& picture) {
  std::uint64_t sum = 14695981039346656037u;  // FNV-1a, over words
  const auto add = [&sum](std::uint32_t word) { sum = (sum ^ word) * 1099511628211u; };
  add(picture.width);
  add(picture.height);
  for (const float value : picture.texels) {
    std::uint32_t word = 0;
    std::memcpy(&word, &value, sizeof(word));
    add(word);
  }
  return sum;
}

/// Its levels, all zero.
render::Texture emptyCube() {
  render::Texture cube;
  cube.type = vk::ImageViewType::eCube;
  cube.size = vk::Extent3D(kSharpestSide, kSharpestSide, 1);
  for (std::uint32_t level = 0; level < kLevels; ++level)
    cube.levels.emplace_back(std::size_t{4} * 6 * (kSharpestSide >> level) * (kSharpestSide >> level));
  return cube;
}

bool readKept(const std::filesystem::path& file, std::uint64_t sum, EnvironmentLight& light) {
  std::ifstream stream(file, std::ios::binary);
  char mark[8] = {};
  std::uint64_t kept = 0;
  stream.read(mark, sizeof(mark));
  stream.read(reinterpret_cast<char*>(&kept), sizeof(kept));
  if (!stream || !std::equal(std::begin(mark), std::end(mark), kMark) || kept != sum) return false;
  light.mirrored = emptyCube();
  stream.read(reinterpret_cast<char*>(light.diffuse.data()), sizeof(light.diffuse));
  for (std::vector<float>& level : light.mirrored.levels)
    stream.read(reinterpret_cast<char*>(level.data()),
                static_cast<std::streamsize>(level.size() * sizeof(float)));
  return static_cast<bool>(stream);
}

/// Under another name first: whoever reads sees a whole file or none.
template <class Write>
void keepFile(const std::filesystem::path& file, const Write& write) {
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  std::filesystem::path unfinished = file;
  unfinished += "." + std::to_string(reinterpret_cast<std::uintptr_t>(&error)) + ".part";
  std::ofstream stream(unfinished, std::ios::binary);
  write(stream);
  stream.close();
  if (stream) std::filesystem::rename(unfinished, file, error);
  if (!stream || error) std::filesystem::remove(unfinished, error);
}

void keep(const std::filesystem::path& file, std::uint64_t sum, const EnvironmentLight& light) {
  keepFile(file, [&](std::ostream& stream) {
    stream.write(kMark, sizeof(kMark));
    stream.write(reinterpret_cast<const char*>(&sum), sizeof(sum));
    stream.write(reinterpret_cast<const char*>(light.diffuse.data()), sizeof(light.diffuse));
    for (const std::vector<float>& level : light.mirrored.levels)
      stream.write(reinterpret_cast<const char*>(level.data()),
                   static_cast<std::streamsize>(level.size() * sizeof(float)));
  });
}

}  // namespace

Picture studioPanorama() {
  return makePanorama([](const Vector& d) {
    const double wall = 0.16 + 0.10 * ramp(-0.4, 0.9, d[1]) - 0.08 * ramp(0.0, -0.7, d[1]);
    Vector color = Vector{1.0, 0.98, 0.95} * wall;
    color = color + Vector{1.0, 0.97, 0.92} * (7.0 * panel(d, {-0.8, 0.75, 0.9}, 0.45, 0.34));
    color = color + Vector{0.85, 0.93, 1.0} * (3.5 * panel(d, {1.0, 0.25, 0.35}, 0.16, 0.9));
    return color + Vector{0.9, 0.95, 1.0} * (1.2 * panel(d, {0.2, 0.7, -1.0}, 0.6, 0.25));
  });
}

Picture skyPanorama() {
  const Vector sun = unit({-0.5, 0.75, 0.65});
  return makePanorama([&](const Vector& d) {
    const double up = std::max(d[1], 0.0);
    const Vector zenith = {0.13, 0.28, 0.62};
    const Vector horizon = {0.62, 0.72, 0.82};
    const double low = std::pow(1 - up, 4);
    const Vector sky = zenith * (1 - low) + horizon * low;
    const double near = std::max(dot(d, sun), 0.0);
    const Vector glow =
        Vector{1.0, 0.85, 0.6} * (0.35 * std::pow(near, 24) + 320 * ramp(0.9975, 0.9990, near));
    const Vector ground = Vector{0.20, 0.17, 0.13} * (1 - 0.4 * ramp(0.0, -1.0, d[1]));
    const double above = ramp(-0.01, 0.01, d[1]);
    return (sky + glow) * above + ground * (1 - above);
  });
}

EnvironmentLight makeEnvironmentLight(const Picture& panorama) {
  const render::Texture sharp = cubeOf(linearized(panorama), kSharpestSide);
  EnvironmentLight light;
  light.diffuse = project(sharp);
  light.mirrored = emptyCube();
  light.mirrored.levels[0] = sharp.levels[0];
  for (std::uint32_t level = 1; level < kLevels; ++level) {
    const std::uint32_t side = kSharpestSide >> level;
    const std::vector<Ray> rays =
        mirroredRays(static_cast<double>(level) / (kLevels - 1), sharp.levels.size());
    float* to = light.mirrored.levels[level].data();
    for (std::size_t face = 0; face < 6; ++face) {
      for (std::uint32_t i = 0; i < side * side; ++i, to += 4) {
        const Vector n =
            cubeDirection(face, (i % side + 0.5) / side * 2 - 1, (i / side + 0.5) / side * 2 - 1);
        const Vector color = blurred(sharp, n, rays);
        for (std::size_t k = 0; k < 3; ++k) to[k] = static_cast<float>(color[k]);
        to[3] = 1;
      }
    }
  }
  return light;
}

EnvironmentLight keptEnvironmentLight(const Picture& panorama, const std::filesystem::path& folder) {
  if (folder.empty()) return makeEnvironmentLight(panorama);
  const std::uint64_t sum = sumOf(panorama);
  const std::filesystem::path file = folder / ("environment-" + std::to_string(sum) + ".bin");
  EnvironmentLight light;
  if (readKept(file, sum, light)) return light;
  light = makeEnvironmentLight(panorama);
  keep(file, sum, light);
  return light;
}

std::filesystem::path cacheFolder() {
  if (const char* const folder = std::getenv("XDG_CACHE_HOME"); folder != nullptr && *folder == '/')
    return std::filesystem::path(folder) / "sfg";
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home != '\0' ? std::filesystem::path(home) / ".cache" / "sfg"
                                          : std::filesystem::path();
}

Vector diffuseAt(const EnvironmentLight& light, const Vector& n) {
  const std::array<double, 9> at = harmonics(n);
  Vector sum{};
  for (std::size_t k = 0; k < 9; ++k) sum = sum + light.diffuse[k] * at[k];
  return sum;
}

Picture splitSumTable() {
  Picture table(kTable, kTable);
  for (std::uint32_t row = 0; row < kTable; ++row) {
    const double alpha = std::max(std::pow((row + 0.5) / kTable, 2), 1e-3);
    for (std::uint32_t column = 0; column < kTable; ++column) {
      const double cosine = (column + 0.5) / kTable;
      const Vector v = {std::sqrt(1 - cosine * cosine), 0, cosine};
      const auto masked = [alpha](double c) {
        return std::sqrt(c * c * (1 - alpha * alpha) + alpha * alpha);
      };
      double factor = 0;
      double added = 0;
      for (std::uint32_t i = 0; i < kSamples; ++i) {
        const Vector h = facet(alpha, hammersley(i, kSamples));
        const double vDotH = std::max(dot(v, h), 0.0);
        const double nDotL = 2 * vDotH * h[2] - cosine;
        if (nDotL <= 0 || vDotH <= 0) continue;
        const double visibility = 0.5 / (nDotL * masked(cosine) + cosine * masked(nDotL));
        const double weight = 4 * visibility * nDotL * vDotH / h[2];
        const double fresnel = std::pow(1 - vDotH, 5);
        factor += (1 - fresnel) * weight;
        added += fresnel * weight;
      }
      table.at(column, row)[0] = static_cast<float>(factor / kSamples);
      table.at(column, row)[1] = static_cast<float>(added / kSamples);
      table.at(column, row)[3] = 1;
    }
  }
  return table;
}

Picture keptSplitSumTable(const std::filesystem::path& folder) {
  if (folder.empty()) return splitSumTable();
  const std::filesystem::path file = folder / "split-sum.bin";
  Picture table(kTable, kTable);
  const auto bytes = static_cast<std::streamsize>(table.texels.size() * sizeof(float));
  char mark[sizeof(kTableMark)] = {};
  std::ifstream kept(file, std::ios::binary);
  kept.read(mark, sizeof(mark));
  kept.read(reinterpret_cast<char*>(table.texels.data()), bytes);
  if (kept && std::equal(std::begin(mark), std::end(mark), kTableMark)) return table;
  table = splitSumTable();
  keepFile(file, [&](std::ostream& stream) {
    stream.write(kTableMark, sizeof(kTableMark));
    stream.write(reinterpret_cast<const char*>(table.texels.data()), bytes);
  });
  return table;
}

}  // namespace pictures

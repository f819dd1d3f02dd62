// Compares materials on a sphere with reference pictures: sfg_materialx_materials FOLDER LIBRARY [NAME]...
//
// FOLDER holds documents, their pictures under one light and an index of them, as its README.md says. Each
// element is imported, collapsed and drawn. Prints the error of each and the counts: the root of the mean
// squared difference of linear colours, clamped to [0, 4], where the surface is seen. A NAME is that of a
// document.
//   --within E      the largest error that counts as right (0.02)
//   --least N       asks for N per cent
//   --every N       compares one block of two by two pixels in N by N
//   --times         draws nothing and tells how much processor time import, collapse and assembly of each
//                   element take, in a process that has the libraries, and asks for at most 20 ms (--most MS)
//   --worst N       tells the N pixels of each wrong picture that are farthest off
//   --pictures DIR  writes the two pictures of each element side by side, small, for a gallery

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <numbers>
#include <set>

#include <nlohmann/json.hpp>

#include "import/material_document.h"
#include "pictures/matrix.h"
#include "pictures/picture.h"
#include "sfg/host/job.h"
#include "tests/materialx/surface_field.h"

namespace materialx_test {
namespace {

using namespace TolmSDK::Graphics::sfg;
using Json = nlohmann::json;
using pictures::Picture;
using pictures::Vector;
using pictures::operator+;
using pictures::operator*;
using pictures::operator-;
namespace fs = std::filesystem;

constexpr std::uint32_t kSide = 256;
constexpr double kEyeDistance = 5.0;
constexpr double kHalfWidth = 0.225;  // of the picture, at distance 1
constexpr double kBrightest = 4.0;

/// Towards a pixel; of length 1.
Vector rayThrough(std::uint32_t column, std::uint32_t row) {
  const double x = ((column + 0.5) / (kSide / 2.0) - 1.0) * kHalfWidth;
  const double y = (1.0 - (row + 0.5) / (kSide / 2.0)) * kHalfWidth;
  return pictures::unit({x, y, -1.0});
}

/// Negative where the ray misses the sphere.
double depthUnder(const Vector& ray) {
  const double middle = -ray[2] * kEyeDistance;
  return middle * middle - kEyeDistance * kEyeDistance + 1.0;
}

bool isHit(std::uint32_t column, std::uint32_t row) { return depthUnder(rayThrough(column, row)) >= 0.0; }

/// The nearest place on the sphere; of a ray that misses it, beside where the two are closest.
Vector placeUnder(std::uint32_t column, std::uint32_t row) {
  const Vector ray = rayThrough(column, row);
  const double depth = depthUnder(ray);
  const double distance = -ray[2] * kEyeDistance - std::sqrt(std::max(depth, 0.0));
  return pictures::unit(Vector{0, 0, kEyeDistance} + ray * distance);
}

Numbers numbersOf(const Vector& a) { return {a[0], a[1], a[2]}; }

/// The arcsine of the device that drew the reference pictures: a polynomial under a root, off by up to 2e-4.
/// That moves a texture that is repeated 16 times by half a texel, which shows in sharp highlights.
double arcsineOfReferences(double x) {
  const double size = std::abs(x);
  const double right = 0.5 * std::numbers::pi;
  const double inner = 0.5 * right - 1.0 + size * (0.086566724 - size * 0.03102955);
  return std::copysign(right - std::sqrt(1.0 - size) * (right + size * inner), x);
}

Numbers valueAt(const std::string& name, std::uint32_t column, std::uint32_t row) {
  const Vector p = placeUnder(column, row);
  const double u = std::atan2(p[0], p[2]) / (2 * std::numbers::pi) + 0.5;
  const double v = arcsineOfReferences(p[1]) / std::numbers::pi + 0.5;
  const Vector tangent = pictures::unit({p[2], 0, -p[0]});
  if (name.ends_with("Position") || name.ends_with("Normal")) return numbersOf(p);
  if (name == "sfg_worldTangent") return numbersOf(tangent);
  if (name == "sfg_worldBinormal") return numbersOf(pictures::cross(p, tangent));
  if (name == "sfg_viewDirection") return numbersOf(pictures::unit(p - Vector{0, 0, kEyeDistance}));
  if (name == "sfg_frontFacing") return {1.0};
  if (name == "tangent") return {tangent[0], tangent[1], tangent[2], 1.0};
  if (name == "sfg_texCoord0") return {u, v};
  if (name == "sfg_texCoord1") return {v, 1 - u};
  if (name == "sfg_vertexColor") return {u, v, 1 - u, 0.5 + 0.5 * v};
  return {};
}

Numbers stateOf(const std::string& name) {
  constexpr double kZoom = 1.0 / kHalfWidth;
  if (name == "sfg_matWorldViewProj") {
    return {kZoom, 0, 0, 0, 0, -kZoom, 0, 0, 0, 0, -0.5, 0.5 * kEyeDistance, 0, 0, -1, kEyeDistance};
  }
  if (name.starts_with("sfg_matWorld")) return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  if (name == "sfg_eyePosition") return {0, 0, kEyeDistance};
  if (name == "sfg_time") return {1.25};
  return {};
}

constexpr const char* kLight =
    R"({ "lights": [ { "name": "sun", "fragment": "directionalLight", "profile": "sfg_Light" } ] })";

const std::vector<host::ValueSetting>& lightSettings() {
  static const double kPart = -1.0 / std::sqrt(3.0);
  static const std::vector<host::ValueSetting> kSettings = {{"sun.light_axis", {kPart, kPart, kPart}},
                                                            {"sun.light_color", {1, 1, 1}},
                                                            {"sun.light_intensity", {std::numbers::pi}}};
  return kSettings;
}

class Studio {
public:
  Studio(fs::path folder, const fs::path& library, std::uint32_t every)
      : folder_(std::move(folder)), every_(every) {
    libraries_ = host::LibrarySet::load({{library, library / "materialx"}, {library, library / "materialx"}});
  }

  bool isSeen(std::uint32_t column, std::uint32_t row) const {
    return column / 2 % every_ == 0 && row / 2 % every_ == 0 && isHit(column, row);
  }

  /// Milliseconds of processor time from the document's file to the text of its pixel stage: the best of
  /// three.
  double timeOf(const fs::path& document, const std::string& element) const {
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
      const std::clock_t start = std::clock();
      const host::Job job = collapsed(importOf(document, element));
      (void)job.assemble(host::ShaderStage::pixel);
      best = std::min(best, 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
  }

  Picture shoot(const fs::path& document, const std::string& element) {
    const materialx::ImportedMaterial material = importOf(document, element);
    const host::Job job = collapsed(material);
    SurfaceField field;
    field.width = field.height = kSide;
    field.at = valueAt;
    field.isSeen = [this](std::uint32_t column, std::uint32_t row) { return isSeen(column, row); };
    field.state = stateOf;
    field.settings = lightSettings();
    field.texture = [&](const host::InterfaceOrigin& origin) -> const Image& {
      return textureFor(origin, material);
    };
    return pictureOf(evaluate(device_, job, field).front(), material.graph.outputs.front().parameter.type);
  }

private:
  materialx::ImportedMaterial importOf(const fs::path& document, const std::string& element) const {
    materialx::MaterialDocument::Options options;
    options.folders = {folder_};
    materialx::MaterialDocument reader(folder_ / document, libraries_, options);
    materialx::ImportedMaterial material = reader.import(element);
    for (const host::Diagnostic& diagnostic : material.diagnostics) {
      if (diagnostic.severity == host::Severity::error) throw std::runtime_error(diagnostic.text);
    }
    return material;
  }

  host::Job collapsed(const materialx::ImportedMaterial& material) const {
    host::CollapseOptions collapse;
    if (material.isLit) collapse.tool = host::CollapseTool::lightLoop;
    std::optional<host::Document> light;
    if (material.isLit) light = host::Document::fromText(kLight, "light.json");
    host::Job job(libraries_, host::Document::from(material.graph, material.name), collapse, light);
    job.collapse();
    return job;
  }

  Picture pictureOf(const FieldOutput& colors, const std::string& type) const {
    Picture picture(kSide, kSide);
    const float* next = colors.values.data();
    for (std::uint32_t row = 0; row < kSide; ++row) {
      for (std::uint32_t column = 0; column < kSide; ++column) {
        if (!isSeen(column, row)) continue;
        // A single number is grey, and the third of two is 0.
        for (std::size_t i = 0; i < 3; ++i) {
          picture.at(column, row)[i] = type == "float"              ? next[0]
                                       : type == "float2" && i == 2 ? 0.0f
                                                                    : next[i];
        }
        next += 4;
      }
    }
    return picture;
  }

  const Image& textureFor(const host::InterfaceOrigin& origin, const materialx::ImportedMaterial& material) {
    for (const materialx::ImportedTexture& texture : material.textures) {
      if (texture.node != origin.owner || texture.input != origin.name) continue;
      return texture.isMissing ? plainTexture(texture) : textureOf(texture.file);
    }
    throw std::runtime_error("nothing is known of the texture of " + origin.path());
  }

  const Image& textureOf(const std::string& file) {
    const auto [entry, isNew] = textures_.try_emplace(file);
    if (isNew) {
      Picture picture = pictures::readPicture(file);
      entry->second = {picture.width, picture.height, std::move(picture.texels)};
    }
    return entry->second;
  }

  const Image& plainTexture(const materialx::ImportedTexture& missing) {
    Image& texture = textures_["missing " + missing.node];
    texture = {1, 1, {}};
    for (const double number : missing.value) texture.texels.push_back(static_cast<float>(number));
    texture.texels.resize(4, 1.0f);
    return texture;
  }

  fs::path folder_;
  std::uint32_t every_;
  std::shared_ptr<const host::LibrarySet> libraries_;
  render::Device device_;
  std::map<std::string, Image> textures_;
};

struct Verdict {
  double error = 0.0;
  double off = 0.0;  ///< the share of pixels of which a colour is farther off than 0.02
  Vector mean{};     ///< of the result
  Vector wanted{};
};

double clamped(float value) { return std::clamp(static_cast<double>(value), 0.0, kBrightest); }

/// A result that is no number is as wrong as can be.
Verdict compare(const Studio& studio, const Picture& result, const Picture& reference) {
  Verdict verdict;
  double count = 0.0;
  for (std::uint32_t row = 0; row < kSide; ++row) {
    for (std::uint32_t column = 0; column < kSide; ++column) {
      if (!studio.isSeen(column, row)) continue;
      count += 1.0;
      double worst = 0.0;
      for (std::size_t i = 0; i < 3; ++i) {
        const float given = result.at(column, row)[i];
        const double wanted = clamped(reference.at(column, row)[i]);
        const double difference = std::isnan(given) ? kBrightest : clamped(given) - wanted;
        worst = std::max(worst, std::abs(difference));
        verdict.error += difference * difference;
        verdict.mean[i] += std::isnan(given) ? 0.0 : clamped(given);
        verdict.wanted[i] += wanted;
      }
      verdict.off += worst > 0.02 ? 1.0 : 0.0;
    }
  }
  verdict.off /= count;
  verdict.error = std::sqrt(verdict.error / (3.0 * count));
  verdict.mean = verdict.mean * (1.0 / count);
  verdict.wanted = verdict.wanted * (1.0 / count);
  return verdict;
}

std::string textOf(const Vector& a) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(3) << a[0] << " " << a[1] << " " << a[2];
  return text.str();
}

/// Where the pictures differ most: column and row, the place on the sphere, both colours.
void tellWorst(const Studio& studio, const Picture& result, const Picture& reference, std::size_t count) {
  std::vector<std::array<double, 3>> pixels;  // how far off, column, row
  for (std::uint32_t row = 0; row < kSide; ++row) {
    for (std::uint32_t column = 0; column < kSide; ++column) {
      if (!studio.isSeen(column, row)) continue;
      double off = 0.0;
      for (std::size_t i = 0; i < 3; ++i) {
        off = std::max(off,
                       std::abs(clamped(result.at(column, row)[i]) - clamped(reference.at(column, row)[i])));
      }
      pixels.push_back({-off, static_cast<double>(column), static_cast<double>(row)});
    }
  }
  std::sort(pixels.begin(), pixels.end());
  pixels.resize(std::min(count, pixels.size()));
  for (const auto& [off, x, y] : pixels) {
    const auto column = static_cast<std::uint32_t>(x);
    const auto row = static_cast<std::uint32_t>(y);
    const float* const given = result.at(column, row);
    const float* const wanted = reference.at(column, row);
    std::cout << "  " << column << " " << row << " at " << textOf(placeUnder(column, row)) << ": "
              << textOf({given[0], given[1], given[2]}) << " for "
              << textOf({wanted[0], wanted[1], wanted[2]}) << "\n";
  }
}

/// The mean of each four by four pixels, on black, into `small` from that column on.
void shrinkInto(Picture& small, std::uint32_t left, const Picture& picture) {
  constexpr std::uint32_t kEach = 4;
  for (std::uint32_t row = 0; row < small.height; ++row) {
    for (std::uint32_t column = 0; column < kSide / kEach; ++column) {
      float* const texel = small.at(left + column, row);
      for (std::uint32_t i = 0; i < kEach * kEach; ++i) {
        const float* const from = picture.at(kEach * column + i % kEach, kEach * row + i / kEach);
        for (std::size_t c = 0; c < 3; ++c) {
          texel[c] += static_cast<float>(std::min(clamped(from[c]), 1.0)) / (kEach * kEach);
        }
      }
      texel[3] = 1.0f;
    }
  }
}

/// The result to the left of the reference.
void writePair(const Picture& result, const Picture& reference, const fs::path& file) {
  Picture pair(kSide / 2, kSide / 4);
  shrinkInto(pair, 0, result);
  shrinkInto(pair, kSide / 4, reference);
  std::ofstream(file, std::ios::binary)
      << pictures::writePicture(pictures::encoded(pair), pictures::PictureFormat::png);
}

struct Arguments {
  std::vector<std::string> words;
  double within = 0.02;
  double least = -1.0;
  std::uint32_t every = 1;
  std::size_t worst = 0;
  std::string pictures;
  bool isTimed = false;
  double most = 20.0;
};

Arguments parse(int argc, char** argv) {
  Arguments arguments;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--within" && i + 1 < argc) {
      arguments.within = std::stod(argv[++i]);
    } else if (word == "--least" && i + 1 < argc) {
      arguments.least = std::stod(argv[++i]);
    } else if (word == "--every" && i + 1 < argc) {
      arguments.every = static_cast<std::uint32_t>(std::max(1, std::stoi(argv[++i])));
    } else if (word == "--worst" && i + 1 < argc) {
      arguments.worst = static_cast<std::size_t>(std::max(0, std::stoi(argv[++i])));
    } else if (word == "--times") {
      arguments.isTimed = true;
    } else if (word == "--most" && i + 1 < argc) {
      arguments.most = std::stod(argv[++i]);
    } else if (word == "--pictures" && i + 1 < argc) {
      arguments.pictures = argv[++i];
    } else {
      arguments.words.emplace_back(word);
    }
  }
  return arguments;
}

int runTimes(const Arguments& arguments) {
  const fs::path folder = arguments.words[0];
  std::ifstream stream(folder / "index.json");
  const Json index = Json::parse(stream);
  const Studio studio(folder, arguments.words[1], 1);
  const std::set<std::string> only(arguments.words.begin() + 2, arguments.words.end());
  double longest = 0.0;
  std::cout << std::fixed << std::setprecision(2);
  for (const auto& [name, facts] : index.items()) {
    if (!only.empty() && only.count(name) == 0) continue;
    for (const auto& [element, unused] : facts.at("elements").items()) {
      const double time = studio.timeOf(facts.at("document").get<std::string>(), element);
      std::cout << name << " " << element << ": " << time << " ms\n";
      longest = std::max(longest, time);
    }
  }
  std::cout << "longest: " << longest << " ms\n";
  return longest <= arguments.most ? 0 : 1;
}

int run(const Arguments& arguments) {
  const fs::path folder = arguments.words[0];
  std::ifstream stream(folder / "index.json");
  const Json index = Json::parse(stream);
  Studio studio(folder, arguments.words[1], arguments.every);
  const std::set<std::string> only(arguments.words.begin() + 2, arguments.words.end());
  if (!arguments.pictures.empty()) fs::create_directories(arguments.pictures);
  std::size_t right = 0;
  std::size_t all = 0;
  for (const auto& [name, facts] : index.items()) {
    if (!only.empty() && only.count(name) == 0) continue;
    for (const auto& [element, says] : facts.at("elements").items()) {
      ++all;
      const std::string file = says.at("reference").get<std::string>();
      std::cout << name << " " << element << ": " << std::flush;
      try {
        const Picture result = studio.shoot(facts.at("document").get<std::string>(), element);
        const Picture reference = pictures::readPicture(folder / "reference" / file);
        const Verdict verdict = compare(studio, result, reference);
        const bool isRight = verdict.error <= arguments.within;
        right += isRight ? 1 : 0;
        std::cout << std::setprecision(3) << verdict.error;
        if (!isRight)
          std::cout << " WRONG, off " << verdict.off << ", mean " << textOf(verdict.mean) << " for "
                    << textOf(verdict.wanted);
        std::cout << "\n";
        if (!isRight) tellWorst(studio, result, reference, arguments.worst);
        if (!arguments.pictures.empty()) {
          writePair(result, reference,
                    fs::path(arguments.pictures) / (fs::path(file).stem().string() + ".png"));
        }
      } catch (const std::exception& error) {
        std::cout << "FAILED, " << error.what() << "\n";
      }
    }
  }
  const double share = all == 0 ? 0.0 : 100.0 * static_cast<double>(right) / static_cast<double>(all);
  std::cout << "all: " << right << " of " << all << " (" << share << " %) within " << arguments.within
            << "\n";
  return share >= arguments.least ? 0 : 1;
}

}  // namespace
}  // namespace materialx_test

int main(int argc, char** argv) {
  try {
    const materialx_test::Arguments arguments = materialx_test::parse(argc, argv);
    if (arguments.words.size() < 2) {
      std::cerr
          << "usage: sfg_materialx_materials FOLDER LIBRARY [NAME]... [--within ERROR] [--least PERCENT] "
             "[--every N] [--worst N] [--pictures DIR] [--times] [--most MS]\n";
      return 2;
    }
    if (!std::filesystem::exists(std::filesystem::path(arguments.words[0]) / "index.json")) {
      std::cout << "skipped: there are no reference pictures in " << arguments.words[0] << "\n";
      return 77;
    }
    return arguments.isTimed ? materialx_test::runTimes(arguments) : materialx_test::run(arguments);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}

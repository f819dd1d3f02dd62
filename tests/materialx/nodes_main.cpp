// Compares what the standard nodes compute with reference values: sfg_materialx_nodes FOLDER LIBRARY
// [NAME]...
//
// FOLDER holds documents, references and an index of them, as its README.md says. Each output of each
// document is imported, collapsed and run at 16 by 16 points: by a compute stage, or by a pixel stage where
// derivatives over the screen are needed. Prints a line for each
// document that differs, then the counts; --least N asks for N per cent.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>

#include <nlohmann/json.hpp>

#include "import/material_document.h"
#include "sfg/host/job.h"
#include "tests/materialx/surface_field.h"

namespace materialx_test {
namespace {

using namespace TolmSDK::Graphics::sfg;
using Json = nlohmann::json;
namespace fs = std::filesystem;

constexpr std::size_t kSide = 16;
constexpr std::size_t kCount = kSide * kSide;
constexpr float kTolerance = 1e-3f;
constexpr double kMostOff = 0.02;

using Vector = std::array<double, 3>;

Vector minus(Vector a) { return {-a[0], -a[1], -a[2]}; }
Vector normalized(Vector a) {
  const double length = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
  return {a[0] / length, a[1] / length, a[2] / length};
}
Vector cross(Vector a, Vector b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Object to world, for column vectors, and its inverse.
constexpr double kC = 0.8660254037844386;
constexpr double kMatrix[16] = {kC, 0, 0.25, 0.5, 0, 2, 0, -0.25, -0.5, 0, 0.5 * kC, 2, 0, 0, 0, 1};

Vector times(const double* m, Vector p, double w) {
  Vector r;
  for (std::size_t i = 0; i < 3; ++i) {
    r[i] = m[4 * i] * p[0] + m[4 * i + 1] * p[1] + m[4 * i + 2] * p[2] + m[4 * i + 3] * w;
  }
  return r;
}

/// The inverse of kMatrix: S^-1 R^-1 T^-1.
std::array<double, 16> inverseMatrix() {
  const std::array<double, 9> linear = {kC, 0, -0.5, 0, 0.5, 0, 1.0, 0, 2.0 * kC};
  std::array<double, 16> m{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t k = 0; k < 3; ++k) m[4 * i + k] = linear[3 * i + k];
    m[4 * i + 3] = -(linear[3 * i] * 0.5 + linear[3 * i + 1] * -0.25 + linear[3 * i + 2] * 2.0);
  }
  m[15] = 1.0;
  return m;
}

/// What varies over the square, by the name of the state variable or graph input.
Numbers valueAt(const std::string& name, double u, double v) {
  const Vector position{2 * u - 1, 2 * v - 1, u * v};
  const Vector normal = normalized({0.3 * (2 * u - 1), 0.3 * (2 * v - 1), 1});
  const Vector tangent = normalized({1, 0, -0.3 * (2 * u - 1)});
  const Vector worldPosition = times(kMatrix, position, 1);
  const std::array<double, 16> inverse = inverseMatrix();
  Vector worldNormal{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t k = 0; k < 3; ++k) worldNormal[i] += inverse[4 * k + i] * normal[k];
  }
  worldNormal = normalized(worldNormal);
  const Vector worldTangent = normalized(times(kMatrix, tangent, 0));
  const auto numbers = [](Vector a) { return Numbers{a[0], a[1], a[2]}; };
  if (name == "sfg_texCoord0") return {u, v};
  if (name == "sfg_texCoord1") return {v, 1 - u};
  if (name == "sfg_objectPosition") return numbers(position);
  if (name == "sfg_objectNormal") return numbers(normal);
  if (name == "tangent") return {tangent[0], tangent[1], tangent[2], 1};
  if (name == "sfg_worldPosition") return numbers(worldPosition);
  if (name == "sfg_worldNormal") return numbers(worldNormal);
  if (name == "sfg_worldTangent") return numbers(worldTangent);
  if (name == "sfg_worldBinormal") return numbers(cross(worldNormal, worldTangent));
  if (name == "sfg_viewDirection") {
    return numbers(minus(normalized({worldPosition[0], worldPosition[1], worldPosition[2] - 5.0})));
  }
  if (name == "sfg_vertexColor") return {u, v, 1 - u, 0.5 + 0.5 * v};
  if (name == "sfg_frontFacing") return {1.0};
  if (name == "vertexColor1") return {1 - v, u * v, u, 0.25};
  if (name == "geomprop_prop_integer") return {std::floor(8 * u)};
  if (name == "geomprop_prop_boolean") return {1.0};
  if (name == "geomprop_prop_float") return {0.25 + 0.5 * u + 0.25 * v};
  if (name == "geomprop_prop_vector2") return {v, u};
  if (name == "geomprop_prop_vector3" || name == "geomprop_prop_color3") return {u, v, 0.5};
  if (name == "geomprop_prop_vector4" || name == "geomprop_prop_color4") return {u, v, 1 - u, 1 - v};
  return {};
}

/// State that is the same everywhere; matrices row by row.
Numbers stateValue(const std::string& name) {
  if (name == "sfg_matWorld") return {std::begin(kMatrix), std::end(kMatrix)};
  const std::array<double, 16> inverse = inverseMatrix();
  if (name == "sfg_matWorldInverse") return {inverse.begin(), inverse.end()};
  if (name == "sfg_matWorldInverseTranspose") {
    Numbers result(16);
    for (std::size_t i = 0; i < 16; ++i) result[i] = inverse[4 * (i % 4) + i / 4];
    return result;
  }
  if (name == "sfg_eyePosition") return {0, 0, 5};
  if (name == "sfg_time") return {1.25};
  return {};
}

/// The square as a picture, whose lowest row has the lowest v.
SurfaceField squareField(std::function<const Image&(const host::InterfaceOrigin&)> texture) {
  SurfaceField field;
  field.width = field.height = static_cast<std::uint32_t>(kSide);
  field.isSeen = [](std::uint32_t, std::uint32_t) { return true; };
  field.at = [](const std::string& name, std::uint32_t column, std::uint32_t row) {
    return valueAt(name, (column + 0.5) / kSide, (kSide - row - 0.5) / kSide);
  };
  field.state = [](const std::string& name) {
    if (name == "sfg_matWorldViewProj") return Numbers{1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 0, 0.5, 0, 0, 0, 1};
    return stateValue(name);
  };
  field.texture = std::move(texture);
  return field;
}

struct Array {
  std::size_t channels = 0;
  std::vector<float> values;
};

Array readNpy(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (bytes.size() < 10 || !bytes.starts_with("\x93NUMPY"))
    throw std::runtime_error(file.string() + ": no array");
  const std::size_t header =
      static_cast<unsigned char>(bytes[8]) + 256u * static_cast<unsigned char>(bytes[9]);
  Array array;
  array.values.resize((bytes.size() - 10 - header) / sizeof(float));
  std::memcpy(array.values.data(), bytes.data() + 10 + header, array.values.size() * sizeof(float));
  array.channels = array.values.size() / kCount;
  return array;
}

std::size_t channelsOf(const std::string& type) {
  const char last = type.back();
  return last >= '2' && last <= '4' ? static_cast<std::size_t>(last - '0') : 1;
}

class Runner {
public:
  Runner(fs::path folder, const fs::path& library) : folder_(std::move(folder)) {
    libraries_ = host::LibrarySet::load({{library, library / "materialx"}, {library, library / "materialx"}});
  }

  /// The values of all outputs, those of a point behind one another.
  Array run(const std::string& name, const Json& facts) {
    materialx::MaterialDocument document(folder_ / "documents" / (name + ".mtlx"), libraries_, {});
    std::vector<std::pair<std::string, std::size_t>> wanted;
    for (const Json& output : facts.at("outputs")) {
      wanted.emplace_back("graph/" + output.at(0).get<std::string>(),
                          channelsOf(output.at(1).get<std::string>()));
    }
    if (wanted.empty()) wanted.emplace_back("M_out", 4);
    std::vector<std::vector<float>> parts;
    Array result;
    for (const auto& [output, channels] : wanted) {
      parts.push_back(runOutput(document.import(output), channels));
      result.channels += channels;
    }
    for (std::size_t i = 0; i < kCount; ++i) {
      for (std::size_t k = 0; k < parts.size(); ++k) {
        const std::size_t channels = wanted[k].second;
        const auto start = parts[k].begin() + static_cast<std::ptrdiff_t>(i * channels);
        result.values.insert(result.values.end(), start, start + static_cast<std::ptrdiff_t>(channels));
      }
    }
    return result;
  }

private:
  std::vector<float> runOutput(const materialx::ImportedMaterial& material, std::size_t channels) {
    for (const host::Diagnostic& diagnostic : material.diagnostics) {
      if (diagnostic.severity == host::Severity::error) throw std::runtime_error(diagnostic.text);
    }
    host::CollapseOptions options;
    if (material.isLit) options.tool = host::CollapseTool::lightLoop;
    host::Job job(libraries_, host::Document::from(material.graph, material.name), options);
    job.collapse();
    const SurfaceField field = squareField(
        [&](const host::InterfaceOrigin& origin) -> const Image& { return *imageFor(origin, material); });
    return gathered(evaluate(device_, job, field), channels);
  }

  const Image* imageFor(const host::InterfaceOrigin& origin, const materialx::ImportedMaterial& material) {
    for (const materialx::ImportedTexture& texture : material.textures) {
      if (texture.node != origin.owner || texture.input != origin.name) continue;
      const auto [entry, isNew] = images_.try_emplace(texture.isMissing ? texture.node : texture.file);
      if (isNew && !texture.isMissing) entry->second = readPng(texture.file);
      if (isNew && texture.isMissing) {
        entry->second = {1, 1, {}};
        for (const double number : texture.value) entry->second.texels.push_back(static_cast<float>(number));
        entry->second.texels.resize(4, 1.0f);
      }
      return &entry->second;
    }
    throw std::runtime_error("nothing is known of the texture of " + origin.path());
  }

  /// Of a surface the colour comes first, and its coverage last; v grows with the rows of a reference.
  static std::vector<float> gathered(const std::vector<FieldOutput>& outputs, std::size_t channels) {
    std::vector<float> result;
    for (std::size_t i = 0; i < kCount; ++i) {
      const std::size_t place = (kSide - 1 - i / kSide) * kSide + i % kSide;
      std::size_t left = channels;
      for (const FieldOutput& output : outputs) {
        const std::size_t count = std::min<std::size_t>(left, outputs.size() == 1      ? channels
                                                              : output.name == "alpha" ? 1
                                                                                       : 3);
        const float* const values = &output.values[4 * place];
        result.insert(result.end(), values, values + count);
        left -= count;
      }
      result.resize((i + 1) * channels, 1.0f);
    }
    return result;
  }

  fs::path folder_;
  std::shared_ptr<const host::LibrarySet> libraries_;
  render::Device device_;
  std::map<std::string, Image> images_;
};

struct Verdict {
  bool isRight = false;
  double worst = 0.0;
  double off = 0.0;
};

/// A share of jumping values may differ.
Verdict compared(const Array& result, const Array& reference) {
  Verdict verdict;
  if (result.values.size() != reference.values.size()) return verdict;
  std::size_t off = 0;
  for (std::size_t i = 0; i < result.values.size(); ++i) {
    const double difference =
        std::abs(static_cast<double>(result.values[i]) - static_cast<double>(reference.values[i]));
    if (!(difference <= static_cast<double>(kTolerance))) ++off;
    if (!(difference <= verdict.worst)) verdict.worst = difference;
  }
  verdict.off = static_cast<double>(off) / static_cast<double>(result.values.size());
  verdict.isRight = verdict.off <= kMostOff;
  return verdict;
}

struct Arguments {
  std::vector<std::string> words;
  double least = -1.0;
};

Arguments parse(int argc, char** argv) {
  Arguments arguments;
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--least" && i + 1 < argc) {
      arguments.least = std::stod(argv[++i]);
    } else {
      arguments.words.emplace_back(argv[i]);
    }
  }
  return arguments;
}

int run(const Arguments& arguments) {
  const fs::path folder = arguments.words[0];
  std::ifstream stream(folder / "index.json");
  const Json index = Json::parse(stream);
  Runner runner(folder, arguments.words[1]);
  const std::set<std::string> only(arguments.words.begin() + 2, arguments.words.end());
  std::size_t right = 0;
  std::size_t all = 0;
  std::map<std::string, std::pair<std::size_t, std::size_t>> groups;
  for (const auto& [name, facts] : index.items()) {
    if (!only.empty() && only.count(name) == 0) continue;
    auto& [groupRight, groupAll] = groups[facts.at("group").get<std::string>()];
    ++all;
    ++groupAll;
    try {
      const Verdict verdict =
          compared(runner.run(name, facts), readNpy(folder / "reference" / (name + ".npy")));
      right += verdict.isRight ? 1 : 0;
      groupRight += verdict.isRight ? 1 : 0;
      if (!verdict.isRight) {
        std::cout << name << ": off " << verdict.off << ", by up to " << verdict.worst << "\n";
      }
    } catch (const std::exception& error) {
      std::cout << name << ": " << error.what() << "\n";
    }
  }
  for (const auto& [group, counts] : groups) {
    std::cout << group << ": " << counts.first << " of " << counts.second << "\n";
  }
  const double share = all == 0 ? 0.0 : 100.0 * static_cast<double>(right) / static_cast<double>(all);
  std::cout << "all: " << right << " of " << all << " (" << share << " %)\n";
  return share >= arguments.least ? 0 : 1;
}

}  // namespace
}  // namespace materialx_test

int main(int argc, char** argv) {
  try {
    const materialx_test::Arguments arguments = materialx_test::parse(argc, argv);
    if (arguments.words.size() < 2) {
      std::cerr << "usage: sfg_materialx_nodes FOLDER LIBRARY [NAME]... [--least PERCENT]\n";
      return 2;
    }
    if (!std::filesystem::exists(std::filesystem::path(arguments.words[0]) / "index.json")) {
      std::cout << "skipped: there are no reference documents in " << arguments.words[0] << "\n";
      return 77;
    }
    return materialx_test::run(arguments);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
}

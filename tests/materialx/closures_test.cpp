// Closures of material documents against what physics and their papers ask: no more light leaves than came,
// the same share goes both ways, a thin film has the colours of its interference.

#include <array>
#include <cmath>
#include <complex>
#include <filesystem>
#include <fstream>
#include <numbers>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "sfg/host/document.h"
#include "sfg/host/job.h"
#include "tests/materialx/surface_field.h"

namespace materialx_test {
namespace {

using namespace TolmSDK::Graphics::sfg;
namespace fs = std::filesystem;
using Color = std::array<double, 3>;

constexpr std::uint32_t kSide = 64;

/// What code that sets `result` answers at each point of a square, whose place it reads as `at`. It knows n,
/// x, and `made(light direction)`, a light of colour 1.
class Closures : public testing::Test {
public:
  static void SetUpTestSuite() { device_ = new render::Device; }
  static void TearDownTestSuite() {
    delete device_;
    device_ = nullptr;
  }

  std::vector<Color> run(const std::string& code) const {
    const std::string text = "void probe(out float3 result)\n{\n"
                             "  float2 at = sfg_texCoord0;\n"
                             "  float3 n = float3(0.0, 0.0, 1.0);\n"
                             "  float3 x = float3(1.0, 0.0, 0.0);\n"
                             "  float3 white = float3(1.0, 1.0, 1.0);\n"
                             "  sfg_Light light;\n"
                             "  light.distance = 1.0;\n"
                             "  light.color = white;\n"
                             "  light.skyColor = light.groundColor = float3(0.0, 0.0, 0.0);\n"
                             "  light.mirrorColor = light.mirrorBlurred = float3(0.0, 0.0, 0.0);\n"
                             "  light.mirrorShare = 0.0;\n" +
                             code + "}\n";
    return valuesOf(text);
  }

  /// The share of light from all directions above (or around, with sphere) that goes to an eye at that
  /// cosine.
  Color albedo(const std::string& bsdf, double cosine, bool isSphere = false) const {
    const std::string sine = std::to_string(std::sqrt(1.0 - cosine * cosine));
    const std::vector<Color> values =
        run("  float up = " + std::string(isSphere ? "2.0 * at.y - 1.0" : "at.y") + ";\n" +
            "  float side = sqrt(1.0 - up * up);\n"
            "  float3 v = float3(" +
            sine + ", 0.0, " + std::to_string(cosine) +
            ");\n"
            "  light.direction = float3(side * cos(SFG_TWO_PI * at.x), side * sin(SFG_TWO_PI * at.x), up);\n"
            "  result = (" +
            bsdf + ").response;\n");
    Color sum{};
    for (const Color& value : values) {
      for (std::size_t i = 0; i < 3; ++i) sum[i] += value[i];
    }
    const double each = (isSphere ? 4.0 : 2.0) * std::numbers::pi / static_cast<double>(values.size());
    for (double& part : sum) part *= each;
    return sum;
  }

private:
  static std::vector<Color> valuesOf(const std::string& code) {
    const fs::path folder = fs::temp_directory_path() / ("sfg_closures_" + std::to_string(std::rand()));
    fs::create_directories(folder);
    nlohmann::json lines = nlohmann::json::array();
    std::istringstream stream(code);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    const nlohmann::json library = {{"probe",
                                     {{"language", {"dx11"}},
                                      {"includes", {"sfg_mtlx_bsdf.h", "sfg_mtlx_hair.h"}},
                                      {"implementation", lines}}}};
    std::ofstream(folder / "probe.fraglib") << library.dump();
    const fs::path root = SFG_REPOSITORY;
    const auto libraries = host::LibrarySet::load({{folder}, {root / "library", root / "library/materialx"}});
    host::Job job(libraries,
                  host::Document::fromText(
                      R"({ "nodes": [ { "name": "p", "fragment": "probe" } ], "outputs": [ { "name":
"out_", "type": "float3", "node": "p", "output": "result" } ] })",
                      "probe.json"));
    job.collapse();
    const std::vector<FieldOutput> outputs = evaluate(*device_, job, square());
    fs::remove_all(folder);
    std::vector<Color> values;
    for (std::size_t at = 0; at < outputs.front().values.size(); at += 4) {
      const float* const numbers = &outputs.front().values[at];
      values.push_back({numbers[0], numbers[1], numbers[2]});
    }
    return values;
  }

  static SurfaceField square() {
    SurfaceField field;
    field.width = field.height = kSide;
    field.isSeen = [](std::uint32_t, std::uint32_t) { return true; };
    // The include files name derivatives over the screen, so that this is drawn.
    field.at = [](const std::string& name, std::uint32_t column, std::uint32_t row) {
      const double u = (column + 0.5) / kSide;
      const double v = (row + 0.5) / kSide;
      return name.ends_with("Position") ? Numbers{2.0 * u - 1.0, 2.0 * v - 1.0, 0.0} : Numbers{u, v};
    };
    field.state = [](const std::string& name) {
      return name == "sfg_matWorldViewProj" ? Numbers{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0.5, 0, 0, 0, 1}
                                            : Numbers{};
    };
    return field;
  }

  inline static render::Device* device_ = nullptr;
};

constexpr double kCosines[] = {0.15, 0.4, 0.7, 0.95};

std::string facets(const std::string& fresnel, const std::string& width) {
  return "sfg_mtlxFacets(light, n, x, v, " + fresnel + ", " + width + ", white, 1.0, false)";
}

TEST_F(Closures, SendNoMoreLightThanCame) {
  const std::string mirror = "sfg_mtlxFresnelOfSchlick(white, white, white, 5.0, 0.0, 1.5)";
  const std::string glass = "sfg_mtlxFresnelOfDielectric(1.5, 0.0, 1.5)";
  const std::string film = "sfg_mtlxFresnelOfDielectric(1.5, 400.0, 1.3)";
  const std::string rough = "sfg_mtlxDiffuse(light, n, v, white, 1.0, 1.0, true)";
  struct Case {
    std::string bsdf;
    double most = 1.01;
  };
  // What facets lose is a fit that is off by up to 1.5 %.
  constexpr double kFitted = 1.02;
  const Case cases[] = {
      {"sfg_mtlxDiffuse(light, n, v, white, 0.0, 1.0, false)"},
      {"sfg_mtlxDiffuse(light, n, v, white, 1.0, 1.0, false)"},
      {rough},
      {"sfg_mtlxSheen(light, n, v, white, 0.3, 1.0, 0)"},
      {"sfg_mtlxSheen(light, n, v, white, 0.9, 1.0, 1)"},
      {facets(mirror, "float2(0.3, 0.3)")},
      {facets(mirror, "float2(0.5, 0.5)")},
      {facets(mirror, "float2(1.0, 1.0)"), kFitted},
      {facets(glass, "float2(0.5, 0.5)")},
      {"sfg_mtlxLayer(" + facets(glass, "float2(0.3, 0.3)") + ", " + rough + ")", kFitted},
      {"sfg_mtlxLayer(" + facets(film, "float2(0.3, 0.3)") + ", " + rough + ")", kFitted},
      {"sfg_mtlxLayer(sfg_mtlxSheen(light, n, v, white, 0.5, 1.0, 1), " + rough + ")"},
  };
  for (const Case& each : cases) {
    for (const double cosine : kCosines) {
      const double share = albedo(each.bsdf, cosine)[1];
      EXPECT_LE(share, each.most) << each.bsdf << " at " << cosine;
      EXPECT_GT(share, 0.005) << each.bsdf << " at " << cosine;
    }
  }
}

TEST_F(Closures, RoughDiffuseSendsAllOfWhiteLight) {
  for (const char* const roughness : {"0.0", "0.5", "1.0"}) {
    for (const double cosine : kCosines) {
      const Color share =
          albedo(std::string("sfg_mtlxDiffuse(light, n, v, white, ") + roughness + ", 1.0, true)", cosine);
      EXPECT_NEAR(share[0], 1.0, 0.01) << roughness << " at " << cosine;
    }
  }
}

/// Each fit of an albedo, with which layers below are dimmed, is that of the lobe.
TEST_F(Closures, ThroughputIsWhatTheSheenOfFibresLeaves) {
  for (const char* const roughness : {"0.2", "0.5", "1.0"}) {
    const std::string bsdf = std::string("sfg_mtlxSheen(light, n, v, white, ") + roughness + ", 1.0, 1)";
    for (const double cosine : kCosines) {
      const Color share = albedo(bsdf, cosine);
      const Color left =
          albedo("sfg_mtlxBsdf(" + bsdf + ".throughput, white)", cosine);  // the same everywhere
      EXPECT_NEAR(share[0] + left[0] / (2.0 * std::numbers::pi), 1.0, 0.01) << roughness << " at " << cosine;
    }
  }
}

/// Without absorption all of it leaves again, and 1 / pi of that is taken as the surface's.
TEST_F(Closures, HairWithoutAbsorptionLosesNothing) {
  for (const double cosine : kCosines) {
    for (const char* const along : {"x", "float3(0.0, 1.0, 0.0)"}) {
      const Color share = albedo(std::string("sfg_mtlxHair(light, n, ") + along +
                                     ", v, white, white, white, 1.55, float2(0.3, 0.6), float2(0.3, 0.6), "
                                     "float2(0.4, 0.6), 0.5, float3(0.0, 0.0, 0.0))",
                                 cosine, true);
      EXPECT_NEAR(share[0] * std::numbers::pi, 1.0, 0.01) << along << " at " << cosine;
    }
  }
}

TEST_F(Closures, SendTheSameShareBothWays) {
  for (const std::string bsdf : {"sfg_mtlxDiffuse(light, n, v, white * 0.6, 0.7, 1.0, false)",
                                 "sfg_mtlxDiffuse(light, n, v, white * 0.6, 0.7, 1.0, true)",
                                 "sfg_mtlxBurley(light, n, v, white * 0.6, 0.7, 1.0)",
                                 "sfg_mtlxSheen(light, n, v, white, 0.4, 1.0, 0)"}) {
    const std::vector<Color> values =
        run("  float3 a = normalize(float3(at.x - 0.5, at.y - 0.5, 0.1 + at.x));\n"
            "  float3 v = normalize(float3(0.4 - at.y, frac(7.3 * at.x) - 0.5, 0.1 + frac(5.1 * at.y)));\n"
            "  float3 b = v;\n"
            "  light.direction = a;\n"
            "  float there = (" +
            bsdf +
            ").response.x / a.z;\n"
            "  light.direction = b;\n"
            "  v = a;\n"
            "  float back = (" +
            bsdf +
            ").response.x / b.z;\n"
            "  result = float3(there, back, 0.0);\n");
    double worst = 0.0;
    double mean = 0.0;
    for (const Color& value : values) {
      worst = std::max(worst, std::abs(value[0] - value[1]));
      mean += value[0] / static_cast<double>(values.size());
    }
    EXPECT_LT(worst, 1e-4) << bsdf;
    EXPECT_GT(mean, 0.01) << bsdf;
  }
}

// --- thin films, wavelength by wavelength

using Complex = std::complex<double>;

double bell(double x, double middle, double left, double right) {
  const double away = (x - middle) / (x < middle ? left : right);
  return std::exp(-0.5 * away * away);
}

/// Sensitivity of the eye at a wavelength in nanometres (fits of Wyman, Sloan and Shirley 2013).
Color sensitivity(double w) {
  return {1.056 * bell(w, 599.8, 37.9, 31.0) + 0.362 * bell(w, 442.0, 16.0, 26.7) -
              0.065 * bell(w, 501.1, 20.4, 26.2),
          0.821 * bell(w, 568.8, 46.9, 40.5) + 0.286 * bell(w, 530.9, 16.3, 31.1),
          1.217 * bell(w, 437.0, 11.8, 36.0) + 0.681 * bell(w, 459.0, 26.0, 13.8)};
}

/// Reflectance of a film over a dielectric at one wavelength, by summed amplitudes.
double filmAt(double wavelength, double cosine, double film, double base, double thickness) {
  const double sine2 = 1.0 - cosine * cosine;
  const double inFilm = std::sqrt(1.0 - sine2 / (film * film));
  const double inBase = std::sqrt(1.0 - sine2 / (base * base));
  const Complex turn =
      std::exp(Complex(0.0, 4.0 * std::numbers::pi * film * thickness * inFilm / wavelength));
  const double s12 = (cosine - film * inFilm) / (cosine + film * inFilm);
  const double s23 = (film * inFilm - base * inBase) / (film * inFilm + base * inBase);
  const double p12 = (film * cosine - inFilm) / (film * cosine + inFilm);
  const double p23 = (base * inFilm - film * inBase) / (base * inFilm + film * inBase);
  return 0.5 * (std::norm((s12 + s23 * turn) / (1.0 + s12 * s23 * turn)) +
                std::norm((p12 + p23 * turn) / (1.0 + p12 * p23 * turn)));
}

/// As XYZ, each as a share of white's.
Color filmColor(double cosine, double film, double base, double thickness) {
  Color sum{};
  Color whole{};
  for (double wavelength = 380.0; wavelength <= 780.0; wavelength += 2.0) {
    const Color eye = sensitivity(wavelength);
    const double reflected = filmAt(wavelength, cosine, film, base, thickness);
    for (std::size_t i = 0; i < 3; ++i) {
      sum[i] += eye[i] * reflected;
      whole[i] += eye[i];
    }
  }
  for (std::size_t i = 0; i < 3; ++i) sum[i] /= whole[i];
  return sum;
}

/// XYZ of a colour whose white has three equal parts: the inverse of the shader's matrix, CIE RGB of 1931.
Color xyzOf(const Color& c) {
  return {0.49 * c[0] + 0.31 * c[1] + 0.2 * c[2], 0.17697 * c[0] + 0.8124 * c[1] + 0.01063 * c[2],
          0.01 * c[1] + 0.99 * c[2]};
}

TEST_F(Closures, FilmsHaveTheColoursOfTheirInterference) {
  struct Film {
    double index;
    double base;
  };
  for (const Film& film : {Film{1.33, 1.5}, Film{2.0, 1.5}, Film{1.5, 1.8}}) {
    const std::vector<Color> values =
        run("  result = sfg_mtlxFresnel(at.y, sfg_mtlxFresnelOfDielectric(" + std::to_string(film.base) +
            ", 1000.0 * at.x, " + std::to_string(film.index) + "));\n");
    double sum = 0.0;
    double spread = 0.0;
    std::size_t count = 0;
    for (std::size_t row = kSide / 3; row < kSide; row += 4) {
      for (std::size_t column = 0; column < kSide; ++column) {
        const Color wanted = filmColor((static_cast<double>(row) + 0.5) / kSide, film.index, film.base,
                                       1000.0 * (static_cast<double>(column) + 0.5) / kSide);
        const Color given = xyzOf(values[row * kSide + column]);
        for (std::size_t i = 0; i < 3; ++i) {
          sum += (given[i] - wanted[i]) * (given[i] - wanted[i]);
          spread += wanted[i] * wanted[i];
          ++count;
        }
      }
    }
    const double error = std::sqrt(sum / static_cast<double>(count));
    EXPECT_LT(error, 0.1 * std::sqrt(spread / static_cast<double>(count)))
        << film.index << " on " << film.base;
  }
}

/// Of grey metals: the channels of a coloured one are taken for those of XYZ.
TEST_F(Closures, AFilmOfNoIndexIsNone) {
  for (const std::string base :
       {"sfg_mtlxFresnelOfDielectric(1.5, ",
        "sfg_mtlxFresnelOfConductor(float3(0.9, 0.9, 0.9), float3(2.4, 2.4, 2.4), "}) {
    const std::vector<Color> values =
        run("  float3 bare = sfg_mtlxFresnel(at.y, " + base + "0.0, 1.0));\n" +
            "  result = sfg_mtlxFresnel(at.y, " + base + "1000.0 * at.x + 1.0, 1.0)) - bare;\n");
    for (std::size_t i = kSide * kSide / 6; i < values.size(); ++i) {
      for (const double part : values[i]) ASSERT_NEAR(part, 0.0, 0.01) << base << i;
    }
  }
}

}  // namespace
}  // namespace materialx_test

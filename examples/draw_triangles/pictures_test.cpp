// The pictures that draw_triangles draws, against rays through some pixels. What the scene is, is said here a
// second time: an ellipsoid before an eye.

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numbers>

namespace {

using Vector = std::array<double, 3>;

Vector operator*(const Vector& a, double s) { return {a[0] * s, a[1] * s, a[2] * s}; }
Vector operator+(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector unit(const Vector& a) { return a * (1 / std::sqrt(dot(a, a))); }

/// Around the y axis: x goes to (0.8, 0, -0.6).
Vector turned(const Vector& a) { return {0.8 * a[0] + 0.6 * a[2], a[1], -0.6 * a[0] + 0.8 * a[2]}; }
Vector turnedBack(const Vector& a) { return {0.8 * a[0] - 0.6 * a[2], a[1], 0.6 * a[0] + 0.8 * a[2]}; }
Vector scaledBack(const Vector& a) { return {a[0] / 1.2, a[1] / 0.9, a[2]}; }

/// Where a ray through a pixel meets the sphere.
struct Point {
  bool isHit = false;
  Vector object{};
  Vector world{};
  Vector normal{};
  double u = 0;
  double v = 0;
};

Point pointAt(int x, int y) {
  const Vector eye = {0, 0, 4};
  const Vector ray = {((x + 0.5) / 128 - 1) / 2.5, -((y + 0.5) / 128 - 1) / 2.5, -1};
  const Vector o = scaledBack(turnedBack(eye));
  const Vector d = scaledBack(turnedBack(ray));
  const double a = dot(d, d), b = dot(o, d), c = dot(o, o) - 1;
  Point point;
  const double root = b * b - a * c;
  if (root < 0) return point;
  point.isHit = true;
  const double t = (-b - std::sqrt(root)) / a;
  point.object = o + d * t;
  point.world = eye + ray * t;
  point.normal = unit(turned(scaledBack(point.object)));
  const double around = std::atan2(point.object[0], point.object[2]) / (2 * std::numbers::pi);
  point.u = around < 0 ? around + 1 : around;
  point.v = std::asin(point.object[1]) / std::numbers::pi + 0.5;
  return point;
}

int encoded(double linear) {
  const double value = std::clamp(linear, 0.0, 1.0);
  const double srgb = value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
  return static_cast<int>(std::lround(srgb * 255));
}

class PicturesTest : public testing::Test {
protected:
  PicturesTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_pictures_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~PicturesTest() override { std::filesystem::remove_all(folder_); }
  void SetUp() override {
    // Drivers and their compiler keep some memory to the end, which is no leak of the program.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 0);
    const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
    if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0") GTEST_SKIP();
  }

  std::filesystem::path write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
    return folder_ / name;
  }

  int run(const std::string& library, const std::string& graph, const std::string& scene,
          const std::string& settings) const {
    const std::string command = std::string(SFG_PROGRAM) + " " + library + " " + graph + " " + scene + " " +
                                (folder_ / "picture.png").string() + " " + settings + " > " +
                                (folder_ / "printed").string() + " 2>&1";
    return std::system(command.c_str());
  }
  std::string printed() const {
    std::ifstream file(folder_ / "printed");
    return {std::istreambuf_iterator<char>(file), {}};
  }

  void draw(const std::string& library, const std::string& graph, const std::string& scene,
            const std::string& settings = "") {
    ASSERT_EQ(run(library, graph, scene, settings), 0) << printed();
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&image, (folder_ / "picture.png").c_str()), 0) << image.message;
    image.format = PNG_FORMAT_RGBA;
    ASSERT_EQ(image.width, 256u);
    ASSERT_EQ(image.height, 256u);
    pixels_.resize(PNG_IMAGE_SIZE(image));
    ASSERT_NE(png_image_finish_read(&image, nullptr, pixels_.data(), 0, nullptr), 0) << image.message;
  }

  /// Compares a grid of pixels; those on the silhouette are passed over. Black where nothing is hit.
  void expectPixels(const std::function<Vector(const Point&)>& color, double tolerance) const {
    int hits = 0;
    int misses = 0;
    for (int y = 3; y < 256; y += 10) {
      for (int x = 3; x < 256; x += 10) {
        const Point point = pointAt(x, y);
        const bool isEdge = pointAt(x - 2, y).isHit != pointAt(x + 2, y).isHit ||
                            pointAt(x, y - 2).isHit != pointAt(x, y + 2).isHit;
        if (isEdge) continue;
        (point.isHit ? hits : misses)++;
        const Vector linear = point.isHit ? color(point) : Vector{0, 0, 0};
        for (std::size_t i = 0; i < 3; ++i) {
          const auto at = (static_cast<std::size_t>(y) * 256 + static_cast<std::size_t>(x)) * 4 + i;
          EXPECT_NEAR(pixels_[at], encoded(linear[i]), point.isHit ? tolerance : 0)
              << "pixel " << x << ", " << y << ", channel " << i;
        }
      }
    }
    EXPECT_GT(hits, 150);
    EXPECT_GT(misses, 150);
  }

  std::filesystem::path folder_;
  std::vector<std::uint8_t> pixels_;
};

constexpr const char* kProbe = R"json({ "nodes": [ { "name": "probe", "fragment": "probe" } ],
  "outputs": [ { "name": "color", "type": "float4", "node": "probe" } ] })json";

std::string probe(const std::string& expression) {
  return "{ \"probe\": { \"language\": [\"dx11\"], \"implementation\": [ \"void probe(out float4 result)\", "
         "\"{\", \"result = float4(" +
         expression + ", 1.0);\", \"}\" ] } }";
}

TEST_F(PicturesTest, ShowsNormalsAndTextureCoordinatesOfTheSphere) {
  const std::string graph = write("graph.json", kProbe).string();
  write("probe.fraglib", probe("normalize(sfg_worldNormal) * 0.5 + 0.5"));
  draw(folder_.string(), graph, "examples/environments/no_lights.json");
  expectPixels([](const Point& p) { return p.normal * 0.5 + Vector{0.5, 0.5, 0.5}; }, 2);

  write("probe.fraglib", probe("sfg_texCoord0 * 0.5 + 0.25, sfg_worldPosition.x * 0.25 + 0.5"));
  draw(folder_.string(), graph, "examples/environments/no_lights.json");
  expectPixels(
      [](const Point& p) {
        return Vector{p.u * 0.5 + 0.25, p.v * 0.5 + 0.25, p.world[0] * 0.25 + 0.5};
      },
      2);

  write("probe.fraglib", probe("mul(sfg_matWorldInverse, float4(sfg_worldPosition, 1.0)).xyz * 0.5 + 0.5"));
  draw(folder_.string(), graph, "examples/environments/no_lights.json");
  expectPixels([](const Point& p) { return p.object * 0.5 + Vector{0.5, 0.5, 0.5}; }, 2);
}

/// Light reflected in all directions alike: albedo times the cosine, where the irradiance is pi.
TEST_F(PicturesTest, ShowsALitSurface) {
  const std::string graph =
      write("graph.json",
            R"json({ "nodes": [ { "name": "surface", "fragment": "lambertSurface", "inputs": {
      "albedo": { "value": [0.8, 0.5, 0.2] } } }, { "name": "pixel", "fragment": "outputColor", "inputs": {
      "color": { "node": "surface" } } } ],
    "outputs": [ { "name": "color", "type": "float4", "node": "pixel" } ] })json")
          .string();
  const auto lambert = [](const Vector& albedo, const Vector& toLight) {
    return [=](const Point& p) { return albedo * std::max(0.0, dot(p.normal, unit(toLight))); };
  };
  draw("library", graph, "examples/environments/sun.json");
  expectPixels(lambert({0.8, 0.5, 0.2}, {0.4, 0.8, 0.4472136}), 5);

  // Other values, without another shader.
  draw("library", graph, "examples/environments/sun.json",
       "surface.albedo=0.2,0.9,0.4 sun.light_axis=0,0,-1");
  expectPixels(lambert({0.2, 0.9, 0.4}, {0, 0, 1}), 5);
}

TEST_F(PicturesTest, RefusesWhatItCannotFeed) {
  EXPECT_NE(run("library", "examples/materials/textured.json", "examples/environments/sun.json", ""), 0);
  EXPECT_EQ(printed(), "error: this program binds no textures\n");
  const std::string graph = write("graph.json", R"json({ "inputs": [ { "name": "heat", "type": "float3" } ],
    "nodes": [ { "name": "pixel", "fragment": "outputColor", "inputs": { "color": { "graphInput": "heat" } } } ],
    "outputs": [ { "name": "color", "type": "float4", "node": "pixel" } ] })json")
                                .string();
  EXPECT_NE(run("library", graph, "examples/environments/no_lights.json", ""), 0);
  EXPECT_EQ(printed(), "error: the sphere has no `heat`\n");
  const std::string probed = write("probe.json", kProbe).string();
  write("probe.fraglib", probe("sfg_matProj[0].xyz"));
  EXPECT_NE(run(folder_.string(), probed, "examples/environments/no_lights.json", ""), 0);
  EXPECT_EQ(printed(), "error: the scene has no `sfg_matProj`\n");
  EXPECT_NE(run("", "", "", ""), 0);
  EXPECT_EQ(printed(), "error: needs LIBRARY GRAPH ENVIRONMENT PICTURE.png [node.input=1,2,3]...\n");
}

}  // namespace

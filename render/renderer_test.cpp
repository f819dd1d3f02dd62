// One triangle, drawn with the vertex and the pixel stage of a fragment that shows a state variable, against
// what that is by hand.

#include "renderer.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "sfg/host/compile.h"
#include "sfg/host/job.h"

namespace render {
namespace {

namespace host = TolmSDK::Graphics::sfg::host;
using Numbers = std::vector<double>;

/// What the pixel in the middle shows of an expression over state variables, with these matrices.
class RendererTest : public testing::Test {
protected:
  RendererTest() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_render_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~RendererTest() override { std::filesystem::remove_all(folder_); }
  void SetUp() override {
    const char* const skip = std::getenv("SFG_SKIP_VULKAN_TESTS");
    if (skip != nullptr && *skip != '\0' && std::string_view(skip) != "0") GTEST_SKIP();
  }

  /// Three numbers from -1 to 1.
  std::array<double, 3> show(const std::string& expression, const std::map<std::string, Numbers>& state) {
    std::ofstream(folder_ / "probe.fraglib")
        << R"json({ "probe": { "language": ["dx11"], "implementation": [ "void probe(out float4 result)", "{", )json"
        << "\"result = float4((" << expression << ") * 0.5 + 0.5, 1.0);\", \"}\" ] } }";
    host::Graph graph;
    graph.nodes = {{"probe", "probe", {}, {}}};
    host::Parameter color;
    color.name = "color";
    color.type = "float4";
    graph.outputs = {{color, {"probe", ""}}};
    host::Job job(host::LibrarySet::load({{folder_}, {folder_}}), host::Document::from(graph));
    job.collapse();

    Triangles triangles;
    triangles.vertices = 3;
    triangles.pixelStage = host::compileToSpirv(job.assemble(host::ShaderStage::pixel));
    triangles.vertexStage = host::compileToSpirv(job.assemble(host::ShaderStage::vertex));
    for (const host::ShaderStage stage : {host::ShaderStage::pixel, host::ShaderStage::vertex}) {
      const host::ShaderInterface told = host::interfaceFor(job.reflect(stage), host::ShaderTarget::spirv);
      for (const host::InterfaceBuffer& buffer : told.buffers) {
        std::vector<host::ValueSetting> settings;
        for (const host::InterfaceMember& member : buffer.members) {
          settings.push_back({member.name, state.at(member.name)});
        }
        triangles.uniforms[static_cast<std::uint32_t>(*buffer.place.binding)] =
            host::packBuffer(buffer, settings);
      }
      if (stage != host::ShaderStage::vertex) continue;
      for (const host::InterfaceAttribute& attribute : told.attributes) {
        triangles.attributes[static_cast<std::uint32_t>(*attribute.location)] = valuesOf(attribute);
      }
    }
    const std::vector<std::byte> picture = draw(device(), triangles, {65, 65});
    std::array<double, 3> shown{};
    for (std::size_t i = 0; i < 3; ++i) shown[i] = linear(picture[(65 * 32 + 32) * 4 + i]) * 2 - 1;
    return shown;
  }

  void expectShown(const std::string& expression, const std::map<std::string, Numbers>& state,
                   const std::array<double, 3>& expected) {
    const std::array<double, 3> shown = show(expression, state);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(shown[i], expected[i], 0.012) << expression << ", " << i;
  }

  double handedness = 1;

private:
  /// Kept to the end of the program: a leak checker names no driver that is unloaded.
  static const Device& device() {
    static const Device* const made = new Device();
    return *made;
  }

  /// All corners are alike but for their positions, whose middle is near (0.1, 0, 0.5).
  std::vector<float> valuesOf(const host::InterfaceAttribute& attribute) const {
    if (attribute.origin.name == "position") return {-2.9f, -3, 0.5f, 3.1f, -3, 0.5f, 0.1f, 3, 0.5f};
    const std::map<std::string, Numbers> parts = {
        {"normal", {0, 0.6, 0.8}},      {"tangent", {1, 0, 0, handedness}}, {"texCoord0", {0.1, 0.2}},
        {"texCoord1", {0.3, 0.4}},      {"texCoord2", {0.5, 0.6}},          {"texCoord3", {0.7, 0.8}},
        {"color", {0.25, 0.5, 0.75, 1}}};
    std::vector<float> values;
    for (int corner = 0; corner < 3; ++corner) {
      for (const double value : parts.at(attribute.origin.name)) values.push_back(static_cast<float>(value));
    }
    return values;
  }

  static double linear(std::byte byte) {
    const double value = std::to_integer<int>(byte) / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  }

  std::filesystem::path folder_;
};

const Numbers kSame = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// Scales y by two and moves, with what follows from that.
const std::map<std::string, Numbers> kStretched = {
    {"sfg_matWorld", {1, 0, 0, 0.25, 0, 2, 0, -0.125, 0, 0, 1, 0, 0, 0, 0, 1}},
    {"sfg_matWorldInverseTranspose", {1, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0, -0.25, 0.0625, 0, 1}},
    {"sfg_matWorldViewProj", kSame},
    {"sfg_eyePosition", {0.5, 0, 0}},
    {"sfg_viewportSize", {65, 65}}};

/// Mirrors x.
const std::map<std::string, Numbers> kMirrored = {
    {"sfg_matWorld", {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
    {"sfg_matWorldInverseTranspose", {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}},
    {"sfg_matWorldViewProj", kSame}};

TEST_F(RendererTest, ShowsPositions) {
  expectShown("sfg_objectPosition", kStretched, {0, 0, 0.5});
  expectShown("sfg_worldPosition", kStretched, {0.25, -0.125, 0.5});
  expectShown("sfg_viewDirection", kStretched, {-0.25, -0.125, 0.5});
  expectShown("float3(sfg_screenPosition.xy / sfg_viewportSize, sfg_screenPosition.z)", kStretched,
              {0.5, 0.5, 0.5});
}

TEST_F(RendererTest, ShowsNormalsByTheInverseTranspose) {
  expectShown("sfg_objectNormal", kStretched, {0, 0.6, 0.8});
  const double length = std::hypot(0.3, 0.8);
  expectShown("sfg_worldNormal", kStretched, {0, 0.3 / length, 0.8 / length});
}

TEST_F(RendererTest, ShowsTangentSpacesWithTheirHandedness) {
  // normal x tangent = (0, 0.8, -0.6)
  expectShown("sfg_worldTangent", kStretched, {1, 0, 0});
  const double length = std::hypot(1.6, 0.6);
  expectShown("sfg_worldBinormal", kStretched, {0, 1.6 / length, -0.6 / length});
  handedness = -1;
  expectShown("sfg_worldBinormal", kStretched, {0, -1.6 / length, 0.6 / length});
}

TEST_F(RendererTest, MirroringMatricesKeepTheDirectionOfTheTexture) {
  expectShown("sfg_worldTangent", kMirrored, {-1, 0, 0});
  expectShown("sfg_worldBinormal", kMirrored, {0, 0.8, -0.6});
  handedness = -1;
  expectShown("sfg_worldBinormal", kMirrored, {0, -0.8, 0.6});
}

TEST_F(RendererTest, ShowsSetsOfTextureCoordinatesAndColors) {
  expectShown("float3(sfg_texCoord0, sfg_texCoord1.x)", kMirrored, {0.1, 0.2, 0.3});
  expectShown("float3(sfg_texCoord1.y, sfg_texCoord2)", kMirrored, {0.4, 0.5, 0.6});
  expectShown("float3(sfg_texCoord3, 0.0)", kMirrored, {0.7, 0.8, 0});
  expectShown("sfg_vertexColor.xyz", kMirrored, {0.25, 0.5, 0.75});
}

TEST_F(RendererTest, DirectionsOfNoLengthStayZero) {
  std::map<std::string, Numbers> flat = kMirrored;
  flat["sfg_matWorld"] = Numbers(16, 0);
  expectShown("sfg_worldTangent", flat, {0, 0, 0});
}

}  // namespace
}  // namespace render

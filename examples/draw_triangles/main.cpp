// Draws a sphere, as a list of triangles, with a material: a vertex and a pixel stage of one job, fed by what
// the library tells of them. No offset, location or binding is written by hand.
//
//   draw_triangles LIBRARY GRAPH ENVIRONMENT PICTURE.png [node.input=1,2,3]...

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <cmath>
#include <iostream>
#include <numbers>

#include "renderer.h"

namespace host = TolmSDK::Graphics::sfg::host;
using Numbers = std::vector<double>;

namespace {

// The scene: a sphere of radius 1, moved by `kWorld`, before an eye that looks along the negative z axis.
// Matrices are given row by row and multiplied with columns.
constexpr double kEye = 4.0;
constexpr double kCos = 0.8, kSin = 0.6;  // turned around the y axis, and flattened
const Numbers kWorld = {1.2 * kCos, 0, kSin, 0, 0, 0.9, 0, 0, -1.2 * kSin, 0, kCos, 0, 0, 0, 0, 1};
const Numbers kNormals = {kCos / 1.2, 0, kSin, 0, 0, 1 / 0.9, 0, 0, -kSin / 1.2, 0, kCos, 0, 0, 0, 0, 1};
const Numbers kView = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -kEye, 0, 0, 0, 1};
// Depths from 1 to 10 become 0 to 1; y points down in the pictures of Vulkan.
const Numbers kProjection = {2.5, 0, 0, 0, 0, -2.5, 0, 0, 0, 0, -10.0 / 9, -10.0 / 9, 0, 0, -1, 0};

Numbers operator*(const Numbers& a, const Numbers& b) {
  Numbers product(16);
  for (std::size_t i = 0; i < 64; ++i) product[i / 4] += a[i / 16 * 4 + i % 4] * b[i % 4 * 4 + i / 4 % 4];
  return product;
}

constexpr vk::Extent2D kSize(256, 256);
const std::map<std::string, Numbers> kState = {
    {"sfg_matWorld", kWorld},
    {"sfg_matWorldInverse", {kCos / 1.2, 0, -kSin / 1.2, 0, 0, 1 / 0.9, 0, 0, kSin, 0, kCos, 0, 0, 0, 0, 1}},
    {"sfg_matWorldInverseTranspose", kNormals},
    {"sfg_matView", kView},
    {"sfg_matViewInverse", {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, kEye, 0, 0, 0, 1}},
    {"sfg_matWorldViewProj", kProjection* kView* kWorld},
    {"sfg_eyePosition", {0, 0, kEye}},
    {"sfg_viewportSize", {kSize.width, kSize.height}},
    {"sfg_orthographic", {0}},
    {"sfg_time", {0}}};

/// The vertices' parts, by the names that the library tells.
std::map<std::string, std::vector<float>> makeSphere(int rows, int columns) {
  std::map<std::string, std::vector<float>> mesh;
  const auto add = [&mesh](const char* part, const Numbers& values) {
    mesh[part].insert(mesh[part].end(), values.begin(), values.end());
  };
  constexpr int kCorners[6][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};
  for (int i = 0; i < rows * columns * 6; ++i) {
    const double u = static_cast<double>(i / 6 % columns + kCorners[i % 6][0]) / columns;
    const double v = static_cast<double>(i / 6 / columns + kCorners[i % 6][1]) / rows;
    const double around = 2 * std::numbers::pi * u, up = std::numbers::pi * (v - 0.5);
    add("position", {std::cos(up) * std::sin(around), std::sin(up), std::cos(up) * std::cos(around)});
    add("tangent", {std::cos(around), 0, -std::sin(around), 1});
    add("texCoord0", {u, v});
    add("color", {u, v, 1, 1});
  }
  mesh["normal"] = mesh["position"];
  for (const char* part : {"texCoord1", "texCoord2", "texCoord3"}) mesh[part] = mesh["texCoord0"];
  return mesh;
}

/// Adds the bytes of a stage's buffers: state from the scene, everything else as graph and settings say.
void addUniforms(render::Triangles& triangles, const host::ShaderInterface& stage,
                 const std::vector<host::ValueSetting>& changed) {
  if (!stage.textures.empty()) throw std::runtime_error("this program binds no textures");
  for (const host::InterfaceBuffer& buffer : stage.buffers) {
    auto settings = buffer.name == "sfg_Uniforms" ? changed : std::vector<host::ValueSetting>();
    for (const host::InterfaceMember& member : buffer.members) {
      if (member.origin.kind != "stateVariable") continue;
      const auto known = kState.find(member.name);
      if (known == kState.end()) throw std::runtime_error("the scene has no `" + member.name + "`");
      settings.push_back({member.name, known->second});
    }
    triangles.uniforms[static_cast<std::uint32_t>(*buffer.place.binding)] =
        host::packBuffer(buffer, settings);
  }
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc < 5) throw std::runtime_error("needs LIBRARY GRAPH ENVIRONMENT PICTURE.png [node.input=1,2,3]...");
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  host::Job job(host::LibrarySet::load({{argv[1]}, {argv[1]}}), host::Document::fromFile(argv[2]), options,
                host::Document::fromFile(argv[3]));
  job.collapse();
  std::vector<host::ValueSetting> changed;
  for (int i = 5; i < argc; ++i) changed.push_back(host::parseSetting(argv[i]));

  // Both stages, compiled, and what they are to be fed with.
  render::Triangles triangles;
  triangles.vertexStage = host::compileToSpirv(job.assemble(host::ShaderStage::vertex));
  const auto vertex = host::interfaceFor(job.reflect(host::ShaderStage::vertex), host::ShaderTarget::spirv);
  triangles.pixelStage = host::compileToSpirv(job.assemble(host::ShaderStage::pixel));
  const auto pixel = host::interfaceFor(job.reflect(host::ShaderStage::pixel), host::ShaderTarget::spirv);
  addUniforms(triangles, vertex, {});
  addUniforms(triangles, pixel, changed);

  const auto mesh = makeSphere(64, 128);
  triangles.vertices = static_cast<std::uint32_t>(mesh.at("position").size() / 3);
  for (const host::InterfaceAttribute& attribute : vertex.attributes) {
    const auto part = mesh.find(attribute.origin.name);
    if (attribute.origin.kind != "mesh" || part == mesh.end())
      throw std::runtime_error("the sphere has no `" + attribute.origin.name + "`");
    triangles.attributes[static_cast<std::uint32_t>(*attribute.location)] = part->second;
  }

  const render::Device device;
  render::writePng(render::draw(device, triangles, kSize), kSize, argv[4]);
  std::cout << argv[4] << ": " << triangles.vertices / 3 << " triangles on " << device.name() << '\n';
} catch (const std::exception& error) {
  std::cerr << "error: " << error.what() << '\n';
  return 1;
}

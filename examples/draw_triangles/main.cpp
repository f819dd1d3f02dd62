// Draws a sphere, as a list of triangles, with a material: a vertex and a pixel stage of one job, fed by what
// the library tells of them. No offset, location or binding is written by hand.
//
//   draw_triangles LIBRARY GRAPH ENVIRONMENT PICTURE.png [node.input=1,2,3]...

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <cmath>
#include <iostream>
#include <map>
#include <numbers>

#include "renderer.h"

namespace host = TolmSDK::Graphics::sfg::host;

namespace {

using Numbers = std::vector<double>;

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

const std::map<std::string, Numbers> kState = {{"sfg_matWorld", kWorld},
                                               {"sfg_matWorldInverseTranspose", kNormals},
                                               {"sfg_matView", kView},
                                               {"sfg_matWorldView", kView* kWorld},
                                               {"sfg_matViewProj", kProjection* kView},
                                               {"sfg_matWorldViewProj", kProjection* kView* kWorld},
                                               {"sfg_eyePosition", {0, 0, kEye}},
                                               {"sfg_time", {0}}};

/// The parts of the vertices, by the names that the library calls them by.
std::map<std::string, std::vector<float>> makeSphere(int rows, int columns) {
  std::map<std::string, std::vector<float>> mesh;
  const auto add = [&mesh](const char* part, std::initializer_list<double> values) {
    for (const double value : values) mesh[part].push_back(static_cast<float>(value));
  };
  constexpr int kCorners[6][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 1}, {0, 1}};
  for (int i = 0; i < rows * columns * 6; ++i) {
    const double u = static_cast<double>(i / 6 % columns + kCorners[i % 6][0]) / columns;
    const double v = static_cast<double>(i / 6 / columns + kCorners[i % 6][1]) / rows;
    const double around = 2 * std::numbers::pi * u, up = std::numbers::pi * (v - 0.5);
    for (const char* part : {"position", "normal"}) {
      add(part, {std::cos(up) * std::sin(around), std::sin(up), std::cos(up) * std::cos(around)});
    }
    add("tangent", {std::cos(around), 0, -std::sin(around), 1});
    for (const char* part : {"texCoord0", "texCoord1", "texCoord2", "texCoord3"}) add(part, {u, v});
    add("color", {u, v, 1, 1});
  }
  return mesh;
}

/// The bytes of a stage's buffers: state from the scene, everything else as graph and settings say.
void addUniforms(render::Triangles& triangles, const host::ShaderInterface& stage,
                 const std::vector<host::ValueSetting>& changed) {
  if (!stage.textures.empty()) throw std::runtime_error("this program binds no textures");
  for (const host::InterfaceBuffer& buffer : stage.buffers) {
    std::vector<host::ValueSetting> settings;
    if (buffer.name == "sfg_Uniforms") settings = changed;
    for (const host::InterfaceMember& member : buffer.members) {
      if (member.origin.kind == "stateVariable") settings.push_back({member.name, kState.at(member.name)});
    }
    triangles.uniforms.push_back(
        {static_cast<std::uint32_t>(*buffer.place.binding), host::packBuffer(buffer, settings)});
  }
}

void run(const std::vector<std::string>& arguments) {
  const auto libraries = host::LibrarySet::load({{arguments[0]}, {arguments[0]}});
  host::CollapseOptions options;
  options.tool = host::CollapseTool::lightLoop;
  host::Job job(libraries, host::Document::fromFile(arguments[1]), options,
                host::Document::fromFile(arguments[2]));
  job.collapse();
  std::vector<host::ValueSetting> changed;
  for (std::size_t i = 4; i < arguments.size(); ++i) changed.push_back(host::parseSetting(arguments[i]));

  // Both stages, compiled, and what they are to be fed with.
  const auto reflect = [&job](host::ShaderStage stage) {
    return host::interfaceFor(job.reflect(stage, host::NameStyle::readable), host::ShaderTarget::spirv);
  };
  const auto compile = [&job](host::ShaderStage stage) {
    return host::compileToSpirv(job.assemble(stage, host::NameStyle::readable));
  };
  render::Triangles triangles;
  triangles.vertexStage = compile(host::ShaderStage::vertex);
  triangles.pixelStage = compile(host::ShaderStage::pixel);
  addUniforms(triangles, reflect(host::ShaderStage::pixel), changed);
  const host::ShaderInterface vertex = reflect(host::ShaderStage::vertex);
  addUniforms(triangles, vertex, {});

  const auto mesh = makeSphere(64, 128);
  triangles.vertices = static_cast<std::uint32_t>(mesh.at("position").size() / 3);
  for (const host::InterfaceAttribute& attribute : vertex.attributes) {
    const auto part = mesh.find(attribute.origin.name);
    if (attribute.origin.kind != "mesh" || part == mesh.end()) {
      throw std::runtime_error("the sphere has no `" + attribute.origin.name + "`");
    }
    const auto components = static_cast<std::uint32_t>(part->second.size() / triangles.vertices);
    triangles.streams.push_back({static_cast<std::uint32_t>(*attribute.location), components, part->second});
  }
  const render::Device device(vk::QueueFlagBits::eGraphics);
  render::writePng(render::draw(device, triangles, 256, 256), arguments[3]);
  std::cout << arguments[3] << ": " << triangles.vertices / 3 << " triangles on " << device.name() << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::cerr << "usage: draw_triangles LIBRARY GRAPH ENVIRONMENT PICTURE.png [node.input=1,2,3]...\n";
    return 2;
  }
  try {
    run({argv + 1, argv + argc});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
  }
  return 1;
}

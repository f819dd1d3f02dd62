#include "tests/materialx/surface_field.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "sfg/host/compile.h"

namespace materialx_test {

namespace host = TolmSDK::Graphics::sfg::host;

namespace {

struct Stage {
  std::vector<std::uint32_t> module;
  host::ShaderInterface interface;
};

Stage compileStage(const host::Job& job, host::ShaderStage stage) {
  const host::Shader shader = job.assemble(stage, host::NameStyle::readable);
  return {
      host::compileToSpirv(shader),
      host::interfaceFor(job.reflect(stage, host::NameStyle::readable), host::ShaderTarget::spirv),
  };
}

std::vector<std::uint8_t> bytesOf(const host::InterfaceBuffer& buffer, const SurfaceField& field) {
  std::vector<host::ValueSetting> own;
  for (const host::InterfaceMember& member : buffer.members) {
    if (member.origin.kind == "stateVariable") {
      const Numbers numbers = field.state(member.origin.name);
      if (!numbers.empty()) own.push_back({member.name, numbers});
    }
    for (const host::ValueSetting& setting : field.settings) {
      if (member.origin.path() == setting.name) own.push_back({member.name, setting.numbers});
    }
  }
  return host::packBuffer(buffer, own);
}

std::size_t componentsOf(const std::string& type) {
  const char last = type.empty() ? '1' : type.back();
  return last >= '2' && last <= '4' ? static_cast<std::size_t>(last - '0') : 1;
}

/// A triangle around the middle of each seen pixel, and of no other. Its plane goes through the values of the
/// pixels beside and above it in the same block, so that the derivatives within it are their differences.
std::vector<float> valuesOf(const host::InterfaceAttribute& attribute, const SurfaceField& field) {
  constexpr std::array<std::array<double, 2>, 3> kCorners = {{{-0.3, -0.3}, {0.7, -0.3}, {-0.3, 0.7}}};
  const std::size_t components = componentsOf(attribute.type);
  std::vector<float> values;
  for (std::uint32_t row = 0; row < field.height; ++row) {
    for (std::uint32_t column = 0; column < field.width; ++column) {
      if (!field.isSeen(column, row)) continue;
      Numbers here = field.part(attribute.origin.name, column, row);
      Numbers beside = field.part(attribute.origin.name, column ^ 1u, row);
      Numbers above = field.part(attribute.origin.name, column, row ^ 1u);
      for (Numbers* const numbers : {&here, &beside, &above}) numbers->resize(components);
      for (const auto& [x, y] : kCorners) {
        for (std::size_t i = 0; i < components; ++i) {
          values.push_back(
              static_cast<float>(here[i] + x * (beside[i] - here[i]) + y * (above[i] - here[i])));
        }
      }
    }
  }
  return values;
}

std::uint32_t seenPixels(const SurfaceField& field) {
  std::uint32_t count = 0;
  for (std::uint32_t row = 0; row < field.height; ++row) {
    for (std::uint32_t column = 0; column < field.width; ++column) count += field.isSeen(column, row) ? 1 : 0;
  }
  return count;
}

}  // namespace

std::vector<float> evaluate(const render::Device& device, const host::Job& job, const SurfaceField& field) {
  const Stage vertex = compileStage(job, host::ShaderStage::vertex);
  const Stage pixel = compileStage(job, host::ShaderStage::pixel);
  render::Triangles triangles;
  triangles.vertexStage = vertex.module;
  triangles.pixelStage = pixel.module;
  triangles.vertices = 3 * seenPixels(field);
  for (const host::InterfaceAttribute& attribute : vertex.interface.attributes) {
    if (!attribute.location) continue;
    triangles.attributes[static_cast<std::uint32_t>(*attribute.location)] = valuesOf(attribute, field);
  }
  for (const Stage* const stage : {&vertex, &pixel}) {
    for (const host::InterfaceBuffer& buffer : stage->interface.buffers) {
      triangles.uniforms[static_cast<std::uint32_t>(buffer.place.binding.value())] = bytesOf(buffer, field);
    }
  }
  for (const host::InterfaceTexture& texture : pixel.interface.textures) {
    triangles.textures[static_cast<std::uint32_t>(texture.place.binding.value())] =
        field.texture(texture.origin);
  }
  for (const host::InterfaceSampler& sampler : pixel.interface.samplers) {
    triangles.samplers[static_cast<std::uint32_t>(sampler.place.binding.value())] = {};
  }
  render::Drawing drawing(device, triangles, {field.width, field.height}, vk::Format::eR32G32B32A32Sfloat);
  drawing.draw();
  std::vector<float> result(std::size_t{4} * field.width * field.height);
  std::memcpy(result.data(), drawing.colors().data(), result.size() * sizeof(float));
  return result;
}

}  // namespace materialx_test

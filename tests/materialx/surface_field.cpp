#include "tests/materialx/surface_field.h"

#include <algorithm>
#include <array>
#include <bit>
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

std::uint32_t bindingOf(const host::InterfacePlace& place) {
  return static_cast<std::uint32_t>(place.binding.value());
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

bool isWhole(const std::string& type) {
  return type.starts_with("int") || type.starts_with("uint") || type.starts_with("bool");
}

template <class Visit>
void eachSeen(const SurfaceField& field, const Visit& visit) {
  for (std::uint32_t row = 0; row < field.height; ++row) {
    for (std::uint32_t column = 0; column < field.width; ++column) {
      if (field.isSeen(column, row)) visit(column, row);
    }
  }
}

std::size_t seenPixels(const SurfaceField& field) {
  std::size_t count = 0;
  eachSeen(field, [&](std::uint32_t, std::uint32_t) { ++count; });
  return count;
}

// --- by a compute stage

std::vector<float> elementsOf(const host::InterfaceBuffer& buffer, const SurfaceField& field) {
  const std::size_t stride = buffer.size / sizeof(float);
  std::vector<float> elements;
  eachSeen(field, [&](std::uint32_t column, std::uint32_t row) {
    const std::size_t start = elements.size();
    elements.resize(start + stride);
    for (const host::InterfaceMember& member : buffer.members) {
      const Numbers numbers = field.at(member.origin.name, column, row);
      for (std::size_t c = 0; c < numbers.size() && c * sizeof(float) < member.size; ++c) {
        elements[start + member.offset / sizeof(float) + c] =
            isWhole(member.type) ? std::bit_cast<float>(static_cast<std::int32_t>(numbers[c]))
                                 : static_cast<float>(numbers[c]);
      }
    }
  });
  return elements;
}

/// Members are widened to four numbers each.
std::vector<FieldOutput> outputsOf(const host::InterfaceBuffer& buffer, const std::vector<float>& written) {
  std::vector<FieldOutput> outputs;
  const std::size_t stride = buffer.size / sizeof(float);
  for (const host::InterfaceMember& member : buffer.members) {
    FieldOutput& output = outputs.emplace_back();
    output.name = member.origin.name;
    for (std::size_t at = member.offset / sizeof(float); at < written.size(); at += stride) {
      for (std::size_t c = 0; c < 4; ++c) {
        const float value = 4 * c < member.size ? written[at + c] : 0.0f;
        output.values.push_back(isWhole(member.type) ? static_cast<float>(std::bit_cast<std::int32_t>(value))
                                                     : value);
      }
    }
  }
  return outputs;
}

std::vector<FieldOutput> compute(const render::Device& device, const host::Job& job,
                                 const SurfaceField& field) {
  const Stage stage = compileStage(job, host::ShaderStage::compute);
  const std::size_t count = seenPixels(field);
  Resources resources;
  const host::InterfaceBuffer* output = nullptr;
  for (const host::InterfaceBuffer& buffer : stage.interface.buffers) {
    if (buffer.kind == host::InterfaceBuffer::Kind::input) {
      resources.input = bindingOf(buffer.place);
      resources.elements = elementsOf(buffer, field);
    } else if (buffer.kind == host::InterfaceBuffer::Kind::output) {
      resources.output = bindingOf(buffer.place);
      resources.outputSize = count * buffer.size / sizeof(float);
      output = &buffer;
    } else {
      resources.uniforms[bindingOf(buffer.place)] = bytesOf(buffer, field);
    }
  }
  if (output == nullptr) throw std::runtime_error("the graph has no output");
  for (const host::InterfaceTexture& texture : stage.interface.textures) {
    resources.textures[bindingOf(texture.place)] = &field.texture(texture.origin);
  }
  for (const host::InterfaceSampler& sampler : stage.interface.samplers) {
    resources.samplers.push_back(bindingOf(sampler.place));
  }
  const std::size_t group = std::max<std::size_t>(stage.interface.groupSize, 1);
  const auto groups = static_cast<std::uint32_t>((count + group - 1) / group);
  return outputsOf(*output, runCompute(device, stage.module, resources, groups));
}

// --- by a pixel stage

/// The name of what varies that a part of a mesh has the values of.
std::string nameOfPart(const std::string& part) {
  constexpr std::array<std::array<const char*, 2>, 7> kNames = {{{"position", "sfg_objectPosition"},
                                                                 {"normal", "sfg_objectNormal"},
                                                                 {"texCoord0", "sfg_texCoord0"},
                                                                 {"texCoord1", "sfg_texCoord1"},
                                                                 {"texCoord2", "sfg_texCoord2"},
                                                                 {"texCoord3", "sfg_texCoord3"},
                                                                 {"color", "sfg_vertexColor"}}};
  for (const auto& [mesh, state] : kNames) {
    if (part == mesh) return state;
  }
  return part;
}

/// A triangle around the middle of each seen pixel, and of no other. Its plane goes through the values of the
/// pixels beside and above it in the same block, so that the derivatives within it are their differences.
std::vector<float> valuesOf(const host::InterfaceAttribute& attribute, const SurfaceField& field) {
  constexpr std::array<std::array<double, 2>, 3> kCorners = {{{-0.3, -0.3}, {0.7, -0.3}, {-0.3, 0.7}}};
  const std::string name = nameOfPart(attribute.origin.name);
  const std::size_t components = componentsOf(attribute.type);
  std::vector<float> values;
  eachSeen(field, [&](std::uint32_t column, std::uint32_t row) {
    Numbers here = field.at(name, column, row);
    Numbers beside = field.at(name, column ^ 1u, row);
    Numbers above = field.at(name, column, row ^ 1u);
    for (Numbers* const numbers : {&here, &beside, &above}) numbers->resize(components);
    for (const auto& [x, y] : kCorners) {
      for (std::size_t i = 0; i < components; ++i) {
        values.push_back(static_cast<float>(here[i] + x * (beside[i] - here[i]) + y * (above[i] - here[i])));
      }
    }
  });
  return values;
}

FieldOutput draw(const render::Device& device, const host::Job& job, const SurfaceField& field) {
  const Stage vertex = compileStage(job, host::ShaderStage::vertex);
  const Stage pixel = compileStage(job, host::ShaderStage::pixel);
  render::Triangles triangles;
  triangles.vertexStage = vertex.module;
  triangles.pixelStage = pixel.module;
  triangles.vertices = static_cast<std::uint32_t>(3 * seenPixels(field));
  for (const host::InterfaceAttribute& attribute : vertex.interface.attributes) {
    if (!attribute.location) continue;
    triangles.attributes[static_cast<std::uint32_t>(*attribute.location)] = valuesOf(attribute, field);
  }
  for (const Stage* const stage : {&vertex, &pixel}) {
    for (const host::InterfaceBuffer& buffer : stage->interface.buffers) {
      triangles.uniforms[bindingOf(buffer.place)] = bytesOf(buffer, field);
    }
  }
  for (const host::InterfaceTexture& texture : pixel.interface.textures) {
    const Image& image = field.texture(texture.origin);
    render::Texture& made = triangles.textures[bindingOf(texture.place)];
    made.size = vk::Extent3D(image.width, image.height, 1);
    made.levels = {image.texels};
  }
  for (const host::InterfaceSampler& sampler : pixel.interface.samplers) {
    triangles.samplers[bindingOf(sampler.place)] = {};
  }
  if (pixel.interface.renderTargets.empty()) throw std::runtime_error("the graph has no output");
  render::Drawing drawing(device, triangles, {field.width, field.height}, vk::Format::eR32G32B32A32Sfloat);
  drawing.draw();
  std::vector<float> pixels(std::size_t{4} * field.width * field.height);
  std::memcpy(pixels.data(), drawing.colors().data(), pixels.size() * sizeof(float));
  FieldOutput output;
  output.name = pixel.interface.renderTargets.front().origin.name;
  eachSeen(field, [&](std::uint32_t column, std::uint32_t row) {
    const float* const values = &pixels[4 * (std::size_t{row} * field.width + column)];
    output.values.insert(output.values.end(), values, values + 4);
  });
  return output;
}

}  // namespace

std::vector<FieldOutput> evaluate(const render::Device& device, const host::Job& job,
                                  const SurfaceField& field) {
  const host::Shader shader = job.assemble(host::ShaderStage::compute, host::NameStyle::readable);
  const bool isDrawn = shader.text.find("sfg_ddx(") != std::string::npos;
  if (isDrawn) return {draw(device, job, field)};
  return compute(device, job, field);
}

}  // namespace materialx_test

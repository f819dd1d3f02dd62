// The interface of a shader in each target: how the compilers number and name what they make of it.

#include <cstdint>

#include "host/shader/interface_hash.h"
#include "host/shader/interface_names.h"
#include "host/shader/shader_target.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using BufferKind = InterfaceBuffer::Kind;

std::size_t moduleBinding(const InterfacePlace& place) {
  switch (place.kind) {
  case 't': return kFirstTextureBinding + place.number;
  case 's': return kFirstSamplerBinding + place.number;
  case 'u': return kFirstWritableBinding + place.number;
  default: return place.number;
  }
}

template <class Change>
void changePlaces(ShaderInterface& shader, const Change& change) {
  for (InterfaceBuffer& buffer : shader.buffers) change(buffer.place);
  for (InterfaceTexture& texture : shader.textures) change(texture.place);
  for (InterfaceSampler& sampler : shader.samplers) change(sampler.place);
}

/// What the module calls things holds for all that is translated from it.
void nameAsModule(ShaderInterface& shader) {
  const bool isVertex = shader.stage == ShaderStage::vertex;
  for (InterfaceAttribute& attribute : shader.attributes) {
    attribute.name = isVertex ? vertexAttributeName(attribute.name) : attributeName(attribute.name);
    attribute.semantic.clear();
  }
  for (InterfaceAttribute& varying : shader.varyings) {
    varying.name = attributeName(varying.name);
    varying.semantic.clear();
  }
  for (InterfaceRenderTarget& target : shader.renderTargets) target.name = renderTargetName(target.name);
  for (InterfaceBuffer& buffer : shader.buffers) {
    if (buffer.kind == BufferKind::constant) buffer.variable = blockVariable(buffer.name);
  }
}

void toSpirv(ShaderInterface& shader) {
  changePlaces(shader, [](InterfacePlace& place) {
    place.set = 0;
    place.binding = moduleBinding(place);
    place.registerName.clear();
  });
}

/// Registers are those of the assembled text; members of buffers are variables of their own.
void toHlsl(ShaderInterface& shader) {
  shader.entryPoint = "main";
  for (InterfaceBuffer& buffer : shader.buffers) {
    if (buffer.kind != BufferKind::constant) continue;
    for (InterfaceMember& member : buffer.members) member.name = buffer.variable + "_" + member.name;
    buffer.variable.clear();
  }
  for (auto* const list : {&shader.attributes, &shader.varyings}) {
    for (InterfaceAttribute& attribute : *list) {
      attribute.semantic = attribute.location ? "TEXCOORD" + std::to_string(*attribute.location)
                           : attribute.builtin == "frontFacing" ? "SV_IsFrontFace"
                                                                : "SV_Position";
    }
  }
}

/// OpenGL ES has no textures of one dimension.
void toEssl(ShaderInterface& shader) {
  for (InterfaceTexture& texture : shader.textures) {
    if (texture.type == "sampler1D") texture.type = "sampler2D";
  }
}

/// Nothing has a number but render targets and the parts of a vertex.
void bindByName(ShaderInterface& shader) {
  changePlaces(shader, [](InterfacePlace& place) { place.binding.reset(); });
  auto& linked = shader.stage == ShaderStage::vertex ? shader.varyings : shader.attributes;
  for (InterfaceAttribute& attribute : linked) attribute.location.reset();
}

/// Textures and samplers are one; uniform blocks, textures and buffers are numbered apart.
void toGlsl(ShaderInterface& shader) {
  shader.entryPoint = "main";
  shader.samplers.clear();
  for (InterfaceTexture& texture : shader.textures) {
    texture.type.replace(0, texture.type.find_first_not_of("texture"), "sampler");
  }
  changePlaces(shader, [](InterfacePlace& place) {
    place.binding = place.number;
    place.registerName.clear();
  });
  for (InterfaceBuffer& buffer : shader.buffers) {
    if (buffer.kind != BufferKind::constant) buffer.place.binding = moduleBinding(buffer.place);
  }
}

InterfaceBuffer sizesBuffer() {
  InterfaceBuffer buffer;
  buffer.kind = BufferKind::sizes;
  buffer.name = "spvBufferSizeConstants";
  buffer.place.number = kMetalSizesBuffer;
  buffer.place.binding = kMetalSizesBuffer;
  buffer.size = sizeof(std::uint32_t);
  return buffer;
}

std::string metalAttribute(const char* start, const InterfaceAttribute& attribute) {
  return start + std::to_string(*attribute.location) + ")";
}

/// All buffers are numbered together.
void toMsl(ShaderInterface& shader) {
  if (shader.entryPoint == "main") shader.entryPoint = "main0";
  changePlaces(shader, [](InterfacePlace& place) {
    place.binding = place.number;
    place.registerName.clear();
  });
  for (InterfaceBuffer& buffer : shader.buffers) {
    if (buffer.kind == BufferKind::input) buffer.place.binding = kMetalInputBuffer;
    if (buffer.kind == BufferKind::output) buffer.place.binding = kMetalOutputBuffer;
  }
  if (shader.stage == ShaderStage::compute) shader.buffers.push_back(sizesBuffer());
  const bool isVertex = shader.stage == ShaderStage::vertex;
  for (InterfaceAttribute& attribute : shader.attributes) {
    if (attribute.location)
      attribute.semantic = metalAttribute(isVertex ? "attribute(" : "user(locn", attribute);
  }
  for (InterfaceAttribute& varying : shader.varyings) {
    varying.semantic = varying.location ? metalAttribute("user(locn", varying) : "position";
  }
}

/// What else the compiled bytes depend on: nothing where no option is chosen.
std::string keyOf(const CompileOptions& options) {
  std::string key;
  if (options.optimization == Optimization::size) key += "\nsize";
  if (options.optimization == Optimization::none) key += "\nnot optimised";
  if (options.debug) key += "\ndebug";
  return key;
}

}  // namespace

ShaderInterface interfaceFor(const ShaderInterface& assembled, ShaderTarget target,
                             const CompileOptions& options) {
  if (const std::string refusal = refusalOf(assembled.stage, target, options); !refusal.empty()) {
    throw CompileError(refusal, {}, false);
  }
  ShaderInterface shader = assembled;
  shader.target = target;
  shader.version = chosenVersion(target, options);
  nameAsModule(shader);
  switch (target) {
  case ShaderTarget::spirv: toSpirv(shader); break;
  case ShaderTarget::hlsl: toHlsl(shader); break;
  case ShaderTarget::glsl: toGlsl(shader); break;
  case ShaderTarget::essl:
  case ShaderTarget::essl300:
    toGlsl(shader);
    toEssl(shader);
    break;
  case ShaderTarget::msl: toMsl(shader); break;
  }
  if (bindsByName(target, options)) bindByName(shader);
  hashInterface(shader, assembled.hash + keyOf(options));
  return shader;
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/shader/interface_builder.h"

#include "host/shader/number_shape.h"
#include "host/shader/state_meaning.h"
#include "host/shader/structure_layout.h"
#include "tolmsdk/state_variables.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::size_t allocatedSize(std::size_t end) { return (end + kRegister - 1) / kRegister * kRegister; }

const char* kindName(ValueOrigin::Kind kind) {
  switch (kind) {
  case ValueOrigin::Kind::node: return "node";
  case ValueOrigin::Kind::light: return "light";
  case ValueOrigin::Kind::preprocess: return "preprocess";
  case ValueOrigin::Kind::postprocess: return "postprocess";
  case ValueOrigin::Kind::output: return "output";
  case ValueOrigin::Kind::graphUniform: return "graphUniform";
  case ValueOrigin::Kind::graphInput: return "graphInput";
  case ValueOrigin::Kind::stateVariable: return "stateVariable";
  case ValueOrigin::Kind::unknown: break;
  }
  return "";
}

InterfaceOrigin originOf(const ValueOrigin& origin) {
  InterfaceOrigin made{kindName(origin.kind), toUtf8(origin.owner), toUtf8(origin.fragment),
                       toUtf8(origin.name)};
  if (origin.port != nullptr) made.port = *origin.port;
  return made;
}

InterfaceOrigin originOf(const Varying& varying) {
  return {varying.isState ? "stateVariable" : "graphInput", {}, {}, toUtf8(varying.name)};
}

InterfacePlace placeAt(char kind, std::size_t number) {
  InterfacePlace place;
  place.kind = kind;
  place.number = number;
  place.registerName = kind + std::to_string(number);
  return place;
}

const char* textureType(const TypeID& sampler) {
  if (sampler == TypeID_sampler1D) return "texture1D";
  if (sampler == TypeID_sampler2D) return "texture2D";
  if (sampler == TypeID_sampler3D) return "texture3D";
  return "textureCube";
}

InterfaceMember memberOf(const BufferMember& planned) {
  InterfaceMember member;
  member.name = toUtf8(planned.port.name);
  member.type = toUtf8(planned.port.typeText);
  member.offset = planned.offset;
  member.size = planned.size;
  member.matrixStride = isMatrix(planned.port.type) ? kRegister : 0;
  for (std::size_t i = 0; i < planned.value.size(); ++i) member.value.push_back(planned.value.get(i));
  member.origin = originOf(planned.origin);
  return member;
}

InterfaceAttribute attributeOf(const Varying& varying) {
  InterfaceAttribute attribute;
  attribute.name = toUtf8(varying.name);
  attribute.semantic = toUtf8(varying.semantic);
  if (varying.location != kNotFound) attribute.location = varying.location;
  if (varying.semantic == L"SV_Position") attribute.builtin = "fragCoord";
  if (varying.semantic == L"SV_IsFrontFace") attribute.builtin = "frontFacing";
  const TypeID& type = attribute.builtin.empty() ? carrierType(varying.type) : varying.type;
  attribute.type = toUtf8(type.toString());
  attribute.isFlat = attribute.builtin.empty() && isInteger(varying.type);
  attribute.origin = originOf(varying);
  if (varying.isState) {
    const StateMeaning meaning = meaningOf(UString(varying.name));
    attribute.meaning = meaning.text;
    attribute.space = meaning.space;
  }
  return attribute;
}

/// What the pixel stage finds in the pixels of the target leaves the vertices in clip space.
InterfaceAttribute varyingOf(const VertexOutput& output) {
  InterfaceAttribute varying = attributeOf(output.varying);
  if (varying.builtin == "fragCoord") {
    varying.builtin = "position";
    varying.meaning = "position of the point";
    varying.space = "clip";
  }
  return varying;
}

InterfaceAttribute attributeOf(const VertexAttribute& planned) {
  InterfaceAttribute attribute;
  attribute.name = toUtf8(planned.name);
  attribute.semantic = toUtf8(planned.semantic);
  attribute.type = toUtf8(carrierType(planned.type).toString());
  attribute.meaning = planned.meaning;
  attribute.space = planned.space;
  const bool isGraphInput = planned.part.empty();
  attribute.origin.kind = isGraphInput ? "graphInput" : "mesh";
  attribute.origin.name = isGraphInput ? attribute.name : toUtf8(planned.part);
  return attribute;
}

class InterfaceBuilder {
public:
  explicit InterfaceBuilder(const ShaderPlan& plan) : plan_(plan) {}

  ShaderInterface build() {
    shader_.stage = plan_.stage;
    shader_.entryPoint = toUtf8(plan_.entryPoint);
    for (const IncludedText& include : plan_.includes) shader_.includes.push_back(toUtf8(include.name));
    addConstantBuffers();
    addTextures();
    if (plan_.stage == ShaderStage::compute) {
      addElements();
    } else {
      addAttributes();
      addRenderTargets();
    }
    return std::move(shader_);
  }

private:
  void addConstantBuffers() {
    for (const ConstantBuffer& planned : plan_.buffers) {
      InterfaceBuffer buffer;
      buffer.name = toUtf8(planned.name);
      buffer.place = placeAt('b', planned.number);
      for (const BufferMember& member : planned.members) {
        buffer.members.push_back(memberOf(member));
        if (member.port.type == TypeID_nil) buffer.isComplete = layOut(buffer.members.back());
      }
      const InterfaceMember& last = buffer.members.back();
      buffer.size = buffer.isComplete ? allocatedSize(last.offset + last.size) : 0;
      shader_.buffers.push_back(std::move(buffer));
    }
  }

  bool layOut(InterfaceMember& member) {
    if (!structures_) {
      for (const IncludedText& include : plan_.includes) code_ += include.text + L"\n";
      code_ += plan_.predefines;
      structures_.emplace(code_);
    }
    std::optional<StructureLayout> layout = structures_->find(fromUtf8(member.type));
    if (!layout) return false;
    member.size = layout->size;
    member.members = std::move(layout->members);
    return true;
  }

  void addTextures() {
    for (const TexturePair& pair : plan_.textures) {
      const InterfaceOrigin origin = originOf(pair.origin);
      shader_.textures.push_back(
          {toUtf8(pair.texture), textureType(pair.type), placeAt('t', pair.number), origin});
      shader_.samplers.push_back(
          {toUtf8(pair.sampler), toUtf8(pair.texture), placeAt('s', pair.number), origin});
    }
  }

  void addElements() {
    shader_.groupSize = kComputeGroupSize;
    InterfaceBuffer inputs;
    inputs.kind = InterfaceBuffer::Kind::input;
    inputs.name = "sfg_inputs";
    inputs.place = placeAt('t', plan_.textures.size());
    for (const Varying& varying : plan_.varyings) {
      addElement(inputs, varying.name, wideType(varying.type), originOf(varying));
    }
    if (!inputs.members.empty()) shader_.buffers.push_back(std::move(inputs));

    InterfaceBuffer outputs;
    outputs.kind = InterfaceBuffer::Kind::output;
    outputs.name = "sfg_outputs";
    outputs.place = placeAt('u', 0);
    for (const Port& output : plan_.outputs) {
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        addElement(outputs, rowName(output, row), wideType(output.type), outputOrigin(output));
      }
    }
    shader_.buffers.push_back(std::move(outputs));
  }

  static void addElement(InterfaceBuffer& buffer, const WString& name, const TypeID& type,
                         const InterfaceOrigin& origin) {
    InterfaceMember member;
    member.name = toUtf8(name);
    member.type = toUtf8(type.toString());
    member.offset = buffer.size;
    member.size = kRegister;
    member.origin = origin;
    buffer.size += kRegister;
    buffer.members.push_back(std::move(member));
  }

  static InterfaceOrigin outputOrigin(const Port& output) {
    return {"graphOutput", {}, {}, toUtf8(output.name)};
  }

  void addAttributes() {
    for (const Varying& varying : plan_.varyings) shader_.attributes.push_back(attributeOf(varying));
  }

  void addRenderTargets() {
    for (const Port& output : plan_.outputs) {
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        InterfaceRenderTarget target;
        target.name = toUtf8(rowName(output, row));
        target.index = shader_.renderTargets.size();
        target.type = toUtf8(rowType(output.type).toString());
        target.origin = outputOrigin(output);
        if (isMatrix(output.type)) target.row = row;
        shader_.renderTargets.push_back(std::move(target));
      }
    }
  }

  const ShaderPlan& plan_;
  ShaderInterface shader_;
  WString code_;  ///< where structures are declared; read when one is looked for
  std::optional<StructureLayouts> structures_;
};

}  // namespace

ShaderInterface interfaceOf(const ShaderPlan& plan) { return InterfaceBuilder(plan).build(); }

ShaderInterface interfaceOf(const VertexPlan& plan) {
  ShaderInterface shader;
  shader.stage = ShaderStage::vertex;
  shader.entryPoint = "main";
  for (const VertexAttribute& planned : plan.attributes) {
    shader.attributes.push_back(attributeOf(planned));
    shader.attributes.back().location = shader.attributes.size() - 1;
  }
  for (const VertexOutput& output : plan.outputs) shader.varyings.push_back(varyingOf(output));
  for (const ConstantBuffer& planned : plan.buffers) {
    InterfaceBuffer buffer;
    buffer.name = toUtf8(planned.name);
    buffer.place = placeAt('b', planned.number);
    for (const BufferMember& member : planned.members) buffer.members.push_back(memberOf(member));
    buffer.size = allocatedSize(buffer.members.back().offset + buffer.members.back().size);
    shader.buffers.push_back(std::move(buffer));
  }
  return shader;
}

}  // namespace TolmSDK::Graphics::sfg::host

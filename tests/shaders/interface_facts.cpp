#include "tests/shaders/interface_facts.h"

#include <glslang/Include/Types.h>
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <spirv_cross_c.h>

#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>

namespace shaders_test {

namespace {

using namespace sfg::host;

std::string line(const std::string& what, const std::string& name,
                 std::initializer_list<std::pair<const char*, std::string>> values) {
  std::string text = what + " " + name;
  for (const auto& [key, value] : values) {
    if (!value.empty()) text.append(" ").append(key).append("=").append(value);
  }
  return text;
}

std::string number(std::size_t value) { return std::to_string(value); }
std::string unlessZero(std::size_t value) { return value == 0 ? std::string() : number(value); }
std::string optional(const std::optional<std::size_t>& value) { return value ? number(*value) : ""; }

// --- the interface ---

/// Booleans lie in buffers as numbers.
std::string storedType(const std::string& type) { return type == "bool" ? "uint" : type; }

/// Metal widens what would lie closer: columns of two rows, elements of arrays.
std::string metalStoredType(const InterfaceMember& member) {
  static const std::regex kMatrix("float([234])x([234])");
  static const std::regex kShort("(float|u?int)2?");
  const std::string type = storedType(member.type);
  std::smatch match;
  if (std::regex_match(type, match, kMatrix)) {
    return "float" + match[2].str() + "x" + (match[1] == "3" ? "3" : "4");
  }
  return member.arrayLength != 0 && std::regex_match(type, match, kShort) ? match[1].str() + "4" : type;
}

void addMember(Facts& facts, const std::string& path, const InterfaceMember& member, std::size_t base,
               bool isMetal) {
  const std::string name = path + "." + member.name;
  const std::size_t offset = base + member.offset;
  if (member.members.empty()) {
    facts.insert(line("member", name,
                      {{"offset", number(offset)},
                       {"type", isMetal ? metalStoredType(member) : storedType(member.type)},
                       {"size", isMetal ? std::string() : number(member.size)},
                       {"array", unlessZero(member.arrayLength)},
                       {"arrayStride", unlessZero(member.arrayStride)},
                       {"columnStride", unlessZero(member.matrixStride)}}));
  }
  for (const InterfaceMember& part : member.members) addMember(facts, name, part, offset, isMetal);
}

std::string varyingLine(const char* what, const InterfaceAttribute& varying) {
  return line(what, varying.name,
              {{"location", optional(varying.location)},
               {"type", varying.type},
               {"semantic", varying.semantic},
               {"flat", varying.isFlat ? "yes" : ""}});
}

}  // namespace

Facts factsOf(const ShaderInterface& shader) {
  Facts facts;
  const bool isMetal = shader.target == ShaderTarget::msl;
  facts.insert("entry " + shader.entryPoint);
  for (const InterfaceAttribute& attribute : shader.attributes) {
    if (!attribute.isUsed.value()) continue;
    if (attribute.builtin.empty()) {
      facts.insert(varyingLine("in", attribute));
    } else {
      facts.insert("builtin " + attribute.builtin);
    }
  }
  for (const InterfaceAttribute& varying : shader.varyings) {
    if (!varying.isUsed.value()) continue;
    if (varying.builtin.empty()) {
      facts.insert(varyingLine("out", varying));
    } else {
      facts.insert(line("builtin", varying.builtin, {{"semantic", varying.semantic}}));
    }
  }
  for (const InterfaceBuffer& buffer : shader.buffers) {
    if (buffer.kind == InterfaceBuffer::Kind::sizes) {
      facts.insert(line("sizes", buffer.name, {{"binding", optional(buffer.place.binding)}}));
      continue;
    }
    if (!buffer.place.isUsed.value()) continue;
    const bool isConstant = buffer.kind == InterfaceBuffer::Kind::constant;
    const bool isRawBuffer = !isConstant && shader.target == ShaderTarget::hlsl;
    facts.insert(line(isConstant ? "block" : "elements", buffer.name,
                      {{"set", optional(buffer.place.set)},
                       {"binding", optional(buffer.place.binding)},
                       {"register", buffer.place.registerName},
                       {"variable", isConstant ? buffer.variable : ""},
                       {"size", isRawBuffer ? std::string() : number(buffer.size)}}));
    if (isRawBuffer) continue;  // the translation reads such buffers by addresses
    for (const InterfaceMember& member : buffer.members) addMember(facts, buffer.name, member, 0, isMetal);
  }
  for (const InterfaceTexture& texture : shader.textures) {
    if (!texture.place.isUsed.value()) continue;
    facts.insert(line(texture.type, texture.name,
                      {{"set", optional(texture.place.set)},
                       {"binding", optional(texture.place.binding)},
                       {"register", texture.place.registerName}}));
  }
  for (const InterfaceSampler& sampler : shader.samplers) {
    if (!sampler.place.isUsed.value()) continue;
    facts.insert(line("sampler", sampler.name,
                      {{"set", optional(sampler.place.set)},
                       {"binding", optional(sampler.place.binding)},
                       {"register", sampler.place.registerName}}));
  }
  for (const InterfaceRenderTarget& target : shader.renderTargets) {
    facts.insert(line("out", target.name, {{"location", number(target.index)}, {"type", target.type}}));
  }
  return facts;
}

namespace {

// --- modules ---

/// How the numbers of a module read.
struct Reading {
  bool hasSets = false;
  bool hasRegisters = false;  ///< bindings are registers, moved apart
  bool hasVariables = true;   ///< uniform blocks have a variable
  bool hasLocations = true;
};

class ModuleReader {
public:
  ModuleReader(const std::vector<std::uint32_t>& spirv, const Reading& reading) : reading_(reading) {
    spvc_context context = nullptr;
    if (spvc_context_create(&context) != SPVC_SUCCESS) throw std::bad_alloc();
    context_.reset(context);
    spvc_parsed_ir module = nullptr;
    check(spvc_context_parse_spirv(context, spirv.data(), spirv.size(), &module));
    check(spvc_context_create_compiler(context, SPVC_BACKEND_NONE, module, SPVC_CAPTURE_MODE_TAKE_OWNERSHIP,
                                       &compiler_));
    check(spvc_compiler_create_shader_resources(compiler_, &resources_));
  }

  Facts read() {
    const spvc_entry_point* points = nullptr;
    std::size_t count = 0;
    check(spvc_compiler_get_entry_points(compiler_, &points, &count));
    for (std::size_t i = 0; i < count; ++i) facts_.insert(std::string("entry ") + points[i].name);
    for (const auto& block : list(SPVC_RESOURCE_TYPE_UNIFORM_BUFFER)) readBlock(block);
    for (const auto& buffer : list(SPVC_RESOURCE_TYPE_STORAGE_BUFFER)) readElements(buffer);
    for (const auto& image : list(SPVC_RESOURCE_TYPE_SEPARATE_IMAGE)) readImage(image, "texture");
    for (const auto& image : list(SPVC_RESOURCE_TYPE_SAMPLED_IMAGE)) readImage(image, "sampler");
    for (const auto& sampler : list(SPVC_RESOURCE_TYPE_SEPARATE_SAMPLERS)) {
      facts_.insert("sampler " + nameOf(sampler.id) + placeOf(sampler.id, 's'));
    }
    if (reading_.hasLocations) {
      for (const auto& input : list(SPVC_RESOURCE_TYPE_STAGE_INPUT)) readVarying(input, "in");
      for (const auto& output : list(SPVC_RESOURCE_TYPE_STAGE_OUTPUT)) readVarying(output, "out");
    }
    readBuiltins();
    return std::move(facts_);
  }

private:
  struct DestroyContext {
    void operator()(spvc_context context) const { spvc_context_destroy(context); }
  };

  void check(spvc_result result) const {
    if (result != SPVC_SUCCESS) throw std::runtime_error(spvc_context_get_last_error_string(context_.get()));
  }

  std::vector<spvc_reflected_resource> list(spvc_resource_type kind) const {
    const spvc_reflected_resource* first = nullptr;
    std::size_t count = 0;
    check(spvc_resources_get_resource_list_for_type(resources_, kind, &first, &count));
    return {first, first + count};
  }

  std::string nameOf(SpvId id) const { return spvc_compiler_get_name(compiler_, id); }
  unsigned decoration(SpvId id, SpvDecoration kind) const {
    return spvc_compiler_get_decoration(compiler_, id, kind);
  }

  std::string placeOf(SpvId id, char kind) const {
    unsigned binding = decoration(id, SpvDecorationBinding);
    if (reading_.hasRegisters) {
      const std::map<char, unsigned> first = {{'b', 0}, {'t', 16}, {'s', 48}, {'u', 80}};
      return " register=" + (kind + number(binding - first.at(kind)));
    }
    return (reading_.hasSets ? " set=" + number(decoration(id, SpvDecorationDescriptorSet)) : "") +
           " binding=" + number(binding);
  }

  void readBlock(const spvc_reflected_resource& block) {
    const std::string name = nameOf(block.base_type_id);
    const spvc_type type = spvc_compiler_get_type_handle(compiler_, block.base_type_id);
    std::size_t size = 0;
    check(spvc_compiler_get_declared_struct_size(compiler_, type, &size));
    facts_.insert("block " + name + placeOf(block.id, 'b') +
                  (reading_.hasVariables ? " variable=" + nameOf(block.id) : "") +
                  " size=" + number((size + 15) / 16 * 16));
    readMembers(name, block.base_type_id, 0);
  }

  /// A buffer whose only member is an array of elements.
  void readElements(const spvc_reflected_resource& buffer) {
    const std::string name = nameOf(buffer.base_type_id);
    const bool isReadOnly =
        spvc_compiler_has_decoration(compiler_, buffer.id, SpvDecorationNonWritable) == SPVC_TRUE ||
        isReadOnlyBlock(buffer.base_type_id);
    const char kind = isReadOnly ? 't' : 'u';
    const spvc_type type = spvc_compiler_get_type_handle(compiler_, buffer.base_type_id);
    unsigned stride = 0;
    check(spvc_compiler_type_struct_member_array_stride(compiler_, type, 0, &stride));
    if (reading_.hasRegisters) {
      facts_.insert("elements " + name + placeOf(buffer.id, kind));
      return;
    }
    facts_.insert("elements " + name + placeOf(buffer.id, kind) + " size=" + number(stride));
    const SpvId element = spvc_type_get_member_type(type, 0);
    readMembers(name, spvc_type_get_base_type_id(spvc_compiler_get_type_handle(compiler_, element)), 0);
  }

  bool isReadOnlyBlock(SpvId type) const {
    return spvc_compiler_has_member_decoration(compiler_, type, 0, SpvDecorationNonWritable) == SPVC_TRUE;
  }

  void readMembers(const std::string& path, SpvId typeId, std::size_t base) {
    const spvc_type type = spvc_compiler_get_type_handle(compiler_, typeId);
    for (unsigned i = 0; i < spvc_type_get_num_member_types(type); ++i) {
      const SpvId memberId = spvc_type_get_member_type(type, i);
      const spvc_type member = spvc_compiler_get_type_handle(compiler_, memberId);
      const std::string name = path + "." + spvc_compiler_get_member_name(compiler_, typeId, i);
      unsigned offset = 0;
      check(spvc_compiler_type_struct_member_offset(compiler_, type, i, &offset));
      if (spvc_type_get_basetype(member) == SPVC_BASETYPE_STRUCT) {
        readMembers(name, spvc_type_get_base_type_id(member), base + offset);
        continue;
      }
      std::size_t size = 0;
      check(spvc_compiler_get_declared_struct_member_size(compiler_, type, i, &size));
      std::string text = "member " + name + " offset=" + number(base + offset) + " type=" + typeName(member) +
                         " size=" + number(size);
      if (spvc_type_get_num_array_dimensions(member) != 0) {
        unsigned stride = 0;
        check(spvc_compiler_type_struct_member_array_stride(compiler_, type, i, &stride));
        text +=
            " array=" + number(spvc_type_get_array_dimension(member, 0)) + " arrayStride=" + number(stride);
      }
      if (spvc_type_get_columns(member) > 1) {
        unsigned stride = 0;
        check(spvc_compiler_type_struct_member_matrix_stride(compiler_, type, i, &stride));
        // What HLSL calls a row is a column of the module.
        const bool columnsFollow =
            spvc_compiler_has_member_decoration(compiler_, typeId, i, SpvDecorationRowMajor) == SPVC_TRUE;
        text += (columnsFollow ? " columnStride=" : " rowStride=") + number(stride);
      }
      facts_.insert(text);
    }
  }

  static std::string typeName(spvc_type type) {
    std::string name = "unknown";
    switch (spvc_type_get_basetype(type)) {
    case SPVC_BASETYPE_FP32: name = "float"; break;
    case SPVC_BASETYPE_INT32: name = "int"; break;
    case SPVC_BASETYPE_UINT32: name = "uint"; break;
    case SPVC_BASETYPE_BOOLEAN: name = "bool"; break;
    default: break;
    }
    const unsigned columns = spvc_type_get_columns(type);
    const unsigned rows = spvc_type_get_vector_size(type);
    if (columns > 1) return name + number(columns) + "x" + number(rows);
    return rows > 1 ? name + number(rows) : name;
  }

  void readImage(const spvc_reflected_resource& image, const std::string& what) {
    const spvc_type type = spvc_compiler_get_type_handle(compiler_, image.base_type_id);
    std::string dimension;
    switch (spvc_type_get_image_dimension(type)) {
    case SpvDim1D: dimension = "1D"; break;
    case SpvDim2D: dimension = "2D"; break;
    case SpvDim3D: dimension = "3D"; break;
    case SpvDimCube: dimension = "Cube"; break;
    default: dimension = "unknown"; break;
    }
    facts_.insert(what + dimension + " " + nameOf(image.id) + placeOf(image.id, 't'));
  }

  void readVarying(const spvc_reflected_resource& varying, const std::string& what) {
    const spvc_type type = spvc_compiler_get_type_handle(compiler_, varying.base_type_id);
    const bool isFlat = spvc_compiler_has_decoration(compiler_, varying.id, SpvDecorationFlat) == SPVC_TRUE;
    facts_.insert(what + " " + nameOf(varying.id) +
                  " location=" + number(decoration(varying.id, SpvDecorationLocation)) +
                  " type=" + typeName(type) + (isFlat ? " flat=yes" : ""));
  }

  void readBuiltins() {
    const spvc_reflected_builtin_resource* first = nullptr;
    std::size_t count = 0;
    check(spvc_resources_get_builtin_resource_list_for_type(
        resources_, SPVC_BUILTIN_RESOURCE_TYPE_STAGE_INPUT, &first, &count));
    for (std::size_t i = 0; i < count; ++i) {
      if (first[i].builtin == SpvBuiltInFragCoord) facts_.insert("builtin fragCoord");
      if (first[i].builtin == SpvBuiltInFrontFacing) facts_.insert("builtin frontFacing");
    }
    check(spvc_resources_get_builtin_resource_list_for_type(
        resources_, SPVC_BUILTIN_RESOURCE_TYPE_STAGE_OUTPUT, &first, &count));
    for (std::size_t i = 0; i < count && reading_.hasLocations; ++i) {
      if (first[i].builtin == SpvBuiltInPosition) facts_.insert("builtin position");
    }
  }

  Reading reading_;
  std::unique_ptr<spvc_context_s, DestroyContext> context_;
  spvc_compiler compiler_ = nullptr;
  spvc_resources resources_ = nullptr;
  Facts facts_;
};

// --- translations ---

EShLanguage languageOf(ShaderStage stage) {
  switch (stage) {
  case ShaderStage::pixel: return EShLangFragment;
  case ShaderStage::compute: return EShLangCompute;
  case ShaderStage::vertex: break;
  }
  return EShLangVertex;
}

std::vector<std::uint32_t> compileTranslation(const std::string& text, ShaderTarget target,
                                              ShaderStage stage) {
  static const bool isStarted = glslang::InitializeProcess();
  if (!isStarted) throw std::runtime_error("glslang does not start");
  const bool isHlsl = target == ShaderTarget::hlsl;
  const EShLanguage language = languageOf(stage);
  glslang::TShader shader(language);
  const char* const strings = text.c_str();
  shader.setStrings(&strings, 1);
  shader.setEntryPoint("main");
  const glslang::EShClient client = isHlsl ? glslang::EShClientVulkan : glslang::EShClientOpenGL;
  shader.setEnvInput(isHlsl ? glslang::EShSourceHlsl : glslang::EShSourceGlsl, language, client, 100);
  shader.setEnvClient(client, isHlsl ? glslang::EShTargetVulkan_1_1 : glslang::EShTargetOpenGL_450);
  shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_3);
  shader.setHlslIoMapping(isHlsl);
  shader.setAutoMapLocations(isHlsl);
  shader.setAutoMapBindings(false);
  if (isHlsl) {
    shader.setShiftBinding(glslang::EResTexture, 16);
    shader.setShiftBinding(glslang::EResSampler, 48);
    shader.setShiftBinding(glslang::EResUav, 80);
  }
  const EShMessages messages =
      static_cast<EShMessages>(EShMsgSpvRules | (isHlsl ? EShMsgVulkanRules | EShMsgReadHlsl : 0));
  if (!shader.parse(GetDefaultResources(), 100, false, messages))
    throw std::runtime_error(shader.getInfoLog());
  glslang::TProgram program;
  program.addShader(&shader);
  if (!program.link(messages) || !program.mapIO()) throw std::runtime_error(program.getInfoLog());
  std::vector<std::uint32_t> words;
  glslang::SpvOptions options;
  options.disableOptimizer = true;
  glslang::GlslangToSpv(*program.getIntermediate(language), words, &options);
  return words;
}

/// Reads a text in a version of GLSL that has no SPIR-V, as glslang understands it: what the text does not
/// number has no number.
class OldGlslReader {
public:
  OldGlslReader(const std::string& text, ShaderStage stage)
      : language_(languageOf(stage)), setsPosition_(text.find("gl_Position = ") != std::string::npos),
        shader_(language_) {
    static const bool isStarted = glslang::InitializeProcess();
    if (!isStarted) throw std::runtime_error("glslang does not start");
    const char* const strings = text.c_str();
    shader_.setStrings(&strings, 1);
    if (!shader_.parse(GetDefaultResources(), 100, false, EShMsgDefault)) {
      throw std::runtime_error(shader_.getInfoLog());
    }
    program_.addShader(&shader_);
    if (!program_.link(EShMsgDefault)) throw std::runtime_error(program_.getInfoLog());
    if (!program_.buildReflection(EShReflectionStrictArraySuffix | EShReflectionAllBlockVariables |
                                  EShReflectionIntermediateIO | EShReflectionAllIOVariables)) {
      throw std::runtime_error("no reflection");
    }
  }

  Facts read() {
    facts_.insert("entry main");
    if (setsPosition_) facts_.insert("builtin position");
    for (int i = 0; i < program_.getNumUniformBlocks(); ++i) readBlock(program_.getUniformBlock(i));
    for (int i = 0; i < program_.getNumUniformVariables(); ++i) readUniform(program_.getUniform(i));
    for (int i = 0; i < program_.getNumPipeInputs(); ++i) readVarying(program_.getPipeInput(i), "in");
    for (int i = 0; i < program_.getNumPipeOutputs(); ++i) readVarying(program_.getPipeOutput(i), "out");
    return std::move(facts_);
  }

private:
  static std::string bindingOf(const glslang::TObjectReflection& object) {
    return object.getBinding() < 0 ? "" : " binding=" + std::to_string(object.getBinding());
  }

  void readBlock(const glslang::TObjectReflection& block) {
    facts_.insert("block " + block.name + bindingOf(block) + " variable=" + variableOf(block.name) +
                  " size=" + number((static_cast<std::size_t>(block.size) + 15) / 16 * 16));
  }

  /// The block's variable, from the tree of what is declared.
  std::string variableOf(const std::string& block) const {
    const glslang::TIntermAggregate* const declared =
        program_.getIntermediate(language_)->findLinkerObjects();
    for (const TIntermNode* node : declared->getSequence()) {
      const glslang::TIntermSymbol* const symbol = const_cast<TIntermNode*>(node)->getAsSymbolNode();
      if (symbol == nullptr || symbol->getBasicType() != glslang::EbtBlock) continue;
      if (symbol->getType().getTypeName() == block.c_str()) return symbol->getName().c_str();
    }
    return "(none)";
  }

  void readUniform(const glslang::TObjectReflection& uniform) {
    const glslang::TType& type = *uniform.getType();
    if (type.getBasicType() == glslang::EbtSampler) {
      const std::map<int, const char*> dimensions = {
          {glslang::Esd1D, "1D"}, {glslang::Esd2D, "2D"}, {glslang::Esd3D, "3D"}, {glslang::EsdCube, "Cube"}};
      facts_.insert(std::string("sampler") + dimensions.at(type.getSampler().dim) + " " + uniform.name +
                    bindingOf(uniform));
      return;
    }
    const std::size_t length = type.isArray() ? static_cast<std::size_t>(type.getOuterArraySize()) : 0;
    const std::size_t rows = static_cast<std::size_t>(type.getMatrixRows());
    const std::size_t stride = static_cast<std::size_t>(uniform.arrayStride);
    const bool isMatrix = type.isMatrix();
    // Rows of a matrix in HLSL are its columns here, and lie across: all blocks are declared so.
    const std::size_t one = isMatrix ? 16 * rows : 4 * static_cast<std::size_t>(type.getVectorSize());
    facts_.insert(line("member", uniform.name,
                       {{"offset", std::to_string(uniform.offset)},
                        {"type", typeName(type)},
                        {"size", number(length == 0 ? one : stride * length)},
                        {"array", unlessZero(length)},
                        {"arrayStride", unlessZero(stride)},
                        {isAcross(type) ? "columnStride" : "rowStride", isMatrix ? "16" : ""}}));
  }

  static bool isAcross(const glslang::TType& type) {
    return type.getQualifier().layoutMatrix == glslang::ElmRowMajor;
  }

  void readVarying(const glslang::TObjectReflection& varying, const std::string& what) {
    if (varying.name == "gl_FragCoord") return void(facts_.insert("builtin fragCoord"));
    if (varying.name == "gl_FrontFacing") return void(facts_.insert("builtin frontFacing"));
    // What a vertex stage may read and set by itself is listed whether it does or not.
    const bool isListedAnyway = varying.name == "gl_Position" || varying.name == "gl_VertexID" ||
                                varying.name == "gl_InstanceID" ||
                                varying.getType()->getBasicType() == glslang::EbtBlock;
    if (isListedAnyway) return;
    const glslang::TQualifier& qualifier = varying.getType()->getQualifier();
    facts_.insert(line(what, varying.name,
                       {{"location", qualifier.hasLocation() ? std::to_string(qualifier.layoutLocation) : ""},
                        {"type", typeName(*varying.getType())},
                        {"flat", qualifier.flat ? "yes" : ""}}));
  }

  static std::string typeName(const glslang::TType& type) {
    const std::map<glslang::TBasicType, const char*> names = {{glslang::EbtFloat, "float"},
                                                              {glslang::EbtInt, "int"},
                                                              {glslang::EbtUint, "uint"},
                                                              {glslang::EbtBool, "bool"}};
    std::string name = names.at(type.getBasicType());
    if (type.isMatrix()) {
      return name + std::to_string(type.getMatrixCols()) + "x" + std::to_string(type.getMatrixRows());
    }
    return type.getVectorSize() > 1 ? name + std::to_string(type.getVectorSize()) : name;
  }

  EShLanguage language_;
  bool setsPosition_;
  glslang::TShader shader_;
  glslang::TProgram program_;
  Facts facts_;
};

bool isOldGlsl(const std::string& text) {
  return text.starts_with("#version 330\n") || text.starts_with("#version 300 es\n");
}

/// Attributes and render targets of HLSL, whose locations are semantics.
void readSemantics(Facts& facts, const std::string& text) {
  static const std::regex kStructure(R"(struct SPIRV_Cross_(Input|Output)\n\{\n([^}]*)\};)");
  static const std::regex kMember(R"((nointerpolation )?(\w+) (\w+) : (\w+);)");
  for (std::sregex_iterator at(text.begin(), text.end(), kStructure), end; at != end; ++at) {
    const bool isInput = (*at)[1] == "Input";
    const std::string members = (*at)[2];
    for (std::sregex_iterator m(members.begin(), members.end(), kMember); m != end; ++m) {
      const std::string semantic = (*m)[4];
      const std::string digits = semantic.substr(semantic.find_last_not_of("0123456789") + 1);
      const std::string flat = (*m)[1].matched ? " flat=yes" : "";
      if (semantic == "SV_Position") {
        facts.insert(isInput ? "builtin fragCoord" : "builtin position semantic=SV_Position");
      } else if (semantic == "SV_IsFrontFace") {
        facts.insert("builtin frontFacing");
      } else if (semantic.starts_with("TEXCOORD")) {
        facts.insert((isInput ? "in " : "out ") + (*m)[3].str() + " location=" + digits +
                     " type=" + (*m)[2].str() + " semantic=" + semantic + flat);
      } else if (semantic.starts_with("SV_Target") && !isInput) {
        facts.insert("out " + (*m)[3].str() + " location=" + digits + " type=" + (*m)[2].str());
      }
    }
  }
}

}  // namespace

Facts factsOfModule(const std::vector<std::uint32_t>& spirv) {
  Reading reading;
  reading.hasSets = true;
  return ModuleReader(spirv, reading).read();
}

Facts factsOfTranslation(const std::string& text, ShaderTarget target, ShaderStage stage) {
  if (isOldGlsl(text)) return OldGlslReader(text, stage).read();
  Reading reading;
  if (target == ShaderTarget::hlsl) {
    reading.hasRegisters = true;
    reading.hasVariables = false;
    reading.hasLocations = false;
  }
  Facts facts = ModuleReader(compileTranslation(text, target, stage), reading).read();
  if (target == ShaderTarget::hlsl) readSemantics(facts, text);
  return facts;
}

namespace {

// --- Metal ---

struct MetalType {
  std::size_t size = 0;
  std::size_t alignment = 0;
  std::string name;  ///< in HLSL's words
  std::size_t columnStride = 0;
};

/// Of scalars, vectors and matrices (in Metal `float3x2` has three columns).
std::optional<MetalType> metalType(const std::string& text) {
  static const std::regex kType(R"((packed_)?(float|u?int|bool)([234])?(?:x([234]))?)");
  std::smatch match;
  if (!std::regex_match(text, match, kType)) return std::nullopt;
  const std::string scalar = match[2];
  const std::size_t first = match[3].matched ? std::stoul(match[3]) : 1;
  if (match[4].matched) {
    const std::size_t rows = std::stoul(match[4]);
    const std::size_t stride = rows == 2 ? 8 : 16;
    return MetalType{first * stride, stride, scalar + number(first) + "x" + number(rows), stride};
  }
  const std::string name = first == 1 ? scalar : scalar + number(first);
  if (match[1].matched) return MetalType{4 * first, 4, name};
  const std::size_t size = 4 * (first == 3 ? 4 : first);
  return MetalType{size, size, name};
}

class MetalReader {
public:
  explicit MetalReader(const std::string& text) : text_(text) {
    static const std::regex kStructure(R"(struct (\w+)\n\{\n([^}]*)\};)");
    for (std::sregex_iterator at(text.begin(), text.end(), kStructure), end; at != end; ++at) {
      structures_[(*at)[1]] = (*at)[2];
    }
  }

  Facts read() {
    static const std::regex kEntry(R"((fragment|kernel|vertex) \w+ (\w+)\(([^\n]*)\)\n)");
    std::smatch entry;
    if (!std::regex_search(text_, entry, kEntry)) throw std::runtime_error("no entry point");
    const std::string varying = R"((\w+) (\w+) \[\[(user\(locn(\d+)\))(?:, (flat))?\]\];)";
    if (entry[1] == "vertex") {
      readInterface("_in", "attribute", R"((\w+) (\w+) \[\[(attribute\((\d+)\))()\]\];)");
      readInterface("_out", "varying", varying);
      if (text_.find("gl_Position [[position]];") != text_.npos) {
        facts_.insert("builtin position semantic=position");
      }
    } else {
      readInterface("_in", "in", varying);
      readInterface("_out", "out", R"((\w+) (\w+) \[\[(color\((\d+)\))()\]\];)");
    }
    facts_.insert("entry " + entry[2].str());
    readArguments(entry[3]);
    return std::move(facts_);
  }

private:
  void readInterface(const std::string& suffix, const std::string& what, const std::string& pattern) {
    const std::regex member(pattern);
    for (const auto& [name, members] : structures_) {
      if (name != "main0" + suffix && name != "sfg_main" + suffix) continue;
      for (std::sregex_iterator at(members.begin(), members.end(), member), end; at != end; ++at) {
        const bool isVarying = what == "in" || what == "varying";
        const std::string semantic = what == "out" ? "" : " semantic=" + (*at)[3].str();
        // Metal interpolates no integers.
        const bool isFlat = isVarying && ((*at)[5].length() != 0 || (*at)[1].str().find("int") == 0 ||
                                          (*at)[1].str().find("uint") == 0);
        const bool isTaken = what == "in" || what == "attribute";
        facts_.insert((isTaken ? "in " : "out ") + (*at)[2].str() + " location=" + (*at)[4].str() +
                      " type=" + (*at)[1].str() + semantic + (isFlat ? " flat=yes" : ""));
      }
    }
  }

  void readArguments(const std::string& arguments) {
    static const std::regex kArgument(
        R"((?:(constant|device|const device) )?([\w<>]+)([&*])? (\w+) \[\[(\w+)(?:\((\d+)\))?\]\])");
    for (std::sregex_iterator at(arguments.begin(), arguments.end(), kArgument), end; at != end; ++at) {
      const std::string type = (*at)[2];
      const std::string name = (*at)[4];
      const std::string kind = (*at)[5];
      const std::string index = (*at)[6];
      if (kind == "buffer" && (*at)[3] == "*") {
        facts_.insert("sizes " + name + " binding=" + index);
      } else if (kind == "buffer" && (*at)[1] == "constant") {
        facts_.insert("block " + type + " binding=" + index + " variable=" + name +
                      " size=" + number((lay(type, type, 0) + 15) / 16 * 16));
      } else if (kind == "buffer") {
        readElements(type, index);
      } else if (kind == "texture") {
        facts_.insert(textureName(type) + " " + name + " binding=" + index);
      } else if (kind == "sampler") {
        facts_.insert("sampler " + name + " binding=" + index);
      } else if (kind == "position") {
        facts_.insert("builtin fragCoord");
      } else if (kind == "front_facing") {
        facts_.insert("builtin frontFacing");
      }
    }
  }

  static std::string textureName(const std::string& type) {
    const std::map<std::string, std::string> names = {{"texture1d<float>", "texture1D"},
                                                      {"texture2d<float>", "texture2D"},
                                                      {"texture3d<float>", "texture3D"},
                                                      {"texturecube<float>", "textureCube"}};
    return names.at(type);
  }

  /// A structure around an array of elements.
  void readElements(const std::string& type, const std::string& index) {
    static const std::regex kArray(R"(\s*(\w+) _data\[1\];\s*)");
    std::smatch match;
    if (!std::regex_match(structures_.at(type), match, kArray)) throw std::runtime_error("no elements");
    facts_.insert("elements " + type + " binding=" + index + " size=" + number(lay(type, match[1], 0)));
  }

  /// Records the members of a structure by Metal's rules; answers where they end.
  std::size_t lay(const std::string& path, const std::string& structure, std::size_t base) {
    static const std::regex kMember(R"(\s*(\w+) (\w+)(?:\[(\d+)\])?;\n?)");
    const std::string& members = structures_.at(structure);
    std::size_t end = base;
    for (std::sregex_iterator at(members.begin(), members.end(), kMember), last; at != last; ++at) {
      const std::string type = (*at)[1];
      const std::string name = (*at)[2];
      const std::size_t length = (*at)[3].matched ? std::stoul((*at)[3]) : 0;
      if (type == "char") {  // padding
        end += length;
        continue;
      }
      const std::optional<MetalType> plain = metalType(type);
      const std::size_t alignment = plain ? plain->alignment : 16;
      end = (end + alignment - 1) / alignment * alignment;
      if (!plain) {
        end = (lay(path + "." + name, type, end) + 15) / 16 * 16;
        continue;
      }
      facts_.insert(line("member", path + "." + name,
                         {{"offset", number(end)},
                          {"type", plain->name},
                          {"array", unlessZero(length)},
                          {"arrayStride", length == 0 ? "" : number(plain->size)},
                          {"columnStride", unlessZero(plain->columnStride)}}));
      end += plain->size * std::max<std::size_t>(length, 1);
    }
    return end;
  }

  std::string text_;
  std::map<std::string, std::string> structures_;
  Facts facts_;
};

}  // namespace

Facts factsOfMetal(const std::string& text) { return MetalReader(text).read(); }

std::string pairFaults(const Facts& vertexModule, const Facts& pixelModule, const ShaderInterface& pixel) {
  const auto linesOf = [](const Facts& facts, const std::string& what) {
    Facts lines;
    for (const std::string& fact : facts) {
      if (fact.starts_with(what + " ")) lines.insert(fact.substr(what.size() + 1));
    }
    return lines;
  };
  Facts wanted = linesOf(pixelModule, "in");
  for (const InterfaceAttribute& attribute : pixel.attributes) {
    if (attribute.location && !attribute.isUsed.value())
      wanted.insert(varyingLine("in", attribute).substr(3));
  }
  std::string faults = difference(wanted, linesOf(vertexModule, "out"));
  if (!vertexModule.contains("builtin position")) faults += "no position\n";
  return faults;
}

std::string difference(const Facts& expected, const Facts& found) {
  std::string text;
  for (const std::string& fact : expected) {
    if (!found.contains(fact)) text += "said, but not so: " + fact + "\n";
  }
  for (const std::string& fact : found) {
    if (!expected.contains(fact)) text += "so, but not said: " + fact + "\n";
  }
  return text;
}

}  // namespace shaders_test

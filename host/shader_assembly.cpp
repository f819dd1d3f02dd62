#include "host/shader_assembly.h"

#include <algorithm>

#include "host/documents/document_reader.h"
#include "host/shader/identifiers.h"
#include "sfg/shader_includes.h"
#include "sfg/shader_symbol.h"
#include "sfg/state_variable_manager.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kMaximumTargets = 8;
constexpr int kGroupSize = 64;
constexpr std::wstring_view kStatePrefix = L"state.";
const WString kSamplerInclude = L"sfg_samplers.h";

/// How a value that varies enters the shader.
struct Varying {
  TypeID type;
  WString name;
  WString semantic;
};

/// A port of the collapsed function: an output, or a graph input that it reads.
struct Port {
  TypeID type;  ///< nil for a structure
  WString typeText;
  WString name;
};

bool isMatrix(const TypeID& type) { return componentCount(type) != 0 && type.word(2) > 1; }
bool canVary(const TypeID& type) { return componentCount(type) != 0 && !isMatrix(type); }
bool isInteger(const TypeID& type) {
  return componentCount(type) != 0 && type.word(0) < TypeID_float.word(0);
}

/// Booleans travel as numbers.
const TypeID& carrierType(const TypeID& type) { return type == TypeID_bool ? TypeID_uint : type; }

/// A row of the type, widened to four components: such values lie at the same places in every shading
/// language.
TypeID wideType(const TypeID& type) { return TypeID(carrierType(type).word(0), 4, 1, 0); }

/// The components of a widened value that are the value.
const wchar_t* narrowing(const TypeID& type) {
  constexpr const wchar_t* kSwizzles[] = {L"", L".x", L".xy", L".xyz", L""};
  return kSwizzles[isMatrix(type) ? type.word(1) : componentCount(type)];
}

const wchar_t* textureType(const TypeID& sampler) {
  if (sampler == TypeID_sampler1D) return L"Texture1D<float4>";
  if (sampler == TypeID_sampler2D) return L"Texture2D<float4>";
  if (sampler == TypeID_sampler3D) return L"Texture3D<float4>";
  return L"TextureCube<float4>";
}

const wchar_t* samplerMaker(const TypeID& sampler) {
  if (sampler == TypeID_sampler1D) return L"sfg_make_sampler1D";
  if (sampler == TypeID_sampler2D) return L"sfg_make_sampler2D";
  if (sampler == TypeID_sampler3D) return L"sfg_make_sampler3D";
  return L"sfg_make_samplerCube";
}

/// The system value that fills a varying state variable in a pixel stage, or a semantic named after it.
WString semanticOf(const UString& stateVariable) {
  if (stateVariable == StateVariable_screenPosition) return L"SV_Position";
  if (stateVariable == StateVariable_frontFacing) return L"SV_IsFrontFace";
  if (stateVariable == StateVariable_vertexColor) return L"COLOR0";
  WString semantic;
  for (const wchar_t c : stateVariable.view().substr(4)) {
    semantic += c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
  }
  return semantic;
}

/// What the host fills the MetaSL state with, by member name; every other member is zero.
struct StateValue {
  const wchar_t* member;
  const wchar_t* value;
};
constexpr StateValue kStateValues[] = {
    {L"origin", L"sfg_eyePosition"},
    {L"position", L"sfg_worldPosition"},
    {L"direction", L"normalize(sfg_worldPosition - sfg_eyePosition)"},
    {L"normal", L"normalize(sfg_worldNormal)"},
    {L"geometry_normal", L"normalize(sfg_worldNormal)"},
    {L"motion", L"float3(0.0, 0.0, 0.0)"},
    {L"tangent_u", L"sfg_worldTangent"},
    {L"tangent_v", L"sfg_worldBinormal"},
    {L"texture_coordinate", L"float3(sfg_texCoord0, 0.0)"},
    {L"vertex_color", L"sfg_vertexColor"},
    {L"ray_length", L"length(sfg_worldPosition - sfg_eyePosition)"},
    {L"ray_near", L"0.0"},
    {L"ray_far", L"1000000.0"},
};

/// What those values are made of.
const Array<UString>& stateSources() {
  static const Array<UString> sources = {StateVariable_worldPosition, StateVariable_worldNormal,
                                         StateVariable_worldTangent,  StateVariable_worldBinormal,
                                         StateVariable_texCoord0,     StateVariable_vertexColor};
  return sources;
}

/// A member of a constant buffer.
struct BufferMember {
  TypeID type;  ///< nil for a structure
  WString typeText;
  WString name;
  WString value;  ///< initial value; may be empty
};

/// A symbol of the predefines, or text between symbols (without a name).
struct PredefinePart {
  EShaderSymbolType type = EShaderSymbolType::unknown;
  WString name;
  std::wstring_view text;
};

/// Splits the predefines at their symbols. Nothing is lost: text that is no symbol goes with the symbol
/// behind it.
std::vector<PredefinePart> splitPredefines(const WString& predefines) {
  std::vector<PredefinePart> parts;
  const ScopedText whole(predefines);
  ScopedText rest = whole;
  std::size_t start = 0;
  ShaderSymbol symbol;
  while (!rest.empty() && ShaderSymbol::findFirstSymbol(symbol, rest)) {
    std::size_t end = whole.length - rest.length;
    if (end < predefines.size() && predefines[end] == L'\n') ++end;
    PredefinePart part;
    if (!symbol.getRange().empty()) {
      part.type = symbol.getType();
      part.name = WString(symbol.getName().view());
    }
    part.text = std::wstring_view(predefines).substr(start, end - start);
    if (!part.text.empty()) parts.push_back(part);
    start = end;
    symbol.clear();
  }
  if (start < predefines.size()) {
    parts.push_back({EShaderSymbolType::unknown, {}, std::wstring_view(predefines).substr(start)});
  }
  return parts;
}

/// The first part of each structure's name.
Map<std::wstring_view, std::size_t> indexStructures(const std::vector<PredefinePart>& parts) {
  Map<std::wstring_view, std::size_t> structures;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (parts[i].type == EShaderSymbolType::structure) structures.emplace(parts[i].name, i);
  }
  return structures;
}

/// The text so far, and which lines of it are what.
class Writer {
public:
  void section(ShaderSection::Kind kind, std::wstring_view name = {}) {
    closeSection();
    ShaderSection next;
    next.kind = kind;
    next.name = name;
    next.firstLine = line_;
    sections_.push_back(next);
  }

  /// Text of one or more lines.
  void write(std::wstring_view text) {
    text_ += text;
    line_ += static_cast<std::size_t>(std::count(text.begin(), text.end(), L'\n'));
  }
  template <class... Arguments>
  void writef(std::wstring_view format, const Arguments&... arguments) {
    write(formatted(format, arguments...));
  }
  /// A line feed where the last line has none.
  void endLine() {
    if (!text_.empty() && text_.back() != L'\n') write(L"\n");
  }

  WString takeText() { return std::move(text_); }
  std::vector<ShaderSection> takeSections() {
    closeSection();
    return std::move(sections_);
  }

private:
  void closeSection() {
    endLine();
    if (!sections_.empty()) sections_.back().lastLine = line_ - 1;
    if (!sections_.empty() && sections_.back().lastLine < sections_.back().firstLine) sections_.pop_back();
  }

  WString text_;
  std::size_t line_ = 1;
  std::vector<ShaderSection> sections_;
};

class Assembler {
public:
  Assembler(const CollapseJob& job, ShaderStage stage)
      : job_(job), stage_(stage), language_(job.libraries().language()), result_(*job.result()),
        profile_(*result_.getProfile(0)) {}

  AssembledShader assemble() {
    findUses();
    findFunctionParameters();
    findVaryings();
    findOutputs();

    writeHeader();
    writeIncludes();
    writeStructuresOf(result_.getShaderInputTypes());
    writeState();
    writeStructuresOf(uniformStructures());
    writeConstantBuffers();
    writeTextures();
    writePredefines();
    writeStaticInputs();
    writeFunction();
    writeEntryPoint();
    return finish();
  }

private:
  using Kind = ShaderSection::Kind;

  bool isPixel() const { return stage_ == ShaderStage::pixel; }
  bool isLightLoop() const { return job_.settings().tool == CollapseTool::lightLoop; }

  void findUses() {
    stateVariables_ = profile_.stateVariables();
    if (stateVariables_.contains(StateVariable_currentLight)) {
      throw AssemblyError("a fragment reads the current light; it needs the light loop (`--tool lightloop`)");
    }
    passesState_ = std::any_of(stateVariables_.begin(), stateVariables_.end(), isStateVariableMsl);
    declaresState_ = passesState_ || !result_.getShaderInputTypes().empty();
    if (declaresState_) stateVariables_.insert(StateVariable_eyePosition);

    Set<WString> names;
    for (std::size_t i = 0; i < result_.getNumUniforms(); ++i) {
      const AParameter* const uniform = result_.getUniform(i);
      if (names.insert(uniform->getName()).second) uniforms_.push_back(uniform);
    }

    // A light loop has no parameters for the graph inputs: those that its code names are variables around it.
    const Set<std::wstring_view> used = identifiersOf(profile_.getFunctionBody());
    for (std::size_t i = 0; i < job_.document().getNumInputs(); ++i) {
      const AParameter& input = *job_.document().getInput(i);
      if (!isLightLoop() || used.contains(std::wstring_view(input.getName())))
        graphInputs_.push_back(portOf(input));
    }
  }

  Port portOf(const AParameter& parameter) const {
    if (parameter.getType() == TypeID_struct)
      return {TypeID_nil, parameter.getStructName(), parameter.getName()};
    return {parameter.getType(), language_.getTypeName(parameter.getType()), parameter.getName()};
  }

  /// Inputs, state variables, outputs: as in every definition.
  void findFunctionParameters() {
    parameters_ = makeRef<ATextParameterList>(*profile_.getFunctionParameters());
    const std::size_t inputs = parameters_->getNumInputs();
    StateVariableManager manager;
    manager.setLanguage(&language_);
    manager.addStateVariableParameters(parameters_.get(), &profile_);
    firstStateParameter_ = inputs;
    firstCustomParameter_ = parameters_->getNumInputs();
    addCustomParameters();
  }

  /// Custom state variables that no pre-process fragment declares inside the function come from outside.
  void addCustomParameters() {
    const AShaderFragmentGraph& graph = *job_.graph();
    Set<WString> declared;
    for (std::size_t i = 0; i < graph.getNumPreprocessFragment(); ++i) {
      const IShaderFragment& fragment = *graph.getPreprocessFragment(i);
      for (std::size_t k = 0; k < fragment.getNumOutputs(); ++k) {
        if (fragment.getOutput(k)->getSemantic().empty()) declared.insert(fragment.getOutputName(k));
      }
    }
    Map<WString, WString> types;
    for (std::size_t i = 0; i < graph.getNumFragments(); ++i) {
      const IShaderFragment& fragment = *graph.getFragment(i);
      for (std::size_t k = 0; k < fragment.getNumOutputs(); ++k) {
        if (fragment.getOutput(k)->getSemantic().empty()) {
          types[fragment.getOutputName(k)] = fragment.getOutputType(&language_, k);
        }
      }
    }
    for (const WString& name : profile_.customStateVariables()) {
      const auto type = types.find(name);
      if (type != types.end() && !declared.contains(name)) parameters_->addInput(type->second, name);
    }
  }

  void findVaryings() {
    Set<UString> varying;
    for (const UString& name : stateVariables_) {
      if (!language_.getStateVariableParameterName(name).empty()) varying.insert(name);
    }
    if (declaresState_) varying.insert(stateSources().begin(), stateSources().end());
    // In the order of the table, so that shaders that use the same variables have the same interface.
    for (const StateVariableInfo& info : allStateVariables()) {
      if (varying.contains(info.name))
        varyings_.push_back({info.type, info.name.str(), semanticOf(info.name)});
    }
    std::size_t number = 0;
    for (const Port& input : graphInputs_) {
      if (!canVary(input.type)) continue;
      WString semantic = L"GRAPHINPUT";
      appendDecimal(semantic, number++);
      varyings_.push_back({input.type, input.name, semantic});
    }
  }

  void findOutputs() {
    for (std::size_t i = 0; i < parameters_->getNumOutputs(); ++i) {
      const WString& typeText = parameters_->getOutputType(i);
      // The light loop names its parameters by itself; the result fragment still knows the outputs' names.
      const WString& name =
          i < result_.getNumOutputs() ? result_.getOutputName(i) : parameters_->getOutputName(i);
      outputs_.push_back({language_.getTypeID(typeText), typeText, name});
      const TypeID& type = outputs_.back().type;
      if (componentCount(type) == 0) {
        throw AssemblyError("the output " + inTicks(name) + " of type " + inTicks(typeText) +
                            " cannot leave a " + (isPixel() ? "pixel" : "compute") + " stage");
      }
      targets_ += isMatrix(type) ? type.word(2) : 1;
    }
    if (isPixel() && targets_ > kMaximumTargets) {
      throw AssemblyError("the outputs need " + std::to_string(targets_) +
                          " render targets; a pixel stage has " + std::to_string(kMaximumTargets));
    }
  }

  void writeHeader() {
    out_.section(Kind::declarations);
    out_.writef(L"// Generated by sfg for the %s stage. Function: %s\n", isPixel() ? L"pixel" : L"compute",
                profile_.getFunctionName());
    if (!isPixel()) out_.write(L"#define SFG_COMPUTE 1\n");
  }

  void writeIncludes() {
    Set<WString> names = profile_.includes();
    const auto isSampler = [](const Port& port) { return isSamplerType(port.type); };
    if (std::any_of(graphInputs_.begin(), graphInputs_.end(), isSampler)) names.insert(kSamplerInclude);
    Array<WString> flat;
    Set<WString> done;
    const ShaderIncludes& registry = job_.libraries().includes();
    registry.createFlatIncludeArray(flat, done, names);
    for (const WString& name : flat) {
      const WString& content = registry.getIncludeContent(name.c_str());
      if (content.empty()) missingIncludes_.push_back(name);
      out_.section(Kind::include, name);
      out_.write(L"\n");
      out_.write(content);
    }
  }

  void writeState() {
    if (!declaresState_) return;
    out_.section(Kind::declarations);
    out_.write(L"\nstruct State\n{\n");
    for (const StateVariableInfo& info : allStateVariables()) {
      if (info.kind != StateVariableKind::metaSL) continue;
      out_.writef(L"    %s %s;\n", info.type.toString(), info.name.view().substr(kStatePrefix.size()));
    }
    const Array<WString>& types = result_.getShaderInputTypes();
    for (std::size_t i = 0; i < types.size(); ++i) out_.writef(L"    %s shaderInput%Iu;\n", types[i], i);
    out_.write(L"};\n");
    // Code that no state parameter reaches can still name the shader inputs.
    if (!passesState_) out_.write(L"static State state;\n");
  }

  Array<WString> uniformStructures() const {
    Array<WString> names;
    for (const AParameter* uniform : uniforms_) {
      if (uniform->getType() == TypeID_struct) names.push_back(uniform->getStructName());
    }
    for (const Port& input : graphInputs_) {
      if (input.type == TypeID_nil) names.push_back(input.typeText);
    }
    return names;
  }

  /// Writes the structures of the predefines that have these names, behind the structures they are made of.
  void writeStructuresOf(const Array<WString>& names) {
    for (const WString& name : names) writeStructure(name);
  }

  /// A structure that is being written: the parts that its identifiers name go in front of it.
  struct OpenStructure {
    std::size_t part;
    std::vector<std::wstring_view> identifiers;
    std::size_t next = 0;
  };

  void writeStructure(std::wstring_view name) {
    std::vector<OpenStructure> open;
    openStructure(open, name);
    while (!open.empty()) {
      OpenStructure& structure = open.back();
      if (structure.next != structure.identifiers.size()) {
        openStructure(open, structure.identifiers[structure.next++]);
        continue;
      }
      writePart(parts_[structure.part]);
      open.pop_back();
    }
  }

  void openStructure(std::vector<OpenStructure>& open, std::wstring_view name) {
    const auto found = structures_.find(name);
    if (found == structures_.end() || !movedParts_.insert(found->second).second) return;
    const Set<std::wstring_view> identifiers = identifiersOf(parts_[found->second].text);
    open.push_back({found->second, {identifiers.begin(), identifiers.end()}});
  }

  void writePart(const PredefinePart& part) {
    out_.section(part.name.empty() ? Kind::declarations : Kind::symbol, part.name);
    out_.write(part.text);
  }

  void writeConstantBuffers() {
    out_.section(Kind::declarations);
    std::vector<BufferMember> members;
    for (const AParameter* uniform : uniforms_) {
      if (isSamplerType(uniform->getType())) continue;
      const Port port = portOf(*uniform);
      members.push_back(
          {port.type, port.typeText, port.name, language_.getValueText(uniform->getDefaultValue())});
    }
    writeConstantBuffers(L"sfg_Uniforms", members);
    members.clear();
    for (const StateVariableInfo& info : allStateVariables()) {
      if (info.kind == StateVariableKind::uniform && stateVariables_.contains(info.name)) {
        members.push_back({info.type, info.type.toString(), info.name.str(), WString()});
      }
    }
    writeConstantBuffers(L"sfg_StateUniforms", members);
    members.clear();
    for (const Port& input : graphInputs_) {
      if (isBuffered(input)) members.push_back({input.type, input.typeText, bufferedName(input), WString()});
    }
    writeConstantBuffers(L"sfg_GraphInputs", members);
  }

  /// One buffer for all members but structures, whose sizes are not known here: each has a buffer of its own.
  void writeConstantBuffers(const WString& name, const std::vector<BufferMember>& members) {
    std::vector<BufferMember> plain;
    for (const BufferMember& member : members) {
      if (member.type == TypeID_nil) {
        writeConstantBuffer(name + L"_" + member.name, {member});
      } else {
        plain.push_back(member);
      }
    }
    writeConstantBuffer(name, plain);
  }

  void writeConstantBuffer(const WString& name, const std::vector<BufferMember>& members) {
    if (members.empty()) return;
    out_.writef(L"\ncbuffer %s : register(b%Iu)\n{\n", name, buffers_++);
    std::size_t end = 0;
    for (const BufferMember& member : members) {
      out_.writef(L"    %s %s : packoffset(%s)", member.typeText, member.name, place(member.type, end));
      if (!member.value.empty()) out_.writef(L" = %s", member.value);
      out_.write(L";\n");
    }
    out_.write(L"};\n");
  }

  /// The next place for a value of the type, by rules on which all shading languages agree; moves `end`
  /// behind it.
  static WString place(const TypeID& type, std::size_t& end) {
    constexpr std::size_t kRegister = 4;
    const std::size_t components = isMatrix(type) ? kRegister * type.word(2) : componentCount(type);
    const std::size_t alignment = components > 2 || components == 0 ? kRegister : components;
    const std::size_t start = (end + alignment - 1) / alignment * alignment;
    end = start + components;
    WString text = L"c";
    appendDecimal(text, start / kRegister);
    if (start % kRegister != 0) (text += L'.') += L"xyzw"[start % kRegister];
    return text;
  }

  static bool isBuffered(const Port& input) { return !canVary(input.type) && !isSamplerType(input.type); }
  static WString bufferedName(const Port& input) { return L"sfg_input_" + input.name; }
  static WString textureName(const Port& input) { return L"sfg_texture_" + input.name; }

  void writeTextures() {
    out_.section(Kind::declarations);
    for (const AParameter* uniform : uniforms_) {
      if (isSamplerType(uniform->getType())) {
        writeTexture(uniform->getType(), uniform->getName(), L"sampler_" + uniform->getName());
      }
    }
    for (const Port& input : graphInputs_) {
      if (isSamplerType(input.type))
        writeTexture(input.type, textureName(input), L"sampler_" + textureName(input));
    }
  }

  void writeTexture(const TypeID& type, const WString& texture, const WString& sampler) {
    if (textures_ == 0) out_.write(L"\n");
    out_.writef(L"%s %s : register(t%Iu);\n", textureType(type), texture, textures_);
    out_.writef(L"SamplerState %s : register(s%Iu);\n", sampler, textures_);
    ++textures_;
  }

  void writePredefines() {
    out_.section(Kind::declarations);
    out_.write(L"\n");
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      if (!movedParts_.contains(i)) writePart(parts_[i]);
    }
  }

  void writeStaticInputs() {
    if (!isLightLoop() || graphInputs_.empty()) return;
    out_.section(Kind::declarations);
    out_.write(L"\n");
    for (const Port& input : graphInputs_) out_.writef(L"static %s %s;\n", input.typeText, input.name);
  }

  void writeFunction() {
    out_.section(Kind::function, profile_.getFunctionName());
    WString text;
    parameters_->writeParameters(text, L"    ", true);
    out_.writef(L"\nvoid %s(%s)\n{\n", profile_.getFunctionName(), text);
    out_.write(profile_.getFunctionBody());
    out_.endLine();
    out_.write(L"}\n");
  }

  void writeEntryPoint() {
    out_.section(Kind::declarations);
    if (isPixel()) {
      writePixelInterface();
    } else {
      writeComputeInterface();
    }
    writeVaryingLocals();
    writeStateLocal();
    writeGraphInputs();
    writeCustomLocals();
    writeOutputLocals();
    writeCall();
    writeResults();
    out_.write(L"}\n");
  }

  void writePixelInterface() {
    if (!varyings_.empty()) {
      out_.write(L"\nstruct sfg_PixelInput\n{\n");
      for (const Varying& varying : varyings_) {
        const bool systemBool = varying.semantic == L"SV_IsFrontFace";
        const TypeID& type = systemBool ? TypeID_bool : carrierType(varying.type);
        out_.writef(L"    %s%s %s : %s;\n",
                    isInteger(varying.type) && !systemBool ? L"nointerpolation " : L"", type.toString(),
                    varying.name, varying.semantic);
      }
      out_.write(L"};\n");
    }
    out_.write(L"\nstruct sfg_PixelOutput\n{\n");
    std::size_t target = 0;
    for (const Port& output : outputs_) {
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        out_.writef(L"    %s %s : SV_Target%Iu;\n", rowType(output.type).toString(),
                    resultMember(output, row), target++);
      }
    }
    out_.writef(L"};\n\nsfg_PixelOutput %s(%s)\n{\n", entryPoint(),
                varyings_.empty() ? L"" : L"sfg_PixelInput sfg_in");
    out_.write(L"    sfg_PixelOutput sfg_out;\n");
  }

  void writeComputeInterface() {
    if (!varyings_.empty()) {
      out_.write(L"\nstruct sfg_ComputeInput\n{\n");
      for (const Varying& varying : varyings_) {
        out_.writef(L"    %s %s;\n", wideType(varying.type).toString(), varying.name);
      }
      out_.write(L"};\n");
    }
    out_.write(L"\nstruct sfg_ComputeOutput\n{\n");
    for (const Port& output : outputs_) {
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        out_.writef(L"    %s %s;\n", wideType(output.type).toString(), resultMember(output, row));
      }
    }
    out_.write(L"};\n\n");
    if (!varyings_.empty()) {
      out_.writef(L"StructuredBuffer<sfg_ComputeInput> sfg_inputs : register(t%Iu);\n", textures_);
    }
    out_.write(L"RWStructuredBuffer<sfg_ComputeOutput> sfg_outputs : register(u0);\n\n");
    out_.writef(L"[numthreads(%d, 1, 1)]\nvoid %s(uint3 sfg_thread : SV_DispatchThreadID)\n{\n", kGroupSize,
                entryPoint());
    out_.write(L"    uint sfg_count;\n"
               L"    uint sfg_stride;\n"
               L"    sfg_outputs.GetDimensions(sfg_count, sfg_stride);\n"
               L"    if (sfg_thread.x >= sfg_count)\n"
               L"        return;\n");
    if (!varyings_.empty()) out_.write(L"    sfg_ComputeInput sfg_in = sfg_inputs[sfg_thread.x];\n");
    out_.write(L"    sfg_ComputeOutput sfg_out;\n");
  }

  /// State variables are `inout` parameters, so each needs a variable.
  void writeVaryingLocals() {
    for (const Varying& varying : varyings_) {
      if (findStateVariable(UString(varying.name)) == nullptr) continue;
      const bool isSystemBool = isPixel() && varying.type == TypeID_bool;
      const WString value =
          isSystemBool ? L"sfg_in." + varying.name : varyingValue(varying.type, varying.name);
      out_.writef(L"    %s %s = %s;\n", varying.type.toString(), varying.name, value);
    }
  }

  WString varyingValue(const TypeID& type, const WString& name) const {
    return formatted(L"sfg_in.%s%s%s", name, isPixel() ? L"" : narrowing(type),
                     type == TypeID_bool ? L" != 0" : L"");
  }

  void writeStateLocal() {
    if (!declaresState_) return;
    if (passesState_) out_.write(L"    State state;\n");
    for (const StateValue& value : kStateValues)
      out_.writef(L"    state.%s = %s;\n", value.member, value.value);
  }

  void writeGraphInputs() {
    if (!isLightLoop()) return;
    for (const Port& input : graphInputs_) out_.writef(L"    %s = %s;\n", input.name, graphInputValue(input));
  }

  WString graphInputValue(const Port& input) const {
    if (isSamplerType(input.type)) {
      return formatted(L"%s(%s, sampler_%s)", samplerMaker(input.type), textureName(input),
                       textureName(input));
    }
    if (isBuffered(input)) return bufferedName(input);
    return varyingValue(input.type, input.name);
  }

  void writeCustomLocals() {
    for (std::size_t i = firstCustomParameter_; i < parameters_->getNumInputs(); ++i) {
      const WString value = language_.getValueText(AValue(language_.getTypeID(parameters_->getInputType(i))));
      out_.writef(L"    %s %s", parameters_->getInputType(i), parameters_->getInputName(i));
      if (value.empty()) {
        out_.writef(L" = (%s)0;\n", parameters_->getInputType(i));
      } else {
        out_.writef(L" = %s;\n", value);
      }
    }
  }

  /// Outputs that the interface carries in another form pass through a variable.
  bool needsLocal(const Port& output) const {
    if (output.type == TypeID_bool || isMatrix(output.type)) return true;
    return !isPixel() && componentCount(output.type) != 4;
  }
  static WString localName(const Port& output) { return L"sfg_result_" + output.name; }

  void writeOutputLocals() {
    for (const Port& output : outputs_) {
      if (needsLocal(output)) out_.writef(L"    %s %s;\n", output.typeText, localName(output));
    }
  }

  void writeCall() {
    Array<WString> values;
    if (!isLightLoop()) {
      for (const Port& input : graphInputs_) values.push_back(graphInputValue(input));
    }
    for (std::size_t i = firstStateParameter_; i < parameters_->getNumInputs(); ++i) {
      values.push_back(parameters_->getInputName(i));
    }
    for (const Port& output : outputs_) {
      values.push_back(needsLocal(output) ? localName(output) : L"sfg_out." + output.name);
    }
    out_.writef(L"    %s(", profile_.getFunctionName());
    for (std::size_t i = 0; i < values.size(); ++i)
      out_.writef(L"%s\n        %s", i == 0 ? L"" : L",", values[i]);
    out_.write(L");\n");
  }

  void writeResults() {
    for (const Port& output : outputs_) {
      if (!needsLocal(output)) continue;
      for (std::size_t row = 0; row < rowCount(output.type); ++row) {
        out_.writef(L"    sfg_out.%s = %s;\n", resultMember(output, row), resultValue(output, row));
      }
    }
    out_.write(isPixel() ? L"    return sfg_out;\n" : L"    sfg_outputs[sfg_thread.x] = sfg_out;\n");
  }

  WString resultValue(const Port& output, std::size_t row) const {
    WString value = localName(output);
    if (output.type == TypeID_bool) value += L" ? 1 : 0";
    if (isMatrix(output.type)) value += formatted(L"[%Iu]", row);
    if (isPixel()) return value;
    WString wide = wideType(output.type).toString() + L"(" + value;
    for (std::size_t i = output.type.word(1); i < 4; ++i) wide += isInteger(output.type) ? L", 0" : L", 0.0";
    return wide + L")";
  }

  static std::size_t rowCount(const TypeID& type) { return isMatrix(type) ? type.word(2) : 1; }
  static TypeID rowType(const TypeID& type) {
    if (!isMatrix(type)) return carrierType(type);
    return TypeID(type.word(0), type.word(1), 1, 0);
  }
  static WString resultMember(const Port& output, std::size_t row) {
    if (!isMatrix(output.type)) return output.name;
    WString name = output.name + L"_row";
    appendDecimal(name, row);
    return name;
  }

  std::wstring_view entryPoint() const {
    return profile_.getFunctionName() == L"main" ? L"sfg_main" : L"main";
  }

  AssembledShader finish() {
    AssembledShader assembled;
    assembled.sections = out_.takeSections();
    assembled.shader.getCompleteShader() = out_.takeText();
    for (const AParameter* uniform : uniforms_) assembled.shader.addUniform(uniform->getName());
    assembled.shader.getStateVariables() = profile_.stateVariables();
    assembled.entryPoint = toUtf8(entryPoint());
    assembled.missingIncludes = missingIncludes_;
    return assembled;
  }

  const CollapseJob& job_;
  ShaderStage stage_;
  const LanguageDx11& language_;
  const IShaderFragment& result_;
  const IShaderFragmentProfile& profile_;

  Set<UString> stateVariables_;
  bool passesState_ = false;    ///< the function has the parameter `inout State state`
  bool declaresState_ = false;  ///< the structure is needed
  Array<const AParameter*> uniforms_;
  Array<Port> graphInputs_;
  RefPtr<ATextParameterList> parameters_;
  std::size_t firstStateParameter_ = 0;
  std::size_t firstCustomParameter_ = 0;
  Array<Varying> varyings_;
  Array<Port> outputs_;
  std::size_t targets_ = 0;
  const std::vector<PredefinePart> parts_ = splitPredefines(profile_.predefines());
  const Map<std::wstring_view, std::size_t> structures_ = indexStructures(parts_);
  Set<std::size_t> movedParts_;
  std::size_t buffers_ = 0;
  std::size_t textures_ = 0;
  Array<WString> missingIncludes_;
  Writer out_;
};

}  // namespace

AssembledShader assembleShader(const CollapseJob& job, ShaderStage stage) {
  return Assembler(job, stage).assemble();
}

}  // namespace TolmSDK::Graphics::sfg::host

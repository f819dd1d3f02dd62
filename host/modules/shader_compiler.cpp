#include "host/modules/shader_compiler.h"

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <spirv_cross_c.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>
#include <set>
#include <spirv-tools/libspirv.hpp>
#include <spirv-tools/optimizer.hpp>
#include <sstream>

#include "host/modules/code_depth.h"
#include "host/modules/crash_guard.h"
#include "host/modules/new_operations.h"
#include "host/modules/speed_passes.h"
#include "host/modules/token_lines.h"
#include "host/shader/module_names.h"
#include "host/shader/shader_target.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Words = std::vector<std::uint32_t>;

constexpr spv_target_env kEnvironment = SPV_ENV_VULKAN_1_1;
/// What diagnostics and debuggers call the assembled text.
constexpr const char* kTextName = "generated";

/// A version of GLSL.
struct Dialect {
  const char* name;
  unsigned number;
  bool isEmbedded;
  bool isHighByDefault;  ///< the precision of numbers that say none
};
constexpr Dialect kGlsl450 = {"GLSL 4.50", 450, false, false};
constexpr Dialect kGlsl330 = {"GLSL 3.30", 330, false, false};
constexpr Dialect kEssl320 = {"GLSL ES 3.20", 320, true, false};
constexpr Dialect kEssl300 = {"GLSL ES 3.00", 300, true, true};

/// The front end is started once and ended with the process.
struct FrontEnd {
  FrontEnd() { glslang::InitializeProcess(); }
  ~FrontEnd() { glslang::FinalizeProcess(); }
  FrontEnd(const FrontEnd&) = delete;
  FrontEnd& operator=(const FrontEnd&) = delete;
};

EShLanguage stageOf(ShaderStage stage) {
  switch (stage) {
  case ShaderStage::compute: return EShLangCompute;
  case ShaderStage::vertex: return EShLangVertex;
  case ShaderStage::pixel: break;
  }
  return EShLangFragment;
}

SpvExecutionModel executionModelOf(ShaderStage stage) {
  switch (stage) {
  case ShaderStage::compute: return SpvExecutionModelGLCompute;
  case ShaderStage::vertex: return SpvExecutionModelVertex;
  case ShaderStage::pixel: break;
  }
  return SpvExecutionModelFragment;
}

/// The complaints of a front end's log, "ERROR: NAME:LINE: TEXT" each in a line, without its summary.
std::vector<CompilerMessage> readLog(const std::string& log) {
  constexpr std::string_view kError = "ERROR: ";
  std::vector<CompilerMessage> placed;
  std::vector<CompilerMessage> unplaced;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(kError)) continue;
    const std::size_t end = line.find_last_not_of(" \t\r") + 1;
    const std::size_t name = line.find(':', kError.size());
    std::size_t number = 0;
    const char* const start = line.data() + std::min(name, end - 1) + 1;
    const auto [stop, error] = std::from_chars(start, line.data() + end, number);
    const std::size_t text = static_cast<std::size_t>(stop - line.data());
    if (error == std::errc() && line.compare(text, 2, ": ") == 0) {
      placed.push_back({number, line.substr(text + 2, end - text - 2)});
    } else {
      unplaced.push_back({0, line.substr(kError.size(), end - kError.size())});
    }
  }
  return placed.empty() ? unplaced : placed;
}

/// Both messages of one mistake: what they say is the same.
bool saysTheSame(const std::vector<CompilerMessage>& a, const std::vector<CompilerMessage>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const CompilerMessage& x, const CompilerMessage& y) { return x.text == y.text; });
}

/// One parsed and linked shader.
class Parsed {
public:
  enum class Language { hlsl, glsl };

  Parsed(const std::string& text, Language language, const std::string& entryPoint, ShaderStage stage,
         const std::string& what, bool isAssembledText)
      : shader_(std::make_unique<glslang::TShader>(stageOf(stage))) {
    static const FrontEnd frontEnd;
    const bool isHlsl = language == Language::hlsl;
    const char* const strings = text.c_str();
    const int length = static_cast<int>(text.size());
    shader_->setStringsWithLengths(&strings, &length, 1);
    shader_->setEntryPoint(entryPoint.c_str());
    const glslang::EShClient client = isHlsl ? glslang::EShClientVulkan : glslang::EShClientOpenGL;
    shader_->setEnvInput(isHlsl ? glslang::EShSourceHlsl : glslang::EShSourceGlsl, stageOf(stage), client,
                         100);
    if (isHlsl) {
      shader_->setEnvClient(client, glslang::EShTargetVulkan_1_1);
      shader_->setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_3);
    }
    shader_->setHlslIoMapping(isHlsl);
    shader_->setAutoMapBindings(true);
    shader_->setAutoMapLocations(true);
    shader_->setShiftBinding(glslang::EResTexture, kFirstTextureBinding);
    shader_->setShiftBinding(glslang::EResSampler, kFirstSamplerBinding);
    shader_->setShiftBinding(glslang::EResUav, kFirstWritableBinding);

    const EShMessages messages =
        isHlsl ? static_cast<EShMessages>(EShMsgReadHlsl | EShMsgSpvRules | EShMsgVulkanRules)
               : EShMsgDefault;
    bool isRight = false;
    if (!survives([&] { isRight = shader_->parse(GetDefaultResources(), 100, false, messages); }))
      tellCrash(what, isAssembledText);
    if (!isRight) {
      throw CompileError(what + " does not compile", readLog(shader_->getInfoLog()), isAssembledText);
    }
    program_.addShader(shader_.get());
    if (!program_.link(messages) || (isHlsl && !program_.mapIO())) {
      throw CompileError(what + " does not link", readLog(program_.getInfoLog()), isAssembledText);
    }
  }

  /// `debugText` goes into the module, with the lines of it that instructions come from; null for neither.
  Words toSpirv(ShaderStage stage, const std::string* debugText) const {
    glslang::SpvOptions options;
    options.disableOptimizer = true;  // legalised below
    if (debugText != nullptr) {
      options.generateDebugInfo = true;
      program_.getIntermediate(stageOf(stage))->setSourceFile(kTextName);
      program_.getIntermediate(stageOf(stage))->addSourceText(debugText->data(), debugText->size());
    }
    Words words;
    glslang::GlslangToSpv(*program_.getIntermediate(stageOf(stage)), words, &options);
    return words;
  }

private:
  /// What the front end had told until then. It is left as it is, since nothing of it can be trusted.
  [[noreturn]] void tellCrash(const std::string& what, bool isAssembledText) {
    std::vector<CompilerMessage> told = readLog(shader_.release()->getInfoLog());
    if (told.empty()) throw CompileError("the compiler crashes on " + what, {}, true);
    throw CompileError(what + " does not compile", std::move(told), isAssembledText);
  }

  std::unique_ptr<glslang::TShader> shader_;
  glslang::TProgram program_;
};

/// The error of a text with the columns of its messages. The front end tells lines only, so it is asked once
/// more with each token in a line of its own.
CompileError withColumns(const CompileError& error, const std::string& hlsl, const std::string& entryPoint,
                         ShaderStage stage) {
  const TokenLines lines = onTokenLines(hlsl);
  try {
    const Parsed again(lines.text, Parsed::Language::hlsl, entryPoint, stage, error.what(), true);
  } catch (const CompileError& told) {
    if (!saysTheSame(error.messages(), told.messages())) return error;
    std::vector<CompilerMessage> messages = error.messages();
    for (std::size_t i = 0; i < messages.size(); ++i) {
      const std::size_t line = told.messages()[i].line;
      if (line == 0 || line > lines.places.size()) continue;
      messages[i].line = lines.places[line - 1].line;
      messages[i].column = lines.places[line - 1].column;
    }
    return CompileError(error.what(), std::move(messages), true);
  }
  return error;
}

Words parseToSpirv(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage, bool debug) {
  try {
    const Parsed parsed(hlsl, Parsed::Language::hlsl, entryPoint, stage, "the generated shader", true);
    return parsed.toSpirv(stage, debug ? &hlsl : nullptr);
  } catch (const CompileError& error) {
    throw withColumns(error, hlsl, entryPoint, stage);
  }
}

/// Gathers what the SPIR-V tools say.
class Complaints {
public:
  spvtools::MessageConsumer consumer() {
    return [this](spv_message_level_t level, const char*, const spv_position_t&, const char* message) {
      if (level <= SPV_MSG_ERROR) messages_.push_back({0, message});
    };
  }
  const std::vector<CompilerMessage>& messages() const noexcept { return messages_; }

private:
  std::vector<CompilerMessage> messages_;
};

bool isValid(const Words& words) { return spvtools::SpirvTools(kEnvironment).Validate(words); }

void validate(const Words& words) {
  Complaints complaints;
  spvtools::SpirvTools tools(kEnvironment);
  tools.SetMessageConsumer(complaints.consumer());
  if (!tools.Validate(words)) throw CompileError("the SPIR-V is not valid", complaints.messages(), false);
}

using Passes = void (*)(spvtools::Optimizer&);

Words runPasses(const Words& words, Passes registerPasses) {
  Complaints complaints;
  spvtools::Optimizer optimizer(kEnvironment);
  optimizer.SetMessageConsumer(complaints.consumer());
  registerPasses(optimizer);
  spvtools::OptimizerOptions options;
  options.set_run_validator(false);
  Words optimised;
  if (!optimizer.Run(words.data(), words.size(), &optimised, options)) {
    throw CompileError("the SPIR-V optimizer fails", complaints.messages(), false);
  }
  return optimised;
}

/// What nothing reaches from the entry point is no part of the shader: translations leave it out, too.
void registerReached(spvtools::Optimizer& optimizer) {
  optimizer.RegisterPass(spvtools::CreateEliminateDeadFunctionsPass())
      .RegisterPass(spvtools::CreateDeadVariableEliminationPass());
}

/// What the HLSL front end makes of structures with textures is legal only after these passes, which put
/// every function where it is called.
void registerLegalization(spvtools::Optimizer& optimizer) { optimizer.RegisterLegalizationPasses(); }

/// For code whose functions stay. The optimizer's own list for size inlines them, and takes members out of
/// buffers, which shall be what a host was told.
void registerSizeOfFunctions(spvtools::Optimizer& optimizer) {
  using namespace spvtools;
  optimizer.RegisterPass(CreateEliminateDeadFunctionsPass())
      .RegisterPass(CreatePrivateToLocalPass())
      .RegisterPass(CreateMergeReturnPass())
      .RegisterPass(CreateScalarReplacementPass(0))
      .RegisterPass(CreateLocalMultiStoreElimPass())
      .RegisterPass(CreateCCPPass())
      .RegisterPass(CreateDeadBranchElimPass())
      .RegisterPass(CreateSimplificationPass())
      .RegisterPass(CreateScalarReplacementPass(0))
      .RegisterPass(CreateLocalMultiStoreElimPass())
      .RegisterPass(CreateIfConversionPass())
      .RegisterPass(CreateSimplificationPass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateBlockMergePass())
      .RegisterPass(CreateLocalAccessChainConvertPass())
      .RegisterPass(CreateLocalSingleBlockLoadStoreElimPass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateCopyPropagateArraysPass())
      .RegisterPass(CreateVectorDCEPass())
      .RegisterPass(CreateDeadInsertElimPass())
      .RegisterPass(CreateLocalSingleStoreElimPass())
      .RegisterPass(CreateBlockMergePass())
      .RegisterPass(CreateLocalMultiStoreElimPass())
      .RegisterPass(CreateRedundancyEliminationPass())
      .RegisterPass(CreateSimplificationPass())
      .RegisterPass(CreateAggressiveDCEPass())
      .RegisterPass(CreateCFGCleanupPass());
}

/// The smaller of two ways: with functions where they are called, or once each where that is legal.
Words optimiseSize(const Words& words, bool debug) {
  const auto finish = [debug](const Words& module) { return debug ? module : dropLocalNames(module); };
  Words inlined = finish(runPasses(words, registerSpeedPasses));
  if (!isValid(words)) return inlined;
  Words functions = finish(runPasses(words, registerSizeOfFunctions));
  return functions.size() < inlined.size() ? functions : inlined;
}

Words legaliseAndOptimise(const Words& words, const CompileOptions& options) {
  switch (options.optimization) {
  case Optimization::none: return runPasses(words, isValid(words) ? registerReached : registerLegalization);
  case Optimization::size: return optimiseSize(words, options.debug);
  case Optimization::speed: break;
  }
  return runPasses(words, registerSpeedPasses);
}

/// A cross-compilation of one module; everything made from it lives as long as it.
class CrossCompiler {
public:
  CrossCompiler(const Words& words, spvc_backend backend) {
    spvc_context context = nullptr;
    if (spvc_context_create(&context) != SPVC_SUCCESS) throw std::bad_alloc();
    context_.reset(context);
    spvc_parsed_ir module = nullptr;
    check(spvc_context_parse_spirv(context, words.data(), words.size(), &module));
    check(
        spvc_context_create_compiler(context, backend, module, SPVC_CAPTURE_MODE_TAKE_OWNERSHIP, &compiler_));
    check(spvc_compiler_create_compiler_options(compiler_, &options_));
  }

  void setNumber(spvc_compiler_option option, unsigned value) {
    check(spvc_compiler_options_set_uint(options_, option, value));
  }
  void setFlag(spvc_compiler_option option, bool value) {
    check(spvc_compiler_options_set_bool(options_, option, value ? SPVC_TRUE : SPVC_FALSE));
  }

  /// OpenGL has no separate textures and samplers: each pair becomes one, with the texture's name and number.
  void combineTextures() {
    check(spvc_compiler_build_combined_image_samplers(compiler_));
    const spvc_combined_image_sampler* pairs = nullptr;
    std::size_t count = 0;
    check(spvc_compiler_get_combined_image_samplers(compiler_, &pairs, &count));
    for (std::size_t i = 0; i < count; ++i) {
      const unsigned binding =
          spvc_compiler_get_decoration(compiler_, pairs[i].image_id, SpvDecorationBinding);
      spvc_compiler_set_name(compiler_, pairs[i].combined_id,
                             spvc_compiler_get_name(compiler_, pairs[i].image_id));
      spvc_compiler_set_decoration(compiler_, pairs[i].combined_id, SpvDecorationBinding,
                                   binding >= kFirstTextureBinding ? binding - kFirstTextureBinding
                                                                   : binding);
    }
  }

  /// The bindings of resources of a kind, and their numbers in the module.
  struct Resource {
    SpvId id;
    unsigned binding;
    unsigned location;
    std::string name;
  };
  std::vector<Resource> resources(spvc_resource_type kind) const {
    spvc_resources all = nullptr;
    check(spvc_compiler_create_shader_resources(compiler_, &all));
    const spvc_reflected_resource* list = nullptr;
    std::size_t count = 0;
    check(spvc_resources_get_resource_list_for_type(all, kind, &list, &count));
    std::vector<Resource> found;
    for (std::size_t i = 0; i < count; ++i) {
      found.push_back({list[i].id, spvc_compiler_get_decoration(compiler_, list[i].id, SpvDecorationBinding),
                       spvc_compiler_get_decoration(compiler_, list[i].id, SpvDecorationLocation),
                       list[i].name});
    }
    return found;
  }

  /// What the stage itself provides and the module reads.
  std::set<SpvBuiltIn> builtins() const {
    spvc_resources all = nullptr;
    check(spvc_compiler_create_shader_resources(compiler_, &all));
    const spvc_reflected_builtin_resource* list = nullptr;
    std::size_t count = 0;
    check(spvc_resources_get_builtin_resource_list_for_type(all, SPVC_BUILTIN_RESOURCE_TYPE_STAGE_INPUT,
                                                            &list, &count));
    std::set<SpvBuiltIn> found;
    for (std::size_t i = 0; i < count; ++i) found.insert(list[i].builtin);
    return found;
  }

  /// Every resource gets the number of its register for its binding.
  void bindAsRegisters() {
    for (const spvc_resource_type kind : kBoundKinds) {
      for (const Resource& resource : resources(kind)) {
        spvc_compiler_set_decoration(compiler_, resource.id, SpvDecorationBinding,
                                     registerNumber(resource.binding));
      }
    }
  }

  void bindForMetal(SpvExecutionModel stage) {
    for (const spvc_resource_type kind : kBoundKinds) {
      for (const Resource& resource : resources(kind)) {
        spvc_msl_resource_binding binding;
        spvc_msl_resource_binding_init(&binding);
        binding.stage = stage;
        binding.binding = resource.binding;
        const bool isElements = kind == SPVC_RESOURCE_TYPE_STORAGE_BUFFER;
        binding.msl_buffer = !isElements                                 ? registerNumber(resource.binding)
                             : resource.binding >= kFirstWritableBinding ? kMetalOutputBuffer
                                                                         : kMetalInputBuffer;
        binding.msl_texture = binding.msl_sampler = registerNumber(resource.binding);
        check(spvc_compiler_msl_add_resource_binding(compiler_, &binding));
      }
    }
  }

  std::string compile() {
    check(spvc_compiler_install_compiler_options(compiler_, options_));
    const char* text = nullptr;
    check(spvc_compiler_compile(compiler_, &text));
    return text;
  }

private:
  static constexpr spvc_resource_type kBoundKinds[] = {
      SPVC_RESOURCE_TYPE_UNIFORM_BUFFER, SPVC_RESOURCE_TYPE_STORAGE_BUFFER, SPVC_RESOURCE_TYPE_SEPARATE_IMAGE,
      SPVC_RESOURCE_TYPE_SEPARATE_SAMPLERS};

  static unsigned registerNumber(unsigned binding) {
    for (const unsigned first : {kFirstWritableBinding, kFirstSamplerBinding, kFirstTextureBinding}) {
      if (binding >= first) return binding - first;
    }
    return binding;
  }

  struct DestroyContext {
    void operator()(spvc_context context) const { spvc_context_destroy(context); }
  };

  void check(spvc_result result) const {
    if (result == SPVC_SUCCESS) return;
    throw CompileError("the SPIR-V cannot be translated",
                       {{0, spvc_context_get_last_error_string(context_.get())}}, false);
  }

  std::unique_ptr<spvc_context_s, DestroyContext> context_;
  spvc_compiler compiler_ = nullptr;
  spvc_compiler_options options_ = nullptr;
};

std::string toHlsl(const Words& words, ShaderStage stage, ShaderModel model) {
  CrossCompiler compiler(words, SPVC_BACKEND_HLSL);
  compiler.setNumber(SPVC_COMPILER_OPTION_HLSL_SHADER_MODEL, model == ShaderModel::sm60 ? 60 : 50);
  compiler.bindAsRegisters();
  std::string text = compiler.compile();
  Parsed(text, Parsed::Language::hlsl, "main", stage, "the translated HLSL", false);
  return text;
}

std::string toGlsl(const Words& words, ShaderStage stage, const Dialect& dialect) {
  CrossCompiler compiler(words, SPVC_BACKEND_GLSL);
  compiler.setNumber(SPVC_COMPILER_OPTION_GLSL_VERSION, dialect.number);
  compiler.setFlag(SPVC_COMPILER_OPTION_GLSL_ES, dialect.isEmbedded);
  compiler.setFlag(SPVC_COMPILER_OPTION_GLSL_ENABLE_420PACK_EXTENSION, false);
  compiler.setFlag(SPVC_COMPILER_OPTION_GLSL_ES_DEFAULT_FLOAT_PRECISION_HIGHP, dialect.isHighByDefault);
  compiler.combineTextures();
  std::string text = compiler.compile();
  Parsed(text, Parsed::Language::glsl, "main", stage, std::string("the translated ") + dialect.name, false);
  return text;
}

/// What a version that lacks much of the later ones has against a module: in the shader's words where they
/// are known, else in those of the compiler that refused the text.
std::vector<CompilerMessage> findObstacles(const Words& words, const std::vector<CompilerMessage>& messages) {
  std::vector<CompilerMessage> obstacles;
  const CrossCompiler module(words, SPVC_BACKEND_NONE);
  for (const auto& buffer : module.resources(SPVC_RESOURCE_TYPE_STORAGE_BUFFER)) {
    obstacles.push_back({0, "it has no storage buffers: `" + buffer.name + "`"});
  }
  for (const auto& image : module.resources(SPVC_RESOURCE_TYPE_STORAGE_IMAGE)) {
    obstacles.push_back({0, "it has no textures to write to: `" + image.name + "`"});
  }
  for (const std::string& name : findNewOperations(words)) {
    obstacles.push_back({0, "it has no function for `" + name + "`"});
  }
  if (!obstacles.empty()) return obstacles;
  for (const CompilerMessage& message : messages) {
    if (message.text.find("compilation terminated") == message.text.npos) obstacles.push_back(message);
  }
  return obstacles;
}

/// Extensions are there on some machines only, and in browsers mostly not.
void refuseExtensions(const std::string& text) {
  constexpr std::string_view kExtension = "\n#extension ";
  const std::size_t start = text.find(kExtension);
  if (start == text.npos) return;
  const std::size_t name = start + kExtension.size();
  throw CompileError(
      "an extension is needed",
      {{0, "it needs the extension `" + text.substr(name, text.find_first_of(" :\n", name) - name) + "`"}},
      false);
}

std::string toMsl(const Words& words, ShaderStage stage) {
  CrossCompiler compiler(words, SPVC_BACKEND_MSL);
  compiler.bindForMetal(executionModelOf(stage));
  compiler.setNumber(SPVC_COMPILER_OPTION_MSL_VERSION, SPVC_MAKE_MSL_VERSION(2, 1, 0));
  return compiler.compile();
}

/// ", `hlsl` and `msl`": the targets that have what the module needs, behind the one that is the module
/// itself.
std::string targetsOf(const Words& words, ShaderStage stage) {
  std::vector<std::string> able;
  const auto add = [&](const char* name, const auto& translate) {
    try {
      translate();
      able.push_back(name);
    } catch (const CompileError&) {
    }
  };
  add("`hlsl`", [&] { toHlsl(words, stage, ShaderModel::sm50); });
  add("`glsl` (4.50)", [&] { toGlsl(words, stage, kGlsl450); });
  add("`essl`", [&] { toGlsl(words, stage, kEssl320); });
  add("`msl`", [&] { toMsl(words, stage); });
  std::string text = "`spirv`";
  for (const std::string& name : able) text += (&name == &able.back() ? " and " : ", ") + name;
  return (able.empty() ? "the target " : "the targets ") + text + " can";
}

/// A version that lacks much of the later ones: what it cannot express is told with the targets that can.
std::string toOldGlsl(const Words& words, ShaderStage stage, const Dialect& dialect) {
  try {
    std::string text = toGlsl(words, stage, dialect);
    refuseExtensions(text);
    return text;
  } catch (const CompileError& error) {
    throw CompileError(std::string("the shader cannot be expressed in ") + dialect.name + "; " +
                           targetsOf(words, stage),
                       findObstacles(words, error.messages()), false);
  }
}

std::string bytesOf(const Words& words) {
  std::string bytes;
  bytes.reserve(words.size() * sizeof(std::uint32_t));
  for (const std::uint32_t word : words) {
    for (unsigned shift = 0; shift < 32; shift += 8)
      bytes.push_back(static_cast<char>((word >> shift) & 0xffu));
  }
  return bytes;
}

}  // namespace

bool hasCompilers() noexcept { return true; }

Words compileToSpirv(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                     const CompileOptions& options) {
  refuseTooDeep(hlsl);
  const Words unoptimised = parseToSpirv(hlsl, entryPoint, stage, options.debug);
  Words words = nameModuleInterface(legaliseAndOptimise(unoptimised, options));
  validate(words);
  return words;
}

std::string translate(const Words& words, ShaderStage stage, ShaderTarget target,
                      const CompileOptions& options) {
  if (const std::string refusal = refusalOf(stage, target, options); !refusal.empty()) {
    throw CompileError(refusal, {}, false);
  }
  switch (target) {
  case ShaderTarget::hlsl: return toHlsl(words, stage, options.shaderModel);
  case ShaderTarget::glsl:
    return options.glslVersion == GlslVersion::glsl330 ? toOldGlsl(words, stage, kGlsl330)
                                                       : toGlsl(words, stage, kGlsl450);
  case ShaderTarget::essl: return toGlsl(words, stage, kEssl320);
  case ShaderTarget::essl300: return toOldGlsl(words, stage, kEssl300);
  case ShaderTarget::msl: return toMsl(words, stage);
  case ShaderTarget::spirv: break;
  }
  return bytesOf(words);
}

std::string compilerVersions() {
  const glslang::Version front = glslang::GetVersion();
  unsigned major = 0;
  unsigned minor = 0;
  unsigned patch = 0;
  spvc_get_version(&major, &minor, &patch);
  std::ostringstream text;
  text << "glslang " << front.major << '.' << front.minor << '.' << front.patch << front.flavor << ", "
       << spvSoftwareVersionDetailsString() << ", SPIRV-Cross " << major << '.' << minor << '.' << patch
       << ' ' << spvc_get_commit_revision_and_timestamp();
  return text.str();
}

void markUsedParts(ShaderInterface& shader, const Words& words) {
  const CrossCompiler module(words, SPVC_BACKEND_NONE);
  const auto mark = [&](auto& things, spvc_resource_type resources, char kind, unsigned first) {
    std::set<std::size_t> bindings;
    for (const auto& resource : module.resources(resources)) bindings.insert(resource.binding);
    for (auto& thing : things) {
      if (thing.place.kind == kind) thing.place.isUsed = bindings.contains(thing.place.number + first);
    }
  };
  mark(shader.buffers, SPVC_RESOURCE_TYPE_UNIFORM_BUFFER, 'b', 0);
  mark(shader.buffers, SPVC_RESOURCE_TYPE_STORAGE_BUFFER, 't', kFirstTextureBinding);
  mark(shader.buffers, SPVC_RESOURCE_TYPE_STORAGE_BUFFER, 'u', kFirstWritableBinding);
  mark(shader.textures, SPVC_RESOURCE_TYPE_SEPARATE_IMAGE, 't', kFirstTextureBinding);
  mark(shader.samplers, SPVC_RESOURCE_TYPE_SEPARATE_SAMPLERS, 's', kFirstSamplerBinding);

  std::set<std::size_t> locations;
  std::set<std::string> names;
  for (const auto& input : module.resources(SPVC_RESOURCE_TYPE_STAGE_INPUT)) {
    locations.insert(input.location);
    names.insert(input.name);
  }
  const std::set<SpvBuiltIn> builtins = module.builtins();
  for (InterfaceAttribute& attribute : shader.attributes) {
    attribute.isUsed = attribute.location ? locations.contains(*attribute.location)
                       : attribute.builtin.empty()
                           ? names.contains(attribute.name)
                           : builtins.contains(attribute.builtin == "fragCoord" ? SpvBuiltInFragCoord
                                                                                : SpvBuiltInFrontFacing);
  }
  // Nothing is left out of what a vertex stage gives.
  for (InterfaceAttribute& varying : shader.varyings) varying.isUsed = true;
}

std::string compileShader(const std::string& hlsl, const std::string& entryPoint, ShaderStage stage,
                          ShaderTarget target, const CompileOptions& options) {
  return translate(compileToSpirv(hlsl, entryPoint, stage, options), stage, target, options);
}

}  // namespace TolmSDK::Graphics::sfg::host

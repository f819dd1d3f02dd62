#include "tests/numbers/hlsl_compiler.h"

#include <stdexcept>

#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <spirv-tools/libspirv.hpp>

namespace numbers_test {

namespace {

// Starts the compiler library once and ends it with the process.
struct CompilerProcess {
  CompilerProcess() { glslang::InitializeProcess(); }
  ~CompilerProcess() { glslang::FinalizeProcess(); }
  CompilerProcess(CompilerProcess const&) = delete;
  CompilerProcess& operator=(CompilerProcess const&) = delete;
};

[[noreturn]] void refuse(std::string const& name, std::string const& complaint, std::string const& hlsl) {
  throw std::runtime_error(name + ": " + complaint + "\nin\n" + hlsl);
}

}  // namespace

std::vector<std::uint32_t> compileCompute(std::string const& name, std::string const& hlsl) {
  static CompilerProcess const process;
  EShMessages const messages = static_cast<EShMessages>(EShMsgReadHlsl | EShMsgSpvRules | EShMsgVulkanRules);

  char const* const text = hlsl.c_str();
  glslang::TShader shader(EShLangCompute);
  shader.setStrings(&text, 1);
  shader.setEntryPoint("main");
  shader.setEnvInput(glslang::EShSourceHlsl, EShLangCompute, glslang::EShClientVulkan, 100);
  shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_1);
  shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_3);
  if (!shader.parse(GetDefaultResources(), 100, false, messages)) {
    refuse(name, shader.getInfoLog(), hlsl);
  }
  glslang::TProgram program;
  program.addShader(&shader);
  if (!program.link(messages)) {
    refuse(name, program.getInfoLog(), hlsl);
  }

  // What the HLSL front end makes is legal only after the optimizer's legalization, which runs here.
  std::vector<std::uint32_t> spirv;
  glslang::SpvOptions options;
  options.disableOptimizer = false;
  glslang::GlslangToSpv(*program.getIntermediate(EShLangCompute), spirv, &options);

  std::string complaint;
  spvtools::SpirvTools tools(SPV_ENV_VULKAN_1_1);
  tools.SetMessageConsumer(
      [&complaint](spv_message_level_t, char const*, spv_position_t const&, char const* message) {
        complaint += message;
        complaint += '\n';
      });
  if (!tools.Validate(spirv)) {
    refuse(name, "invalid SPIR-V: " + complaint, hlsl);
  }
  return spirv;
}

}  // namespace numbers_test

#include "tools/target_options.h"

#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

using host::ShaderTarget;

std::string wordFor(const std::optional<ShaderTarget>& target) {
  for (const auto& [word, meaning] : compiledTargets()) {
    if (meaning == target) return word;
  }
  return "assembled";
}

}  // namespace

host::CompileOptions TargetOptions::compileOptions() const {
  host::CompileOptions options;
  options.glslVersion = glslVersion.value_or(options.glslVersion);
  options.shaderModel = shaderModel.value_or(options.shaderModel);
  options.optimization = optimization.value_or(options.optimization);
  options.debug = debug;
  return options;
}

TargetChoices compiledTargets() {
  return {{"spirv", ShaderTarget::spirv}, {"hlsl", ShaderTarget::hlsl}, {"glsl", ShaderTarget::glsl},
          {"essl", ShaderTarget::essl},   {"msl", ShaderTarget::msl},   {"essl300", ShaderTarget::essl300}};
}

void declareTargetOptions(CLI::App& app, const TargetChoices& targets, const std::string& help,
                          TargetOptions& options) {
  declareChoice<std::optional<ShaderTarget>>(app, "--target", targets, options.target, help);
  declareChoice<std::optional<host::GlslVersion>>(
      app, "--glsl-version", {{"450", host::GlslVersion::glsl450}, {"330", host::GlslVersion::glsl330}},
      options.glslVersion, "version of `--target glsl`: `450` is 4.50, `330` is 3.30");
  declareChoice<std::optional<host::ShaderModel>>(
      app, "--shader-model", {{"5.0", host::ShaderModel::sm50}, {"6.0", host::ShaderModel::sm60}},
      options.shaderModel, "version of `--target hlsl`");
  declareChoice<std::optional<host::Optimization>>(app, "--optimize",
                                                   {{"speed", host::Optimization::speed},
                                                    {"size", host::Optimization::size},
                                                    {"none", host::Optimization::none}},
                                                   options.optimization,
                                                   "what the module, and so each translation, is optimised "
                                                   "for; `none` keeps functions and variables");
  app.add_flag("--debug", options.debug,
               "keep names and lines in the module, and the text that they are of (`--target spirv`)");
}

void checkTargetOptions(const TargetOptions& options, host::ShaderStage stage) {
  const auto refuse = [&](const std::string& reason) {
    throw host::InputError(reason + "; the target is `" + wordFor(options.target) + "`");
  };
  if (options.glslVersion && options.target != ShaderTarget::glsl) {
    refuse("`--glsl-version` chooses the version of `--target glsl`");
  }
  if (options.shaderModel && options.target != ShaderTarget::hlsl) {
    refuse("`--shader-model` chooses the version of `--target hlsl`");
  }
  if (options.debug && options.target != ShaderTarget::spirv) {
    refuse("`--debug` keeps names and lines in a module (`--target spirv`)");
  }
  if (!options.target && options.optimization) {
    refuse("`--optimize` is for what is compiled");
  }
  if (!options.target) return;
  const std::string refusal = host::refusalOf(stage, *options.target, options.compileOptions());
  if (!refusal.empty()) throw host::InputError(refusal);
}

std::string givenTargetOption(const TargetOptions& options) {
  if (options.glslVersion) return "--glsl-version";
  if (options.shaderModel) return "--shader-model";
  if (options.optimization) return "--optimize";
  return options.debug ? "--debug" : "";
}

}  // namespace TolmSDK::Graphics::sfg::tools

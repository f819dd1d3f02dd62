#pragma once

// Options shared by the commands that compile: for what, and how.

#include <optional>

#include "sfg/host/target.h"
#include "tools/collapse_options.h"

namespace TolmSDK::Graphics::sfg::tools {

struct TargetOptions {
  std::optional<host::ShaderTarget> target = host::ShaderTarget::spirv;  ///< none: `assembled`
  // Those that were given.
  std::optional<host::GlslVersion> glslVersion;
  std::optional<host::ShaderModel> shaderModel;
  std::optional<host::Optimization> optimization;
  bool debug = false;

  host::CompileOptions compileOptions() const;
};

using TargetChoices = std::vector<std::pair<std::string, std::optional<host::ShaderTarget>>>;
/// The targets of compilers.
TargetChoices compiledTargets();

/// --target, which takes one of the targets, and everything that decides how it is compiled.
void declareTargetOptions(CLI::App& app, const TargetChoices& targets, const std::string& help,
                          TargetOptions& options);
/// Throws InputError for options that do not go together, and for a stage that the target does not have.
void checkTargetOptions(const TargetOptions& options, host::ShaderStage stage);
/// The first of the options that decide how to compile, if any was given; else empty.
std::string givenTargetOption(const TargetOptions& options);

}  // namespace TolmSDK::Graphics::sfg::tools

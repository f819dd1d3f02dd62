#pragma once

// Options shared by the commands that collapse a graph.

#include <CLI/CLI.hpp>

#include <optional>

#include "host/collapse_job.h"
#include "host/diagnostics.h"
#include "host/shader_assembly.h"

namespace TolmSDK::Graphics::sfg::tools {

/// -L, -I and --language.
void declareLibraryOptions(CLI::App& app, host::CollapseSettings& settings);
/// GRAPH and everything that decides how it is collapsed.
void declareCollapseOptions(CLI::App& app, host::CollapseSettings& settings);
/// --stage.
void declareStageOption(CLI::App& app, host::ShaderStage& stage);
/// -o.
void declareOutputOption(CLI::App& app, std::string& file);

/// How a collapse ended: with a result, with the answer null, or with an exception of the generator.
enum class Outcome { done, null, thrown };

/// Collapses. A refusal is written: the generator's message as it stands, and the place in the documents in a
/// line of its own.
Outcome collapse(host::CollapseJob& job, host::Diagnostics& diagnostics);

/// The complete shader of a job that is done; nothing when it cannot be one, which is then written.
std::optional<host::AssembledShader> assemble(const host::CollapseJob& job, host::ShaderStage stage,
                                              host::Diagnostics& diagnostics);

}  // namespace TolmSDK::Graphics::sfg::tools

#include "tools/collapse_options.h"

#include "host/diagnostics/refusal_place.h"
#include "host/diagnostics/warnings.h"
#include "host/documents/input_error.h"
#include "host/job/called_expressions.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"
#include "tools/depfile.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// A folder option: one folder each time, repeatable, in order.
void declareFolders(CLI::App& app, const char* names, std::vector<std::string>& folders, const char* help) {
  app.add_option(names, folders, help)->type_name("DIR")->allow_extra_args(false);
}

/// A level of detail: a finite number.
std::string checkFinite(const std::string& text) {
  char* end = nullptr;
  const float value = std::strtof(text.c_str(), &end);
  const bool finite = end != text.c_str() && *end == '\0' && value - value == 0.0f;
  return finite ? std::string() : "`" + text + "` is not a finite number";
}

void reportRefusal(const host::CollapseJob& job, std::wstring_view message, Diagnostics& diagnostics) {
  const host::RefusalPlace place = host::findRefusalPlace(job, message);
  diagnostics.note(place.place, place.text);
}

}  // namespace

void declareLibraryOptions(CLI::App& app, host::CollapseSettings& settings) {
  declareFolders(
      app, "-L,--library", settings.libraryFolders,
      "load the fragment libraries (*.fraglib) of a folder; a later folder overrides an earlier one");
  declareFolders(app, "-I,--include", settings.includeFolders,
                 "register the include files (*.h) of a folder");
  app.add_option("--language", settings.language, "language to generate")
      ->type_name("NAME")
      ->capture_default_str();
}

void declareCollapseOptions(CLI::App& app, host::CollapseSettings& settings) {
  app.add_option("GRAPH", settings.graphFile, "graph document (JSON) to collapse")
      ->type_name("FILE")
      ->required();
  declareLibraryOptions(app, settings);
  declareChoice<host::CollapseTool>(
      app, "--tool",
      {{"default", host::CollapseTool::standard}, {"lightloop", host::CollapseTool::lightLoop}},
      settings.tool,
      "`default`: one function of the graph's inputs and outputs; `lightloop`: a lit surface, accumulated "
      "over the "
      "lights of the environment");
  app.add_option("--environment", settings.environmentFile,
                 "environment document (JSON): lights, output fragment")
      ->type_name("FILE");
  app.add_option("--surface-lod", settings.surfaceLod, "level of detail of surface fragments")
      ->type_name("X")
      ->check(checkFinite)
      ->capture_default_str();
  app.add_option("--light-lod", settings.lightLod, "level of detail of light fragments")
      ->type_name("X")
      ->check(checkFinite)
      ->capture_default_str();
  app.add_option("--function-name", settings.functionName,
                 "name of the generated function (the light loop's is always `AccumulatedLitSurface`)")
      ->type_name("N")
      ->default_str("CollapsedFunction");
  app.add_option("--profile-name", settings.profileName,
                 "profile name of the result (the light loop's is `default`)")
      ->type_name("N")
      ->default_str("default");
}

void declareStageOption(CLI::App& app, host::ShaderStage& stage) {
  declareChoice<host::ShaderStage>(
      app, "--stage", {{"pixel", host::ShaderStage::pixel}, {"compute", host::ShaderStage::compute}}, stage,
      "stage of the complete shader");
}

void declareOutputOption(CLI::App& app, std::string& file) {
  app.add_option("-o,--output", file, "write the result to a file, as a whole or not at all")
      ->type_name("FILE")
      ->default_str("standard output");
}

void declareDepfileOptions(CLI::App& app, DepfileOptions& options) {
  app.add_flag(
      "--MD", options.wanted,
      "also write a dependency file for Make or Ninja: the result's file name and `.d` (also spelled `-MD`)");
  app.add_option("--MF", options.file, "name of the dependency file (also spelled `-MF`)")->type_name("FILE");
}

void checkDepfile(const DepfileOptions& options, const std::string& output) {
  if (options.file.empty() ? options.wanted && output.empty() : output.empty()) {
    throw host::InputError("a dependency file needs the result's name (`-o`)");
  }
}

void writeDepfile(const DepfileOptions& options, const std::string& output, const host::CollapseJob& job) {
  if (!options.wanted && options.file.empty()) return;
  writeOutput(options.file.empty() ? output + ".d" : options.file, writeDepfile(job, output));
}

Outcome collapse(host::CollapseJob& job, bool completeShader, Diagnostics& diagnostics) {
  try {
    job.run();
  } catch (const host::CalledExpressionError& refusal) {
    for (const host::CalledExpression& wire : refusal.wires()) diagnostics.error(wire.place, wire.text);
    return Outcome::thrown;
  } catch (const Exception& refusal) {
    diagnostics.plain(toUtf8(refusal.getMessage()));
    reportRefusal(job, refusal.getMessage(), diagnostics);
    return Outcome::thrown;
  }
  if (job.result() != nullptr) {
    for (const host::Warning& warning : host::findWarnings(job, completeShader)) {
      diagnostics.warning(warning.place, warning.text);
    }
    return Outcome::done;
  }
  diagnostics.error(std::string(), "the graph cannot be collapsed: an output cannot be evaluated");
  reportRefusal(job, std::wstring_view(), diagnostics);
  return Outcome::null;
}

std::optional<host::AssembledShader> assemble(const host::CollapseJob& job, host::ShaderStage stage,
                                              Diagnostics& diagnostics) {
  try {
    host::AssembledShader assembled = host::assembleShader(job, stage);
    for (const WString& name : assembled.missingIncludes) {
      diagnostics.warning(std::string(), "the include file `" + toUtf8(name) +
                                             "` is in no include folder, or empty (see -I)");
    }
    return assembled;
  } catch (const host::AssemblyError& error) {
    diagnostics.error(job.document().file(), error.what());
    return std::nullopt;
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools

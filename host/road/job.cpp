#include "sfg/host/job.h"

#include "host/diagnostics/compile_explanation.h"
#include "host/diagnostics/faulty_fragments.h"
#include "host/diagnostics/light_types.h"
#include "host/diagnostics/refusal_place.h"
#include "host/diagnostics/shader_arguments.h"
#include "host/diagnostics/warnings.h"
#include "host/diagnostics/wire_types.h"
#include "host/documents/diagnose.h"
#include "host/drawing/dot_text.h"
#include "host/job/called_expressions.h"
#include "host/job/collapse_job.h"
#include "host/job/collapse_json.h"
#include "host/job/color_steps.h"
#include "host/job/input_files.h"
#include "host/shader/shader_assembly.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Whether the error is no more than where the graph was when it happened.
bool isOnlyAPlace(const std::vector<Diagnostic>& found) {
  return found.front().identifier == identifierOf(Finding::collapsePlace);
}

/// The generator's words stand behind the cause, where it is known.
[[noreturn]] void throwRefused(const CollapseJob& job, const Exception& refusal) {
  const std::string message = toUtf8(refusal.getMessage());
  std::vector<Diagnostic> told = findRefusalPlace(job, refusal.getMessage());
  if (isOnlyAPlace(told)) {
    told.insert(told.begin(), diagnose(Finding::generator, Severity::message, std::string(), {}, message));
  } else if (told.back().identifier != identifierOf(Finding::notLoaded)) {
    const Diagnostic& last = told.back();
    told.push_back(diagnose(Finding::generator, Severity::note, last.file, {last.line, last.column},
                            "the generator says \"" + message + "\""));
  }
  throw CollapseError(CollapseError::Reason::refused, message, std::move(told));
}

[[noreturn]] void throwNoResult(const CollapseJob& job) {
  const std::string reason = "the graph cannot be collapsed: an output cannot be evaluated";
  std::vector<Diagnostic> told = findRefusalPlace(job, std::wstring_view());
  if (isOnlyAPlace(told)) {
    told.insert(told.begin(), diagnose(Finding::noResult, Severity::error, std::string(), {}, reason));
  }
  throw CollapseError(CollapseError::Reason::noResult, reason, std::move(told));
}

Shader shaderOf(const AssembledShader& assembled, ShaderStage stage, NameStyle names) {
  Shader shader;
  shader.stage = stage;
  shader.names = names;
  shader.text = toUtf8(assembled.shader.getCompleteShader());
  shader.entryPoint = assembled.entryPoint;
  for (std::size_t i = 0; i < assembled.shader.getNumUniforms(); ++i) {
    shader.uniforms.push_back(toUtf8(assembled.shader.getUniformName(i)));
  }
  for (const WString& name : assembled.missingIncludes) shader.missingIncludes.push_back(toUtf8(name));
  return shader;
}

/// The shader that a job assembled last.
struct Assembled {
  ShaderStage stage;
  NameStyle names;
  MeshLayout mesh;
  AssembledShader shader;
};

/// The shader of the stage with names of the style: the last one, or made anew and then that. When it cannot
/// be assembled, the last one stays.
const AssembledShader& assembledOf(const CollapseJob& job, ShaderStage stage, NameStyle names,
                                   const MeshLayout& mesh, std::optional<Assembled>& last) {
  if (!last || last->stage != stage || last->names != names || last->mesh != mesh) {
    last = Assembled{stage, names, mesh, assembleShader(job, stage, names, mesh)};
  }
  return last->shader;
}

/// The same for any mesh: one that has all that a vertex stage needs changes nothing of its text.
const AssembledShader& assembledOf(const CollapseJob& job, ShaderStage stage, NameStyle names,
                                   std::optional<Assembled>& last) {
  const bool isLast = last && last->stage == stage && last->names == names;
  return assembledOf(job, stage, names, isLast ? last->mesh : MeshLayout(), last);
}

}  // namespace

struct Job::State {
  std::shared_ptr<const LibrarySet> libraries;
  CollapseJob job;
  std::optional<Assembled> last = std::nullopt;
};

Job::Job(std::shared_ptr<const LibrarySet> libraries, const Document& graph, const CollapseOptions& options,
         const std::optional<Document>& environment) {
  if (!libraries) throw InputError("a job needs a library set");
  const std::shared_ptr<const LoadedLibraries> loaded = libraries->loaded();
  state_.reset(new State{std::move(libraries), CollapseJob(loaded, graph, environment, options)});
}
Job::Job(std::shared_ptr<const LibrarySet> libraries, RefPtr<IHostGraph const> graph,
         const CollapseOptions& options, const std::optional<Document>& environment) {
  if (!libraries) throw InputError("a job needs a library set");
  const std::shared_ptr<const LoadedLibraries> loaded = libraries->loaded();
  state_.reset(new State{std::move(libraries), CollapseJob(loaded, graph, environment, options)});
}
Job::Job(Job&& other) noexcept = default;
Job& Job::operator=(Job&& other) noexcept = default;
Job::~Job() = default;

std::string Job::colorSpace() const { return colorSpaceOf(state_->job); }

void Job::collapse() {
  if (isCollapsed()) return;
  CollapseJob& job = state_->job;
  try {
    job.run();
  } catch (const CalledExpressionError& error) {
    throw CollapseError(CollapseError::Reason::calledExpression, error.what(), error.wires());
  } catch (const Exception& refusal) {
    throwRefused(job, refusal);
  }
  if (!isCollapsed()) throwNoResult(job);
}

bool Job::isCollapsed() const noexcept { return state_->job.result() != nullptr; }

Job::State& Job::collapsed() const {
  if (!isCollapsed()) throw std::logic_error("the job is not collapsed");
  return *state_;
}

std::vector<Diagnostic> Job::problems() const {
  std::vector<Diagnostic> problems = state_->job.document().problems();
  const std::vector<Diagnostic>& scene = state_->job.environment().problems();
  problems.insert(problems.end(), scene.begin(), scene.end());
  return problems;
}

std::vector<Diagnostic> Job::errors() const {
  std::vector<Diagnostic> errors = findFaultyFragments(state_->job);
  const std::vector<Diagnostic> types = findTypeErrors(state_->job, Severity::error);
  errors.insert(errors.end(), types.begin(), types.end());
  const std::vector<Diagnostic> lights = findLightTypeErrors(state_->job, Severity::error);
  errors.insert(errors.end(), lights.begin(), lights.end());
  const std::vector<Diagnostic> arguments = findShaderArguments(state_->job, Severity::error);
  errors.insert(errors.end(), arguments.begin(), arguments.end());
  return errors;
}

std::vector<Diagnostic> Job::warnings(bool completeShader) const {
  return findWarnings(collapsed().job, completeShader);
}

Shader Job::assemble(ShaderStage stage, NameStyle names, const MeshLayout& mesh) const {
  State& state = collapsed();
  return shaderOf(assembledOf(state.job, stage, names, mesh, state.last), stage, names);
}

ShaderInterface Job::reflect(ShaderStage stage, NameStyle names, const MeshLayout& mesh) const {
  State& state = collapsed();
  ShaderInterface shader = reflectShader(assembledOf(state.job, stage, names, mesh, state.last));
  shader.files = sourceFiles(state.job, shader.includes);
  return shader;
}

SourceMap Job::mapSources(ShaderStage stage, NameStyle names) const {
  State& state = collapsed();
  return SourceMap(state.job, assembledOf(state.job, stage, names, state.last));
}

std::vector<Diagnostic> Job::explain(const Shader& shader, const CompileError& error) const {
  State& state = collapsed();
  if (error.inAssembledText()) {
    const AssembledShader& assembled = assembledOf(state.job, shader.stage, shader.names, state.last);
    if (toUtf8(assembled.shader.getCompleteShader()) == shader.text)
      return explainCompileError(state.job, assembled, error);
  }
  // Another text, or what a compiler made of it: nothing is known of its lines.
  std::vector<Diagnostic> diagnostics{
      diagnose(Finding::compileError, Severity::error, state.job.document().file(), {}, error.what())};
  for (const CompilerMessage& message : error.messages()) {
    const std::size_t line = error.inAssembledText() ? message.line : 0;
    diagnostics.push_back(
        diagnose(Finding::compileError, Severity::error, "generated", {line, 0}, message.text));
  }
  return diagnostics;
}

std::vector<std::string> Job::files() const { return inputFiles(collapsed().job); }

const IShaderFragment& Job::result() const { return *collapsed().job.result(); }

std::string Job::resultJson() const {
  return writeCollapseJson(state_->job.result(), state_->job.libraries().includes());
}

std::string Job::drawing(const std::string& title, const std::map<std::string, std::string>& pictures) const {
  GraphDrawing drawing = drawGraph(collapsed().job);
  for (DrawnNode& node : drawing.nodes) {
    const auto picture = pictures.find(node.name);
    if (node.kind == DrawnNode::Kind::node && picture != pictures.end()) node.picture = picture->second;
  }
  return writeDot(drawing, title);
}

}  // namespace TolmSDK::Graphics::sfg::host

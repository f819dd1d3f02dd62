#include "tests/shaders/shader_fixture.h"

#include <fstream>

#include "host/diagnostics/warnings.h"
#include "host/modules/shader_compiler.h"
#include "host/shader/shader_target.h"
#include "tests/shaders/interface_facts.h"
#include "tests/support/job_files.h"
#include "tolmsdk/unicode.h"

namespace shaders_test {

namespace {

using namespace sfg::host;
namespace fs = std::filesystem;

const std::vector<std::string> kLibrary = {"library"};

const FragmentFiles& libraryFiles() { return standardLibrary().files(); }

/// Compares what the interface says with what is read from the target's module or text.
std::string checkInterface(const AssembledShader& assembled, const std::vector<std::uint32_t>& spirv,
                           const TargetVersion& version) {
  const ShaderTarget target = version.target;
  ShaderInterface shader = reflectShader(assembled, target, version.options);
  markUsed(shader, spirv);
  const std::string text = translate(spirv, shader.stage, target, version.options);
  const Facts found = target == ShaderTarget::spirv ? factsOfModule(spirv)
                      : target == ShaderTarget::msl ? factsOfMetal(text)
                                                    : factsOfTranslation(text, target, shader.stage);
  const std::string wrong = difference(factsOf(shader), found);
  if (wrong.empty()) return {};
  return std::string(targetName(target)) + " " + shader.version + ":\n" + wrong +
         (target == ShaderTarget::spirv ? "" : text);
}

/// Of every version of every target, or of SPIR-V alone.
std::string checkVersions(const AssembledShader& assembled, const std::vector<std::uint32_t>& spirv,
                          Optimization optimization, bool everyTarget) {
  std::string wrong;
  for (TargetVersion& version : targetVersions(assembled.reflection.stage)) {
    version.options.optimization = optimization;
    wrong += checkInterface(assembled, spirv, version);
    if (!everyTarget) break;
  }
  return wrong;
}

/// Compiles the vertex stage of a pixel stage, and compares the two modules.
std::string checkPair(const CollapseJob& job, const AssembledShader& pixel,
                      const std::vector<std::uint32_t>& pixelModule, Optimization optimization,
                      bool everyTarget) {
  CompileOptions options;
  options.optimization = optimization;
  const AssembledShader vertex = assembleShader(job, ShaderStage::vertex, NameStyle::readable);
  const std::vector<std::uint32_t> spirv = compileToSpirv(TolmSDK::toUtf8(vertex.shader.getCompleteShader()),
                                                          vertex.entryPoint, ShaderStage::vertex, options);
  std::string wrong = checkVersions(vertex, spirv, optimization, everyTarget);
  ShaderInterface taken = reflectShader(pixel, ShaderTarget::spirv);
  markUsed(taken, pixelModule);
  wrong += pairFaults(factsOfModule(spirv), factsOfModule(pixelModule), taken);
  return wrong.empty() ? wrong : "vertex stage: " + wrong;
}

}  // namespace

const LoadedLibraries& standardLibrary() {
  static const LoadedLibraries libraries(kLibrary, kLibrary, "dx11");
  return libraries;
}

std::vector<std::string> fragmentNames() {
  std::vector<std::string> names;
  for (const auto& [name, entry] : libraryFiles().entries()) names.push_back(TolmSDK::toUtf8(name));
  return names;
}

std::string libraryFileOf(const std::string& fragment) {
  return fs::path(libraryFiles().find(TolmSDK::fromUtf8(fragment))->file).stem().string();
}

Json documentedInterface(const std::string& fragment) {
  std::ifstream file(libraryFiles().find(TolmSDK::fromUtf8(fragment))->file);
  return Json::parse(file).at(fragment).value("interface", Json());
}

ShaderFixture::ShaderFixture() {
  std::string pattern = (fs::temp_directory_path() / "sfg_shaders_XXXXXX").string();
  folder_ = mkdtemp(pattern.data());
}

ShaderFixture::~ShaderFixture() { fs::remove_all(folder_); }

JobFiles ShaderFixture::settings(const Json& graph) const {
  std::ofstream(folder_ / "graph.json") << graph;
  JobFiles settings;
  settings.graphFile = (folder_ / "graph.json").string();
  settings.libraryFolders = kLibrary;
  settings.includeFolders = kLibrary;
  return settings;
}

void ShaderFixture::define(JobFiles& settings, const Json& fragments) const {
  std::ofstream(folder_ / "test.fraglib") << fragments;
  settings.libraryFolders.push_back(folder_.string());
}

void ShaderFixture::light(JobFiles& settings, const Json& environment) const {
  std::ofstream(folder_ / "environment.json") << environment;
  settings.environmentFile = (folder_ / "environment.json").string();
  settings.tool = CollapseTool::lightLoop;
}

std::string ShaderFixture::compile(const JobFiles& settings, ShaderStage stage, bool everyTarget,
                                   Optimization optimization) try {
  CollapseJob job = makeJob(settings);
  job.run();
  if (job.result() == nullptr) return "the collapse answers null";
  const AssembledShader assembled = assembleShader(job, stage, NameStyle::readable);
  if (!assembled.missingIncludes.empty()) return "include files are missing";
  for (const Diagnostic& warning : findWarnings(job, true)) {
    if (warning.identifier != "unconnected-input") return warning.place() + ": " + warning.text;
  }
  const std::string hlsl = TolmSDK::toUtf8(assembled.shader.getCompleteShader());
  try {
    CompileOptions options;
    options.optimization = optimization;
    const std::vector<std::uint32_t> spirv = compileToSpirv(hlsl, assembled.entryPoint, stage, options);
    std::string wrong = checkVersions(assembled, spirv, optimization, everyTarget);
    if (stage == ShaderStage::pixel) wrong += checkPair(job, assembled, spirv, optimization, everyTarget);
    return wrong;
  } catch (const CompileError& error) {
    std::string text = error.what();
    for (const CompilerMessage& message : error.messages()) {
      text.append("\n").append(std::to_string(message.line)).append(": ").append(message.text);
    }
    return text + "\n" + hlsl;
  }
} catch (const std::exception& error) {
  return error.what();
}

std::vector<TargetVersion> targetVersions(ShaderStage stage) {
  CompileOptions other;
  other.glslVersion = GlslVersion::glsl330;
  other.shaderModel = ShaderModel::sm60;
  std::vector<TargetVersion> versions = {{ShaderTarget::spirv, {}},   {ShaderTarget::hlsl, {}},
                                         {ShaderTarget::hlsl, other}, {ShaderTarget::glsl, {}},
                                         {ShaderTarget::essl, {}},    {ShaderTarget::msl, {}}};
  if (stage != ShaderStage::compute) {
    versions.push_back({ShaderTarget::glsl, other});
    versions.push_back({ShaderTarget::essl300, {}});
  }
  return versions;
}

Json environmentOf(std::size_t lights) {
  const char* const kinds[] = {"directionalLight", "pointLight", "environmentLight", "spotLight"};
  Json list = Json::array();
  for (std::size_t i = 0; i < lights; ++i) {
    list.push_back(
        {{"name", "lamp" + std::to_string(i)}, {"fragment", kinds[i % 4]}, {"profile", "sfg_Light"}});
  }
  return {{"lights", list}};
}

}  // namespace shaders_test

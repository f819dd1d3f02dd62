#include "benchmarks/job_cases.h"

#include <filesystem>
#include <memory>

#include "host/job/collapse_job.h"
#include "host/shader/shader_assembly.h"
#include "sfg/host/check.h"
#include "sfg/host/compile.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr const char* kMaterial = "examples/materials/brick.json";
constexpr const char* kEnvironment = "examples/environments/studio.json";
constexpr host::ShaderStage kStage = host::ShaderStage::pixel;
constexpr host::NameStyle kNames = host::NameStyle::readable;
constexpr host::ShaderTarget kTarget = host::ShaderTarget::glsl;

/// The steps of a job, each over what those before it made. Libraries are loaded once for all rounds.
struct LitJob {
  std::shared_ptr<const host::LoadedLibraries> libraries = std::make_shared<const host::LoadedLibraries>(
      std::vector<std::string>{"library"}, std::vector<std::string>{"library"}, "dx11");
  std::shared_ptr<host::CollapseJob> job;
  host::AssembledShader assembled;
  std::vector<std::uint32_t> spirv;

  void read() {
    host::CollapseOptions options;
    options.tool = host::CollapseTool::lightLoop;
    job = std::make_shared<host::CollapseJob>(libraries, host::Document::fromFile(kMaterial),
                                              host::Document::fromFile(kEnvironment), options);
  }
  void collapse() { job->run(); }
  void assemble() { assembled = host::assembleShader(*job, kStage, kNames); }
  void reflect() { host::reflectShader(assembled, kTarget); }
  void compile() {
    host::Shader shader;
    shader.stage = kStage;
    shader.text = toUtf8(assembled.shader.getCompleteShader());
    shader.entryPoint = assembled.entryPoint;
    spirv = host::compileToSpirv(shader);
  }
  void translate() { host::translateSpirv(spirv, kStage, kTarget); }
};

using Step = void (LitJob::*)();

/// The rounds repeat the last of the steps; those before it are taken once.
Case lastOf(const std::string& name, const std::vector<Step>& steps) {
  return {name, {0}, [steps](std::size_t) {
            const auto job = std::make_shared<LitJob>();
            for (const Step step : steps) ((*job).*step)();
            Work work;
            // Compilers run on a larger stack.
            work.usesThreads = true;
            work.round = [job, step = steps.back()] { ((*job).*step)(); };
            return work;
          }};
}

Case allOf(const std::string& name, const std::vector<Step>& steps) {
  return {name, {0}, [steps](std::size_t) {
            const auto job = std::make_shared<LitJob>();
            Work work;
            work.usesThreads = true;
            work.round = [job, steps] {
              for (const Step step : steps) ((*job).*step)();
            };
            return work;
          }};
}

/// Every profile of the standard fragments, compiled alone by one thread.
Case checkOfLibrary() {
  return {"check", {0}, [](std::size_t) {
            host::CheckOptions options;
            options.folders = {{"library"}, {"library"}};
            const auto files = std::make_shared<host::Checker::Files>();
            files->libraries = host::Checker(options).libraryFiles();
            Work work;
            work.usesThreads = true;
            work.fragments = host::Checker(options).check(*files).counts.fragments;
            work.round = [options, files] { host::Checker(options).check(*files); };
            return work;
          }};
}

/// The same again, as an editor asks for it after each key: the cache has all.
Case checkAgain() {
  return {"check: again", {0}, [](std::size_t) {
            host::CheckOptions options;
            options.folders = {{"library"}, {"library"}};
            options.cache = std::make_shared<host::CheckCache>();
            const auto checker = std::make_shared<host::Checker>(options);
            const auto files = std::make_shared<host::Checker::Files>();
            files->libraries = checker->libraryFiles();
            Work work;
            work.usesThreads = true;
            work.fragments = checker->check(*files).counts.fragments;
            work.round = [checker, files] { checker->check(*files); };
            return work;
          }};
}

}  // namespace

std::vector<Case> jobCases() {
  if (!std::filesystem::exists(kMaterial)) return {};
  std::vector<std::pair<std::string, Step>> steps = {{"job: read", &LitJob::read},
                                                     {"job: collapse", &LitJob::collapse},
                                                     {"job: assemble", &LitJob::assemble},
                                                     {"job: reflect", &LitJob::reflect}};
  if (host::hasCompilers()) {
    steps.emplace_back("job: compile", &LitJob::compile);
    steps.emplace_back("job: translate", &LitJob::translate);
  }
  std::vector<Case> cases;
  std::vector<Step> taken;
  for (const auto& [name, step] : steps) {
    taken.push_back(step);
    cases.push_back(lastOf(name, taken));
  }
  cases.insert(cases.begin(), allOf("job", taken));
  if (host::hasCompilers()) {
    cases.push_back(checkOfLibrary());
    cases.push_back(checkAgain());
  }
  return cases;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

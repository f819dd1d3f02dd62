#include <algorithm>
#include <mutex>
#include <set>
#include <utility>

#include "host/check/fragment_check.h"
#include "host/check/graph_check.h"
#include "host/documents/diagnose.h"
#include "host/job/run_all.h"
#include "host/lints/lints.h"
#include "sfg/host/check.h"
#include "sfg/host/version.h"
#include "tolmsdk/sha1.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

std::vector<std::string> textsOf(const std::vector<std::filesystem::path>& paths) {
  std::vector<std::string> texts;
  for (const std::filesystem::path& path : paths) texts.push_back(path.string());
  return texts;
}

/// Hash of everything that findings in libraries depend on.
std::string hashOf(const LoadedLibraries& libraries, const CheckOptions& options, bool compiles) {
  std::string all = options.language + (compiles ? "\n1\n" : "\n0\n");
  for (const auto& [file, text] : libraries.texts().all())
    all.append(file).append("\n").append(std::to_string(text.size())).append("\n").append(text);
  return toUtf8(SHA1_GetStringHash(fromUtf8(all)));
}

}  // namespace

struct Checker::State {
  using Groups = std::vector<FindingGroup>;

  explicit State(CheckOptions given)
      : options(std::move(given)), compiles(options.compiles && hasCompilers()), loaded(load(options)),
        probes(*loaded), expressionPorts(readExpressionPorts(*loaded)),
        hash(hashOf(*loaded, options, compiles)) {
    if (!options.cache) options.cache = std::make_shared<CheckCache>();
    loaded->addOwnFragments(ownFragments(probes.sources()));
    tools.libraries = LibrarySet::from(loaded, options.folders, options.language);
    tools.cache = compiles ? &options.cache->impl() : nullptr;
    for (const auto& [name, entry] : loaded->files().entries()) fragments[entry.file].push_back(name);
    for (const Diagnostic& problem : loaded->problems()) problems[problem.file].push_back(problem);
  }

  static std::shared_ptr<LoadedLibraries> load(const CheckOptions& options) {
    return std::make_shared<LoadedLibraries>(textsOf(options.folders.libraries),
                                             textsOf(options.folders.includes), options.language,
                                             options.folders.standard.string(), options.texts);
  }

  Groups checkedFragment(const WString& name) const {
    const std::string key = hash + " " + toUtf8(name);
    if (const auto known = options.cache->impl().findLibrary(key)) return *known;
    Groups groups = checkFragment(tools, probes, expressionPorts, name);
    options.cache->impl().keepLibrary(key, std::make_shared<const Groups>(groups));
    return groups;
  }

  Groups lintsOf(const std::vector<std::string>& files) const {
    std::string key = hash + " lints";
    for (const std::string& file : files) key.append(" ").append(file);
    if (const auto known = options.cache->impl().findLibrary(key)) return *known;
    Groups groups = groupsOf(lintLibraries(*loaded, withIncludes(files)));
    options.cache->impl().keepLibrary(key, std::make_shared<const Groups>(groups));
    return groups;
  }

  /// The library files and the include files in their folders.
  std::vector<std::string> withIncludes(std::vector<std::string> files) const {
    std::set<std::filesystem::path> folders;
    for (const std::string& file : files) folders.insert(std::filesystem::path(file).parent_path());
    for (const auto& [name, include] : loaded->includeFiles().files()) {
      if (folders.contains(std::filesystem::path(include.path).parent_path())) files.push_back(include.path);
    }
    return files;
  }

  Groups problemsOf(const std::string& file) const {
    const auto found = problems.find(file);
    return found != problems.end() ? groupsOf(found->second) : Groups();
  }

  const std::vector<WString>& fragmentsOf(const std::string& file) const {
    static const std::vector<WString> none;
    const auto found = fragments.find(file);
    return found != fragments.end() ? found->second : none;
  }

  CheckOptions options;
  bool compiles;
  std::shared_ptr<LoadedLibraries> loaded;
  ProbeMaker probes;
  ExpressionPorts expressionPorts;
  std::string hash;
  CheckTools tools;
  std::map<std::string, std::vector<WString>> fragments;
  std::map<std::string, std::vector<Diagnostic>> problems;
};

namespace {

/// One thing to check, and what was found.
struct Step {
  std::function<std::vector<FindingGroup>()> run;
  std::vector<FindingGroup> found;
};

CheckResult resultOf(std::vector<Step>& steps, const CheckCounts& counts) {
  std::vector<FindingGroup> all;
  for (Step& step : steps) std::move(step.found.begin(), step.found.end(), std::back_inserter(all));
  raiseForCheck(all);
  return {sortedFindings(std::move(all)), counts};
}

}  // namespace

CheckResult withProblems(CheckResult result, std::span<const Diagnostic> problems) {
  std::vector<FindingGroup> all = groupsOf(result.diagnostics);
  std::vector<FindingGroup> more = groupsOf(problems);
  std::move(more.begin(), more.end(), std::back_inserter(all));
  return {sortedFindings(std::move(all)), result.counts};
}

Checker::Checker(CheckOptions options) : state_(std::make_unique<const State>(std::move(options))) {}
Checker::Checker(Checker&& other) noexcept = default;
Checker& Checker::operator=(Checker&& other) noexcept = default;
Checker::~Checker() = default;

const std::shared_ptr<const LibrarySet>& Checker::libraries() const noexcept {
  return state_->tools.libraries;
}
std::vector<std::string> Checker::libraryFiles() const { return state_->loaded->files().files(); }

CheckResult Checker::checkLibrary(const std::string& file) const { return check({{file}, {}, {}}); }

CheckResult Checker::checkGraph(const Document& graph) const {
  std::vector<Step> steps(1);
  steps[0].found = host::checkGraph(state_->tools, state_->probes, graph, state_->options.tool,
                                    state_->options.environment);
  CheckCounts counts;
  counts.graphs = 1;
  return resultOf(steps, counts);
}

CheckResult Checker::checkEnvironment(const Document& environment) const {
  std::vector<Step> steps(1);
  steps[0].found = host::checkEnvironment(state_->tools, environment);
  CheckCounts counts;
  counts.environments = 1;
  return resultOf(steps, counts);
}

CheckResult Checker::check(const Files& files, std::size_t threads, const OnProgress& onProgress) const {
  const State& state = *state_;
  std::vector<Step> steps;
  CheckCounts counts;
  if (state.options.compiles && !hasCompilers()) {
    const char* const text = "this sfg was built without compilers: no code was compiled";
    steps.push_back({[text] {
                       return groupsOf(
                           std::vector{diagnose(Finding::notCompiled, Severity::note, {}, {}, text)});
                     },
                     {}});
  }
  if (!files.libraries.empty())
    steps.push_back({[&state, &files] { return state.lintsOf(files.libraries); }, {}});
  for (const std::string& file : files.libraries) {
    steps.push_back({[&state, file] { return state.problemsOf(file); }, {}});
    for (const WString& name : state.fragmentsOf(file)) {
      ++counts.fragments;
      counts.profiles += countProfiles(*state.loaded, name);
      steps.push_back({[&state, &name] { return state.checkedFragment(name); }, {}});
    }
  }
  for (const std::string& file : files.graphs) {
    ++counts.graphs;
    steps.push_back({[&state, file] {
                       return host::checkGraph(state.tools, state.probes, Document::fromFile(file),
                                               state.options.tool, state.options.environment);
                     },
                     {}});
  }
  for (const std::string& file : files.environments) {
    ++counts.environments;
    steps.push_back(
        {[&state, file] { return host::checkEnvironment(state.tools, Document::fromFile(file)); }, {}});
  }
  std::mutex mutex;
  std::size_t done = 0;
  runAll(steps.size(), threads, [&](std::size_t i) {
    steps[i].found = steps[i].run();
    if (!onProgress) return;
    const std::lock_guard<std::mutex> lock(mutex);
    onProgress(++done, steps.size());
  });
  return resultOf(steps, counts);
}

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Many shaders at once: what a manifest asks for, made in one process, nothing of it twice.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"
#include "sfg/host/errors.h"
#include "sfg/host/export.h"
#include "sfg/host/job.h"
#include "sfg/host/library_set.h"
#include "sfg/host/shader.h"
#include "sfg/host/target.h"

namespace TolmSDK::Graphics::sfg::host {

/// One shader: of what, how, and where to. Paths are UTF-8, as they were found.
struct BuildTask {
  std::string graph;        ///< a file
  std::string environment;  ///< a file; empty for none
  CollapseOptions collapse;
  ShaderStage stage = ShaderStage::pixel;
  NameStyle names = NameStyle::readable;
  MeshLayout mesh;
  std::optional<ShaderTarget> target = ShaderTarget::spirv;  ///< none: the assembled HLSL
  CompileOptions compile;
  std::string output;      ///< a file in the output folder
  std::string reflection;  ///< the same; empty for none
};

/// The shaders of a manifest.
struct BuildPlan {
  LibraryFolders folders;
  std::string language = "dx11";
  std::string outputFolder;
  /// Those of one graph, environment and collapse stand next to each other. No two have the same output.
  std::vector<BuildTask> tasks;
  /// What was read to make the plan: the manifest; the folders that were searched for graphs.
  std::vector<std::string> files;
  std::vector<std::string> searched;
  /// What is odd in the manifest.
  std::vector<Diagnostic> problems;
};

/// What the caller of a manifest has to say of it.
struct PlanOptions {
  /// Behind the manifest's own folders.
  LibraryFolders folders;
  std::string language = "dx11";
  /// In place of the manifest's; empty for none.
  std::string outputFolder;
};

/// The plan of a manifest. Throws InputError for what is wrong in it, at its place: also for a pattern or
/// folder without graphs, an environment that is not there, a stage that a target does not have, and two
/// shaders with one output.
SFG_HOST_API BuildPlan readManifest(const Document& manifest, const PlanOptions& options = {});

/// A manifest (JSON text) of these graphs (files, patterns, folders), whose paths are relative to the working
/// folder. Empty lists are left out. Words are those of manifests.
struct ManifestWords {
  std::vector<std::string> graphs;
  std::vector<std::string> environments;
  std::vector<std::string> stages;
  std::vector<std::string> targets;
  std::string tool;
};
SFG_HOST_API Document makeManifest(const ManifestWords& words);

/// Results of builds, kept in a folder by their content; several processes and machines may share it. An
/// entry is checked when it is read, and appears as a whole or not at all. Any number of threads may use one.
/// Nothing throws: what keeps it from being used is among the problems.
class SFG_HOST_API BuildCache {
public:
  static constexpr std::uint64_t kUsualLimit = 2ull << 30;

  /// `limit`: of the bytes in the folder; those used longest ago leave when a build is over.
  explicit BuildCache(std::filesystem::path folder, std::uint64_t limit = kUsualLimit);
  BuildCache(const BuildCache&) = delete;
  BuildCache& operator=(const BuildCache&) = delete;
  ~BuildCache();

  /// "$XDG_CACHE_HOME/sfg", or ".cache/sfg" in the home folder; empty where neither is known.
  static std::filesystem::path usualFolder();

  /// Nothing for a key that is not there, and for a damaged entry, which is told and removed.
  std::optional<std::string> find(const std::string& key);
  void keep(const std::string& key, std::string_view bytes);
  /// Removes what was used longest ago until the limit is met, if this object has kept anything.
  void shrink();
  /// What was told since the last call; each cause once.
  std::vector<Diagnostic> takeProblems();

private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

enum class BuildOutcome {
  built,      ///< collapsed and compiled
  reused,     ///< taken from the cache, or from another shader with the same text
  unchanged,  ///< the output is what it shall be
  failed,
};

/// What became of one task.
struct BuildResult {
  std::size_t task = 0;  ///< its number in the plan
  BuildOutcome outcome = BuildOutcome::built;
  double seconds = 0;
  /// Errors and warnings.
  std::vector<Diagnostic> diagnostics;
  /// The files whose contents the result follows from: graph, environment, library files of the fragments
  /// reached, their include files.
  std::vector<std::string> files;
};

/// Shard `index` (from 1) of `count`: tasks are dealt out by the content of graph and environment and by the
/// options of the collapse, so that a material that is added moves no other.
struct BuildShard {
  std::size_t index = 1;
  std::size_t count = 1;
};

struct BuildOptions {
  std::size_t threads = 1;
  BuildShard shard;
  /// Null: none.
  std::shared_ptr<BuildCache> cache;
  /// Told of each task when it is done, by one thread at a time. `all` are the tasks of the shard.
  using OnResult = std::function<void(const BuildResult& result, std::size_t done, std::size_t all)>;
  OnResult onResult;
  /// Told of what belongs to no task: of library files, cache and output folder. By one thread at a time.
  std::function<void(std::span<const Diagnostic>)> onProblems;
  /// When it becomes true, nothing more is started.
  const std::atomic<bool>* stop = nullptr;
};

/// What a round did.
struct BuildReport {
  std::size_t tasks = 0;  ///< of the shard
  std::size_t built = 0;
  std::size_t reused = 0;
  std::size_t unchanged = 0;
  std::size_t failed = 0;
  bool isStopped = false;
  double seconds = 0;
  std::size_t collapses = 0;
  std::size_t compiledTexts = 0;  ///< how many different texts went to a compiler
  /// Seconds of all threads together, in the order in which a task takes the steps.
  struct Step {
    std::string name;
    double seconds = 0;
  };
  std::vector<Step> steps;
  struct Slow {
    std::size_t task = 0;
    double seconds = 0;
  };
  std::vector<Slow> slowest;  ///< ten at most, the slowest first

  std::size_t done() const noexcept { return built + reused + unchanged + failed; }
};

/// Makes what has changed since the last round, in several threads. Failures are told with their tasks, the
/// rest is made. Outputs appear as a whole or not at all; several processes may build into one folder. What
/// was made is noted in the folder ".sfg-build" of the output folder as soon as it is done. Throws InputError
/// when the library folders cannot be read or the output folder cannot be made.
SFG_HOST_API BuildReport build(const BuildPlan& plan, const BuildOptions& options);

/// A result and a report as JSON, each an object in one line.
SFG_HOST_API std::string eventJson(const BuildPlan& plan, const BuildResult& result, std::size_t done,
                                   std::size_t all);
SFG_HOST_API std::string reportJson(const BuildPlan& plan, const BuildReport& report);
/// "built", "reused", "unchanged", "failed".
SFG_HOST_API const char* nameOf(BuildOutcome outcome) noexcept;

}  // namespace TolmSDK::Graphics::sfg::host

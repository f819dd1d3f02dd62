#pragma once

// Options shared by the commands that build manifests.

#include <string>
#include <thread>
#include <vector>

#include "sfg/host/build.h"
#include "tools/collapse_options.h"

namespace TolmSDK::Graphics::sfg::tools {

struct BuildCommandOptions {
  std::string manifest;  ///< or a graph, or a folder
  std::string outputFolder;
  LibraryOptions libraries;
  host::ManifestWords words;  ///< without a manifest
  std::size_t threads = std::max(1u, std::thread::hardware_concurrency());
  host::BuildShard shard;
  std::string cacheFolder;
  std::uint64_t cacheSize = host::BuildCache::kUsualLimit;
  bool withoutCache = false;

  /// Threads, shard and cache.
  host::BuildOptions buildOptions() const;
};

/// MANIFEST and everything that decides what is built of it, and how.
void declareBuildOptions(CLI::App& app, BuildCommandOptions& options);
/// The plan of the manifest, or of the graph or folder that is named in its place. What is odd in it is told.
/// Throws InputError.
host::BuildPlan makePlan(const BuildCommandOptions& options, Diagnostics& diagnostics);

}  // namespace TolmSDK::Graphics::sfg::tools

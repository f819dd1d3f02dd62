#include "tools/source_files.h"

#include <filesystem>

#include "host/fragment_files.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

/// The library files of all fragments of graph and environment, by file name.
Set<std::string> libraryFiles(const host::CollapseJob& job) {
  const host::FragmentFiles files(job.settings().libraryFolders);
  Set<std::string> used;
  const auto add = [&](const IShaderFragment& fragment) {
    if (const auto* const entry = files.find(fragment.key())) used.insert(entry->file);
  };
  const AShaderFragmentGraph& graph = *job.graph();
  for (std::size_t i = 0; i < graph.getNumFragments(); ++i) add(*graph.getFragment(i));
  for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) {
    add(*graph.getPostprocessFragment(i));
  }
  for (const host::ShadingEnvironment::Light& light : job.environment().lights()) add(*light.fragment);
  if (const IShaderFragment* const output = job.environment().getOutputFragment()) add(*output);
  return used;
}

}  // namespace

std::vector<std::string> sourceFiles(const host::CollapseJob& job, const std::vector<std::string>& includes) {
  std::vector<std::string> files{job.settings().graphFile};
  if (!job.settings().environmentFile.empty()) files.push_back(job.settings().environmentFile);
  for (const std::string& file : libraryFiles(job)) files.push_back(file);
  for (const std::string& name : includes) {
    for (const std::string& folder : job.settings().includeFolders) {
      const std::filesystem::path file = std::filesystem::path(folder) / name;
      if (std::filesystem::exists(file)) files.push_back(file.string());
    }
  }
  return files;
}

}  // namespace TolmSDK::Graphics::sfg::tools

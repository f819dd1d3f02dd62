#include "host/job/input_files.h"

#include <filesystem>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The library files of all fragments of graph and environment.
Set<std::string> usedLibraryFiles(const CollapseJob& job) {
  Set<std::string> used;
  const auto add = [&](const IShaderFragment& fragment) {
    if (const auto* const entry = job.libraries().files().find(fragment.key())) used.insert(entry->file);
  };
  const AShaderFragmentGraph& graph = *job.graph();
  for (std::size_t i = 0; i < graph.getNumFragments(); ++i) add(*graph.getFragment(i));
  for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) {
    add(*graph.getPostprocessFragment(i));
  }
  for (const ShadingEnvironment::Light& light : job.environment().lights()) add(*light.fragment);
  if (const IShaderFragment* const output = job.environment().getOutputFragment()) add(*output);
  return used;
}

void addIncludeFiles(std::vector<std::string>& files, const CollapseJob& job, const std::string& name) {
  for (const std::string& folder : job.libraries().includeFolders()) {
    const std::filesystem::path file = std::filesystem::path(folder) / name;
    if (std::filesystem::exists(file)) files.push_back(file.string());
  }
}

}  // namespace

std::vector<std::string> inputFiles(const CollapseJob& job) {
  const LoadedLibraries& libraries = job.libraries();
  std::vector<std::string> files = job.documentFiles();
  files.insert(files.end(), libraries.files().files().begin(), libraries.files().files().end());

  Array<WString> names;
  Set<WString> done;
  libraries.includes().createFlatIncludeArray(names, done, job.result()->getProfile(0)->includes());
  for (const WString& name : names) addIncludeFiles(files, job, toUtf8(name));
  return files;
}

std::vector<std::string> sourceFiles(const CollapseJob& job, const std::vector<std::string>& includes) {
  std::vector<std::string> files = job.documentFiles();
  for (const std::string& file : usedLibraryFiles(job)) files.push_back(file);
  for (const std::string& name : includes) addIncludeFiles(files, job, name);
  return files;
}

}  // namespace TolmSDK::Graphics::sfg::host

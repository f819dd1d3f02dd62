#include <algorithm>

#include "benchmarks/graph_cases.h"
#include "host/collapse_job.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

const host::LoadedLibraries& standardLibrary() {
  static const host::LoadedLibraries libraries({"library"}, {"library"}, "dx11");
  return libraries;
}

}  // namespace

std::vector<std::filesystem::path> exampleFiles() {
  std::vector<std::filesystem::path> files;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator("examples/materials", missing)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

GraphCase loadExample(const std::filesystem::path& file) {
  const host::LanguageDx11& language = standardLibrary().language();
  const auto environment = host::loadEnvironment("examples/environments/studio.json", language);
  GraphCase example;
  example.graph = host::buildGraph(*host::loadGraphDocument(file.string(), language), language);
  example.options =
      makeRef<host::ShaderOptions>(language.getLanguageString(), 100.0f, 100.0f, environment.get());
  example.environment = environment;
  example.language = &language;
  example.lightLoop = true;
  example.fragments = example.graph->getNumFragments() + environment->getNumLights();
  return example;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

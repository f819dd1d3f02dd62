// Loading a document of 10 MB: our nodes against the JSON library's own parser and tree.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/unicode.h"

namespace {

using TolmSDK::IObjectDataNode;
using TolmSDK::RefPtr;

/// Many small objects with arrays of code lines, as fragment libraries have them.
std::string manyFragments() {
  std::string json = "{\n";
  for (int index = 0; json.size() < 10'000'000; ++index) {
    if (index != 0) json += ",\n";
    json += "  \"fragment" + std::to_string(index) +
            "\": {\n    \"profiles\": [ { \"name\": \"default\", \"lod\": " + std::to_string(index % 100) +
            ".5, \"language\": [ \"dx11\", \"glsl\" ],\n      \"implementation\": [\n";
    for (int line = 0; line < 5; ++line) {
      json += "        \"    result = lerp(a, b, " + std::to_string(line) + ".0 * \\\"weight\\\");\",\n";
    }
    json += "        \"}\" ] } ],\n    \"consolidatable\": true }";
  }
  return json += "\n}\n";
}

/// The document as a file, for as long as the benchmarks run.
class DocumentFile {
public:
  DocumentFile() : path_(std::filesystem::temp_directory_path() / "sfg_json_benchmark.json") {
    std::ofstream(path_, std::ios::binary) << manyFragments();
  }
  ~DocumentFile() { std::filesystem::remove(path_); }
  DocumentFile(const DocumentFile&) = delete;
  DocumentFile& operator=(const DocumentFile&) = delete;

  const std::filesystem::path& path() const { return path_; }

private:
  std::filesystem::path path_;
};

const std::filesystem::path& documentFile() {
  static const DocumentFile file;
  return file.path();
}

void countBytes(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(std::filesystem::file_size(documentFile())));
}

void LoadNodes(benchmark::State& state) {
  const TolmSDK::WString path = TolmSDK::fromUtf8(documentFile().string());
  for (auto _ : state) {
    const RefPtr<IObjectDataNode> node = TolmSDK::createJsonNode();
    if (!node->loadFromFile(path)) state.SkipWithError("the document does not load");
    benchmark::DoNotOptimize(node->size());
  }
  countBytes(state);
}
BENCHMARK(LoadNodes)->Unit(benchmark::kMillisecond);

void LoadWithLibraryAlone(benchmark::State& state) {
  for (auto _ : state) {
    std::ifstream file(documentFile(), std::ios::binary);
    std::string bytes(std::filesystem::file_size(documentFile()), '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const nlohmann::json json = nlohmann::json::parse(bytes);
    benchmark::DoNotOptimize(json.size());
  }
  countBytes(state);
}
BENCHMARK(LoadWithLibraryAlone)->Unit(benchmark::kMillisecond);

void WriteText(benchmark::State& state) {
  const RefPtr<IObjectDataNode> node = TolmSDK::createJsonNode();
  node->loadFromFile(TolmSDK::fromUtf8(documentFile().string()));
  for (auto _ : state) benchmark::DoNotOptimize(node->toText());
  countBytes(state);
}
BENCHMARK(WriteText)->Unit(benchmark::kMillisecond);

}  // namespace

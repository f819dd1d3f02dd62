// Reading the host's documents: their time beside the bare parse of the same bytes, and their memory.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <unistd.h>

#include "benchmarks/large_cases.h"
#include "benchmarks/memory_meter.h"
#include "benchmarks/stopwatch.h"
#include "host/graph_document.h"
#include "host/language_dx11.h"
#include "sfg/fragment_library.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

/// A folder of files that is removed at the end of the benchmark.
class GeneratedFolder {
public:
  GeneratedFolder()
      : path_(std::filesystem::temp_directory_path() / ("sfg-benchmark-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~GeneratedFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  GeneratedFolder(const GeneratedFolder&) = delete;
  GeneratedFolder& operator=(const GeneratedFolder&) = delete;

  std::string path() const { return path_.string(); }
  /// Answers the file's path.
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(path_ / name, std::ios::binary) << text;
    return (path_ / name).string();
  }

private:
  std::filesystem::path path_;
};

/// A graph of `count` nodes of one fragment, each with a value of its own; wired as a chain, or not at all.
std::string graphText(std::size_t count, bool wired) {
  std::string text = "{\n  \"nodes\": [\n";
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    text += "    { \"name\": \"n" + number + R"(", "fragment": "step", "inputs": { )";
    if (wired && i != 0)
      text += R"("previous": { "node": "n)" + std::to_string(i - 1) + R"(", "output": "result" }, )";
    text += R"("gain": { "value": 0.)" + number + (i + 1 < count ? " } } },\n" : " } } }\n");
  }
  return text + "  ]\n}\n";
}

/// A library of `count` fragments of about 500 bytes, numbered from `first` on.
std::string libraryText(std::size_t first, std::size_t count) {
  std::string text = "{\n";
  for (std::size_t i = 0; i < count; ++i) {
    const std::string n = std::to_string(first + i);
    text += "  \"layer" + n + "\": {\n    \"language\": [\"dx11\"],\n    \"uniforms\": [{ \"name\": \"tint" +
            n +
            "\", \"type\": \"float3\", \"value\": [1.0, 0.5, 0.25] }],\n    \"predefine\": [\n      \"float "
            "curve" +
            n +
            "(float x, float k)\",\n      \"{\",\n      \"  float a = x * x * (3.0 - 2.0 * x);\",\n"
            "      \"  return lerp(a, 1.0 - exp(-k * x), saturate(k));\",\n      \"}\"\n    ],\n"
            "    \"implementation\": [\n      \"void layer" +
            n +
            "(float3 previous, float gain, out float3 result)\",\n      \"{\",\n      \"  result = previous "
            "* tint" +
            n + " * curve" + n + "(gain, 2.0);\",\n      \"}\"\n    ]\n  }" + (i + 1 < count ? ",\n" : "\n");
  }
  return text + "}\n";
}

/// Whose one fragment the graphs use.
class StepLanguage {
public:
  StepLanguage() {
    library_.addFragment(L"step", L"void step(float previous, float gain, out float result)",
                         L"\tresult = previous * gain;\n", nullptr, 0);
  }
  const ILanguageTraits& language() const { return *language_; }

private:
  FragmentLibrary library_;
  RefPtr<host::LanguageDx11> language_ = makeRef<host::LanguageDx11>(&library_);
};

/// Loads a graph document of about 12 MB, beside parsing the very same bytes by the JSON library alone.
void readGraph(benchmark::State& state) {
  const StepLanguage step;
  const std::string text = graphText(90'000, true);
  const GeneratedFolder folder;
  const std::string file = folder.write("graph.json", text);
  double reading = std::numeric_limits<double>::infinity();
  double parsing = reading;
  for (auto _ : state) {
    Stopwatch watch;
    benchmark::DoNotOptimize(host::loadGraphDocument(file, step.language()));
    const double seconds = watch.seconds();
    state.SetIterationTime(seconds);
    reading = std::min(reading, seconds);
    watch.restart();
    benchmark::DoNotOptimize(nlohmann::json::parse(text));
    parsing = std::min(parsing, watch.seconds());
  }
  state.counters["characters"] = static_cast<double>(text.size());
  state.counters["ratio"] = reading / parsing;
  state.counters["share"] = parsing / reading;
}

/// Most memory held while `work` runs, per byte of the text read.
template <class Work>
void measureMemory(benchmark::State& state, std::size_t bytes, const Work& work) {
  for (auto _ : state) {
    startMemoryMeter();
    const Stopwatch watch;
    work();
    state.SetIterationTime(watch.seconds());
    state.counters["bytesPerChar"] =
        static_cast<double>(readMemoryMeter().peakBytes) / static_cast<double>(bytes);
  }
  state.counters["characters"] = static_cast<double>(bytes);
}

void unusedNodes(benchmark::State& state) {
  const StepLanguage step;
  const std::string text = graphText(static_cast<std::size_t>(state.range(0)), false);
  const GeneratedFolder folder;
  const std::string file = folder.write("unused.json", text);
  measureMemory(state, text.size(), [&] {
    const auto document = host::loadGraphDocument(file, step.language());
    benchmark::DoNotOptimize(host::buildGraph(*document, step.language()));
  });
}

void loadLargeLibrary(benchmark::State& state) {
  constexpr std::size_t kFragmentsPerFile = 1000;
  const GeneratedFolder folder;
  std::size_t bytes = 0;
  for (std::size_t first = 0; first < static_cast<std::size_t>(state.range(0)); first += kFragmentsPerFile) {
    const std::string text = libraryText(first, kFragmentsPerFile);
    folder.write(std::to_string(first) + ".fraglib", text);
    bytes += text.size();
  }
  measureMemory(state, bytes, [&] {
    FragmentLibrary library;
    library.loadFragments(fromUtf8(folder.path()).c_str());
    if (library.acquireFragment(L"layer999999") == nullptr) state.SkipWithError("a fragment is missing");
  });
}

BENCHMARK(readGraph)->Name("read graph")->UseManualTime()->Unit(benchmark::kMillisecond);

void registerMemory(const char* name, void (*run)(benchmark::State&), int count) {
  benchmark::RegisterBenchmark(name, run)->Arg(count)->Iterations(1)->UseManualTime()->Unit(
      benchmark::kMillisecond);
}

}  // namespace

void registerLargeCases() {
  constexpr int kMillion = 1'000'000;
  registerMemory("unused nodes", unusedNodes, kMillion);
  registerMemory("large library", loadLargeLibrary, kMillion);
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

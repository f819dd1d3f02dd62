// What a host does before it collapses: loading fragment libraries and building graphs.

#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "benchmarks/stopwatch.h"
#include "host/language_dx11.h"
#include "sfg/fragment_library.h"
#include "sfg/shader_fragment_graph_builder.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

double secondsOf(const std::function<void()>& work) {
  const Stopwatch watch;
  work();
  return watch.seconds();
}

std::vector<std::string> readLibraryFiles(const std::filesystem::path& folder) {
  std::vector<std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".fraglib") continue;
    std::stringstream text;
    text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
    texts.push_back(text.str());
  }
  return texts;
}

/// A folder of `count` fragments of about 500 bytes, a hundred to a file; removed at the end of the
/// benchmark.
class GeneratedLibrary {
public:
  explicit GeneratedLibrary(int count)
      : folder_(std::filesystem::temp_directory_path() /
                ("sfg-benchmark-" +
                 std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()))) {
    std::filesystem::create_directory(folder_);
    for (int first = 0; first < count; first += 100) {
      std::ofstream out(folder_ / ("generated" + std::to_string(first) + ".fraglib"));
      out << "{\n";
      for (int i = first; i < first + 100; ++i) writeFragment(out, i, i + 1 == first + 100);
      out << "}\n";
    }
  }
  ~GeneratedLibrary() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  GeneratedLibrary(const GeneratedLibrary&) = delete;
  GeneratedLibrary& operator=(const GeneratedLibrary&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

private:
  static void writeFragment(std::ostream& out, int i, bool isLast) {
    out << "  \"layer" << i << "\": {\n    \"language\": [\"dx11\"],\n    \"uniforms\": [{ \"name\": \"tint"
        << i
        << "\", \"type\": \"float3\", \"value\": [1.0, 0.5, 0.25] }],\n    \"predefine\": [\n      \"float "
           "curve"
        << i
        << "(float x, float k)\",\n      \"{\",\n      \"  float a = x * x * (3.0 - 2.0 * x);\",\n"
           "      \"  return lerp(a, 1.0 - exp(-k * x), saturate(k));\",\n      \"}\"\n    ],\n"
           "    \"implementation\": [\n      \"void layer"
        << i
        << "(float3 previous, float gain, out float3 result)\",\n      \"{\",\n      \"  result = previous * "
           "tint"
        << i << " * curve" << i << "(gain, 2.0);\",\n      \"}\"\n    ]\n  }" << (isLast ? "\n" : ",\n");
  }

  std::filesystem::path folder_;
};

/// Loads a folder, beside parsing the very same bytes by the JSON library alone. `share` is the speed of
/// loading in terms of that of parsing: 1 when it costs nothing more.
void measureLoading(benchmark::State& state, const std::filesystem::path& folder) {
  const std::vector<std::string> texts = readLibraryFiles(folder);
  std::size_t bytes = 0;
  for (const std::string& text : texts) bytes += text.size();
  if (bytes == 0) {
    state.SkipWithError("no fragment library in the folder");
    return;
  }
  double loading = std::numeric_limits<double>::infinity();
  double parsing = loading;
  const WString path = fromUtf8(folder.string());
  for (auto _ : state) {
    const double seconds = secondsOf([&] {
      FragmentLibrary library;
      library.loadFragments(path.c_str());
      benchmark::DoNotOptimize(library.getResourceNames());
    });
    state.SetIterationTime(seconds);
    loading = std::min(loading, seconds);
    parsing = std::min(parsing, secondsOf([&] {
                         for (const std::string& text : texts)
                           benchmark::DoNotOptimize(nlohmann::json::parse(text));
                       }));
  }
  state.counters["characters"] = static_cast<double>(bytes);
  state.counters["ratio"] = loading / parsing;
  state.counters["share"] = parsing / loading;
}

void loadStandardLibrary(benchmark::State& state) {
  ShaderIncludes::Singleton().addIncludePath(L"library");
  measureLoading(state, "library");
}

void loadGeneratedLibrary(benchmark::State& state) {
  const GeneratedLibrary library(10'000);
  measureLoading(state, library.folder());
}

/// A chain of the host's own nodes.
class ChainNode : public RefCounted<INodeAccessor> {
public:
  explicit ChainNode(const ChainNode* previous) : previous_(previous) {}
  const wchar_t* getFragmentName() const override { return L"step"; }
  std::size_t getNumInputs() const override { return 2; }
  const AParameter* getInput(std::size_t index) const override {
    return index == 0 ? input0().get() : input1().get();
  }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override {
    if (index != 0 || previous_ == nullptr) return false;
    source = previous_;
    output = 0;
    return true;
  }
  std::size_t getNumOutputs() const override { return 1; }
  const AParameter* getOutput(std::size_t) const override { return output().get(); }

private:
  static const RefPtr<AParameter>& input0() {
    static const auto parameter = makeRef<AParameter>(TypeID_float, WString(L"previous"));
    return parameter;
  }
  static const RefPtr<AParameter>& input1() {
    static const auto parameter = makeRef<AParameter>(TypeID_float, WString(L"gain"));
    return parameter;
  }
  static const RefPtr<AParameter>& output() {
    static const auto parameter = makeRef<AParameter>(TypeID_float, WString(L"result"));
    return parameter;
  }
  const ChainNode* previous_;
};

class ChainGraph : public RefCounted<IGraphAccessor> {
public:
  explicit ChainGraph(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      nodes_.push_back(makeRef<ChainNode>(nodes_.empty() ? nullptr : nodes_.back().get()));
    }
  }
  std::size_t getNumInputs() const override { return 0; }
  const AParameter* getInput(std::size_t) const override { return nullptr; }
  std::size_t getNumOutputs() const override { return 0; }
  const AParameter* getOutput(std::size_t) const override { return nullptr; }
  bool getOutputConnection(std::size_t, const INodeAccessor*&, std::size_t&) const override { return false; }
  std::size_t getNumNodes() const override { return nodes_.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes_[index].get(); }

private:
  std::vector<RefPtr<ChainNode>> nodes_;
};

void buildGraph(benchmark::State& state) {
  FragmentLibrary library;
  library.addFragment(L"step", L"void step(float previous, float gain, out float result)",
                      L"\tresult = previous * gain;\n", nullptr, 0);
  const auto language = makeRef<host::LanguageDx11>(&library);
  const auto graph = makeRef<ChainGraph>(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.SetIterationTime(secondsOf([&] {
      AShaderFragmentGraphBuilder builder;
      benchmark::DoNotOptimize(RefPtr<AShaderFragmentGraph>(builder.build(language.get(), graph.get())));
    }));
  }
}

BENCHMARK(loadStandardLibrary)->Name("load standard")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(loadGeneratedLibrary)->Name("load 10000")->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(buildGraph)
    ->Name("build graph")
    ->RangeMultiplier(10)
    ->Range(10, 100'000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace TolmSDK::Graphics::sfg::benchmarks

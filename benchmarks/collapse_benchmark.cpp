// Collapses, each beside the yardstick: copying the text it wrote while renaming its identifiers.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <limits>
#include <thread>
#include <vector>

#include "benchmarks/graph_cases.h"
#include "benchmarks/memory_meter.h"
#include "benchmarks/stopwatch.h"
#include "benchmarks/yardstick.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

/// One collapse by a tool of its own; the text written is in the result, which the tool owns.
template <class Tool>
RefPtr<IShaderFragment> collapseWith(const GraphCase& graphCase) {
  const auto tool = makeRef<Tool>();
  return RefPtr<IShaderFragment>(tool->collapse(graphCase.graph.get(), graphCase.environment.get(),
                                                graphCase.options.get(), graphCase.language.get()));
}

RefPtr<IShaderFragment> collapse(const GraphCase& graphCase) {
  return graphCase.lightLoop ? collapseWith<AShaderCollapseToolLightLoop>(graphCase)
                             : collapseWith<AShaderCollapseToolDefault>(graphCase);
}

WString textOf(const IShaderFragment& result) {
  const IShaderFragmentProfile& profile = *result.getProfile(0);
  return profile.predefines() + profile.getFunctionBody();
}

void measureCollapse(benchmark::State& state, const GraphCase& graphCase) {
  // The first collapse pays for what profiles keep from then on.
  Stopwatch watch;
  RefPtr<IShaderFragment> result = collapse(graphCase);
  const double first = watch.seconds();
  if (!result) {
    state.SkipWithError("the collapse answered null");
    return;
  }
  const WString text = textOf(*result);
  const Yardstick yardstick(text);
  result.reset();

  double collapseTime = std::numeric_limits<double>::infinity();
  double yardstickTime = collapseTime;
  for (auto _ : state) {
    watch.restart();
    result = collapse(graphCase);
    const double seconds = watch.seconds();
    result.reset();
    state.SetIterationTime(seconds);
    collapseTime = std::min(collapseTime, seconds);

    watch.restart();
    benchmark::DoNotOptimize(yardstick.copy());
    yardstickTime = std::min(yardstickTime, watch.seconds());
  }

  startMemoryMeter();
  result = collapse(graphCase);
  const MemoryReading memory = readMemoryMeter();

  const auto characters = static_cast<double>(text.size());
  state.counters["best"] = collapseTime;
  state.counters["yardstick"] = yardstickTime;
  state.counters["ratio"] = collapseTime / yardstickTime;
  state.counters["first"] = first / yardstickTime;
  state.counters["characters"] = characters;
  state.counters["bytesPerChar"] = static_cast<double>(memory.peakBytes) / characters;
  state.counters["allocsPerFragment"] =
      static_cast<double>(memory.allocations) / static_cast<double>(graphCase.fragments);
}

struct Seconds {
  double processor = 0;  ///< of the thread that took most
  double wall = 0;       ///< from the start of the first thread to the end of the last
};

/// What `work` takes in each of `threads` threads at a time.
Seconds measureThreads(const std::function<void()>& work, int threads) {
  std::vector<double> processor(static_cast<std::size_t>(threads));
  std::vector<std::thread> running;
  const auto start = std::chrono::steady_clock::now();
  for (double& own : processor) {
    running.emplace_back([&work, &own] {
      const Stopwatch watch;
      work();
      own = watch.seconds();
    });
  }
  for (std::thread& thread : running) thread.join();
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  return {*std::max_element(processor.begin(), processor.end()), wall.count()};
}

/// Work of two threads at a time in terms of the work of one: 2 at best.
struct Gain {
  double processor = 0;
  double wall = 0;

  /// Keeps the better one of several rounds.
  void measure(const std::function<void()>& work) {
    const Seconds one = measureThreads(work, 1);
    const Seconds two = measureThreads(work, 2);
    processor = std::max(processor, 2.0 * one.processor / two.processor);
    wall = std::max(wall, 2.0 * one.wall / two.wall);
  }
};

/// Two threads, each with tools of its own, over one library; beside two loops that share nothing.
void measureTwoThreads(benchmark::State& state) {
  const GraphCase graphCase = makeFunctions(1000);
  collapse(graphCase);
  const auto collapses = [&] {
    for (int i = 0; i < 50; ++i) benchmark::DoNotOptimize(collapse(graphCase));
  };
  const auto plainLoop = [] {
    unsigned value = 1;
    for (int i = 0; i < 400'000'000; ++i) benchmark::DoNotOptimize(value = value * 1664525u + 1013904223u);
  };
  Gain gain;
  Gain plainGain;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    gain.measure(collapses);
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    plainGain.measure(plainLoop);
  }
  state.counters["gain"] = gain.processor;
  state.counters["wallGain"] = gain.wall;
  state.counters["plainGain"] = plainGain.processor;
  state.counters["plainWallGain"] = plainGain.wall;
}

const bool registered = [] {
  const auto add = [](const char* name, GraphCase (*make)(std::size_t), std::int64_t largest) {
    auto* family = benchmark::RegisterBenchmark(name, [make](benchmark::State& state) {
      measureCollapse(state, make(static_cast<std::size_t>(state.range(0))));
    });
    for (std::int64_t size = 10; size <= largest; size *= 10) family->Arg(size);
    family->UseManualTime()->Unit(benchmark::kMillisecond);
  };
  add("chain", makeChain, 100'000);
  add("ladder", makeLadder, 100'000);
  add("tree", makeTree, 100'000);
  add("functions", makeFunctions, 100'000);
  add("lights", makeLights, 100'000);
  for (const std::filesystem::path& file : exampleFiles()) {
    benchmark::RegisterBenchmark(
        file.stem().c_str(), [file](benchmark::State& state) { measureCollapse(state, loadExample(file)); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
  benchmark::RegisterBenchmark("two threads", measureTwoThreads)
      ->UseManualTime()
      ->Iterations(3)
      ->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace

}  // namespace TolmSDK::Graphics::sfg::benchmarks

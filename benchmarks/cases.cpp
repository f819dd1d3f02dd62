// The table of cases.

#include <algorithm>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "benchmarks/case.h"
#include "benchmarks/file_cases.h"
#include "benchmarks/graph_cases.h"
#include "benchmarks/stopwatch.h"
#include "benchmarks/text_cases.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

struct Seconds {
  double processor = 0;  ///< of the thread that took most
  double wall = 0;       ///< from the start of the first thread to the end of the last
};

/// What `work` takes in each of `threads` threads at a time.
Seconds measureThreads(const std::function<void()>& work, std::size_t threads) {
  std::vector<double> processor(threads);
  std::vector<std::thread> running;
  const auto start = std::chrono::steady_clock::now();
  for (double& own : processor) {
    running.emplace_back([&work, &own] { own = secondsOf(work); });
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

/// Two threads, each with tools of its own, over one graph; beside two loops that share nothing.
Work twoThreads(std::size_t) {
  Work work;
  work.measure = [] {
    const GraphCase graphCase = makeFunctions(1000);
    Gain gain;
    Gain plainGain;
    for (int round = 0; round < 3; ++round) {
      gain.measure([&] {
        for (int i = 0; i < 50; ++i) collapse(graphCase);
      });
      plainGain.measure([] {
        volatile unsigned value = 1;
        for (int i = 0; i < 100'000'000; ++i) value = value * 1664525u + 1013904223u;
      });
    }
    return Figures{{"gain", gain.processor},
                   {"wallGain", gain.wall},
                   {"plainGain", plainGain.processor},
                   {"plainWallGain", plainGain.wall}};
  };
  return work;
}

std::vector<std::size_t> sizesUpTo(std::size_t largest, std::size_t smallest = 10) {
  std::vector<std::size_t> sizes;
  for (std::size_t size = smallest; size <= largest; size *= 10) sizes.push_back(size);
  return sizes;
}

std::vector<Case> makeCases() {
  std::vector<Case> cases;
  const auto add = [&](const char* name, std::size_t largest, Work (*make)(std::size_t)) {
    cases.push_back({name, largest == 0 ? std::vector<std::size_t>{0} : sizesUpTo(largest), make});
  };
  const auto addSizes = [&](const char* name, std::vector<std::size_t> sizes,
                            GraphCase (*make)(std::size_t)) {
    cases.push_back({name, std::move(sizes), [make](std::size_t size) { return collapseWork(make(size)); }});
  };
  const auto addGraph = [&](const char* name, GraphCase (*make)(std::size_t)) {
    addSizes(name, sizesUpTo(100'000), make);
  };
  const auto addShape = [&](const char* name, GraphCase (*make)(std::size_t)) {
    addSizes(name, sizesUpTo(100'000, 100), make);
  };

  addGraph("chain", makeChain);
  addGraph("ladder", makeLadder);
  addGraph("tree", makeTree);
  addGraph("functions", makeFunctions);
  addGraph("lights", makeLights);
  for (const std::filesystem::path& file : exampleFiles()) {
    cases.push_back({file.stem().string(), {0}, [file](std::size_t) { return makeExample(file); }});
  }
  add("two threads", 0, twoThreads);

  add("files to shader", 10'000, filesToShader);
  add("- read", 10'000, readFiles);
  add("- build", 10'000, buildFromFiles);
  add("- collapse", 10'000, collapseFromFiles);
  add("- assemble", 10'000, assembleFromFiles);
  add("load standard", 0, loadStandardLibrary);
  add("load generated", 10'000, loadGeneratedLibrary);
  add("build graph", 100'000, buildHostGraph);
  add("replacer", 1'000'000, replaceKeywords);
  add("symbol parser", 1'000'000, parseSymbols);

  addShape("uniforms", makeUniforms);
  addShape("placeholders", makePlaceholders);
  addShape("built-in calls", makeBuiltinCalls);
  addShape("shader calls", makeShaderCalls);
  addShape("clashing helpers", makeClashingHelpers);
  // What is written grows with the square.
  addSizes("inline chain", {100, 300, 1000, 3000}, makeInlineChain);
  addSizes("lit inline chain", {100, 300, 1000, 3000}, makeLitInlineChain);
  addShape("alternating lights", makeAlternatingLights);
  addShape("unknown profile", makeUnknownProfile);
  addShape("outputs", makeOutputs);
  addShape("pre-process", makePreprocess);
  // Its text doubles with each rung, so sizes grow slowly.
  addSizes("lit ladder", {6, 9, 12, 15, 18, 20}, makeLitLadder);
  add("warn structures", 100'000, warnOfStructures);
  add("warn helpers", 100'000, warnOfHelpers);
  add("warn profiles", 100'000, warnOfProfiles);
  add("assemble structures", 100'000, assembleStructures);
  add("find symbols", 100'000, findSymbols);
  add("missed keyword", 100'000, missKeyword);
  return cases;
}

}  // namespace

const std::vector<Case>& allCases() {
  static const std::vector<Case> cases = makeCases();
  return cases;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

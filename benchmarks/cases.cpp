// The table of cases.

#include <functional>
#include <utility>

#include "benchmarks/case.h"
#include "benchmarks/file_cases.h"
#include "benchmarks/graph_cases.h"
#include "benchmarks/job_cases.h"
#include "benchmarks/picture_cases.h"
#include "benchmarks/text_cases.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

/// Threads with tools of their own over one graph, beside loops that share nothing.
Work twoThreads(std::size_t) {
  Work work = collapseWork(makeFunctions(1000));
  work.inTwoThreads = true;
  work.reference = [] {
    volatile unsigned value = 1;
    for (int i = 0; i < 1'000'000; ++i) value = value * 1664525u + 1013904223u;
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

  for (const Case& step : jobCases()) cases.push_back(step);
  for (const Case& step : pictureCases()) cases.push_back(step);
  add("files to shader", 10'000, filesToShader);
  add("- read", 10'000, readFiles);
  add("- build", 10'000, buildFromFiles);
  add("- collapse", 10'000, collapseFromFiles);
  add("- assemble", 10'000, assembleFromFiles);
  add("load standard", 0, loadStandardLibrary);
  add("load generated", 10'000, loadGeneratedLibrary);
  add("build graph", 100'000, buildHostGraph);
  add("read graph", 100'000, readGraph);
  const auto addLarge = [&](const char* name, Work (*make)(std::size_t)) {
    cases.push_back({name, {1'000'000}, make, true});
  };
  addLarge("unused nodes", buildUnusedNodes);
  addLarge("large library", loadLargeLibrary);
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
  addShape("changing caller", makeChangingCaller);
  addShape("caller profiles", makeCallerProfiles);
  addShape("called profiles", makeCalledProfiles);
  addShape("lit profiles", makeLitProfiles);
  addShape("own expression", makeOwnExpression);
  addShape("light levels", makeLightLevels);
  add("find levels", 100'000, findLevels);
  addShape("outputs", makeOutputs);
  addShape("pre-process", makePreprocess);
  addShape("post-process", makePostprocess);
  // Its text doubles with each rung, so sizes grow slowly.
  addSizes("lit ladder", {6, 9, 12, 15, 18, 20}, makeLitLadder);
  addSizes("unlit ladder", {6, 9, 12, 15, 18, 20}, makeUnlitLadder);
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

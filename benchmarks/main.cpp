// Runs the benchmarks: a table on the terminal, JSON and an SVG plot in the folder given.
//
//   sfg_benchmarks [--results=FOLDER] [--large] [Google Benchmark's own options]

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "benchmarks/large_cases.h"
#include "benchmarks/memory_meter.h"
#include "benchmarks/report.h"

namespace {

constexpr char kResultsOption[] = "--results=";
constexpr char kLargeOption[] = "--large";

/// Takes `--results=FOLDER` out of the arguments.
std::string takeResultsFolder(std::vector<char*>& arguments) {
  std::string folder;
  std::erase_if(arguments, [&](const char* argument) {
    const std::string text(argument);
    if (!text.starts_with(kResultsOption)) return false;
    folder = text.substr(sizeof kResultsOption - 1);
    return true;
  });
  return folder;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace TolmSDK::Graphics::sfg::benchmarks;

  std::vector<char*> arguments(argv, argv + argc);
  const std::string folder = takeResultsFolder(arguments);
  if (std::erase_if(arguments, [](const char* argument) { return std::string(argument) == kLargeOption; }) !=
      0)
    registerLargeCases();
  std::string jsonOption;
  std::string jsonFormat = "--benchmark_out_format=json";
  if (!folder.empty()) {
    std::filesystem::create_directories(folder);
    jsonOption = "--benchmark_out=" + folder + "/benchmarks.json";
    arguments.push_back(jsonOption.data());
    arguments.push_back(jsonFormat.data());
  }
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;

  keepFreedMemory();
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  if (!folder.empty() && !writePlot(folder + "/benchmarks.svg", reporter.measurements())) {
    std::fprintf(stderr, "cannot write `%s/benchmarks.svg`\n", folder.c_str());
    return 2;
  }
  return reporter.anyFailed() ? 1 : 0;
}

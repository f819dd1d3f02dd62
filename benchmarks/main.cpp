// Runs the benchmarks: tables on the terminal, JSON and an SVG plot in the folder given.

#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "benchmarks/picture_cases.h"
#include "benchmarks/report.h"
#include "tolmsdk/read_limits.h"

namespace {

using namespace TolmSDK::Graphics::sfg::benchmarks;

/// A folder for the files of the processes started, which may not come to remove theirs.
class Scratch {
public:
  Scratch() : path_(std::filesystem::temp_directory_path() / ("sfg-benchmark-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(path_);
    setenv("TMPDIR", path_.c_str(), 1);
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

private:
  std::filesystem::path path_;
};

struct Options {
  std::string filter;
  std::string allocators = "both";
  std::string results;
  std::string against;
  std::string againstName = "before";
  int rounds = 3;
  bool smallest = false;
  bool large = false;
  bool list = false;
  std::string measured;
  std::size_t size = 0;
  MeasureSettings settings;
};

void declare(CLI::App& app, Options& options) {
  app.add_option("--filter", options.filter, "only cases whose NAME/N this regular expression finds")
      ->type_name("REGEX");
  app.add_flag("--list", options.list, "print the names and stop");
  app.add_flag("--smallest", options.smallest, "only the smallest size of each case");
  app.add_flag("--large", options.large, "also the cases that need gigabytes and a minute, without bounds");
  app.add_option("--malloc", options.allocators,
                 "the C library's allocator: as it is, keeping what is freed, or one after the other")
      ->check(CLI::IsMember({"default", "keep", "both"}))
      ->capture_default_str();
  app.add_option("--time", options.settings.seconds, "time of the repetitions of one measurement")
      ->type_name("SECONDS")
      ->check(CLI::Range(1e-6, 100'000.0))
      ->capture_default_str();
  app.add_option("--limit", options.settings.limit,
                 "processor time after which a measurement stops, and with it its case")
      ->type_name("SECONDS")
      ->check(CLI::Range(1u, 100'000u))
      ->capture_default_str();
  app.add_option("--results", options.results, "write benchmarks.json and benchmarks.svg there")
      ->type_name("FOLDER");
  app.add_option("--against", options.against, "measure this program of another state by turns with this one")
      ->type_name("PROGRAM");
  app.add_option("--against-name", options.againstName, "what the tables call that state")->type_name("NAME");
  app.add_option("--rounds", options.rounds, "turns of each state; the best one counts")
      ->type_name("COUNT")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  // What the program starts itself with.
  app.add_option("--measure", options.measured)->group("");
  app.add_option("--size", options.size)->group("");
}

struct State {
  std::string name;
  std::string program;
};

void keepBetter(Outcome& kept, Outcome&& outcome) {
  const bool isBetter = kept.figures.empty() ||
                        (outcome.figures.contains("best") && outcome.figures["best"] < kept.figures["best"]);
  if (isBetter || outcome.figures.empty()) kept = std::move(outcome);
}

/// Why the next size is not worth starting: four rounds would pass the limit of time. Empty when they would
/// not.
std::string whyNot(const Row& before, const Row& last, std::size_t next, const Options& options) {
  const Figures& figures = last.outcomes.begin()->second.figures;
  if (!figures.contains("best")) return {};
  const double factor = static_cast<double>(next) / static_cast<double>(last.size);
  const double expected = figures.at("best") * std::pow(factor, std::max(1.0, growthExponent(before, last)));
  if (4 * expected <= options.settings.limit) return {};
  return "a round would take about " + std::to_string(std::lround(expected)) + " s";
}

/// One row a state. States take turns, the first of a round goes last in the next. `measured` are the rows of
/// the smaller sizes.
std::vector<Row> measureRows(const Case& one, std::size_t size, const std::vector<State>& states,
                             const Options& options, const std::vector<std::vector<Row>>& measured) {
  std::vector<Row> rows;
  for (const State& state : states) rows.push_back({one.name, size, state.name, {}});
  for (std::size_t i = 0; i < rows.size() && measured.size() > 1; ++i) {
    const std::string reason = whyNot(measured.end()[-2][i], measured.back()[i], size, options);
    if (!reason.empty()) rows[i].outcomes["default"].stopped = reason;
  }
  for (int round = 0; round < (states.size() > 1 ? options.rounds : 1); ++round) {
    for (std::size_t turn = 0; turn < states.size(); ++turn) {
      const std::size_t index = (turn + static_cast<std::size_t>(round)) % states.size();
      for (const char* allocator : {"default", "keep"}) {
        if (options.allocators != "both" && options.allocators != allocator) continue;
        if (rows[index].stopped() || rows[index].failed()) continue;
        MeasureSettings settings = options.settings;
        settings.keepsMemory = std::string(allocator) == "keep";
        keepBetter(rows[index].outcomes[allocator],
                   measureInProcess(states[index].program, one.name, size, settings));
      }
    }
  }
  return rows;
}

/// Measures the case from its smallest size up to the one at which it stops.
void measureCase(const Case& one, const std::vector<State>& states, const Options& options,
                 std::vector<Row>& all) {
  const std::regex filter(options.filter);
  std::vector<std::vector<Row>> measured;
  for (const std::size_t size : one.sizes) {
    const std::string name = size == 0 ? one.name : one.name + "/" + std::to_string(size);
    if (!std::regex_search(name, filter)) continue;
    if (options.list) {
      std::puts(name.c_str());
      continue;
    }
    std::vector<Row> rows = measureRows(one, size, states, options, measured);
    const auto ends = [](const Row& row) { return row.stopped() || row.failed(); };
    const bool isLast = std::any_of(rows.begin(), rows.end(), ends);
    // A case that one of the states does not have, or cannot do, is no comparison.
    const bool isCommon = states.size() == 1 ||
                          std::none_of(rows.begin(), rows.end(), [](const Row& row) { return row.failed(); });
    if (!isCommon) return;
    for (const Row& row : rows) printRow(row, states.size() > 1);
    if (rows.size() == 2) printComparison(rows.front(), rows.back());
    all.insert(all.end(), rows.begin(), rows.end());
    measured.push_back(std::move(rows));
    if (isLast || options.smallest) return;
  }
}

int run(const Options& options) {
  const Scratch scratch;
  const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
  std::vector<State> states = {{options.against.empty() ? "" : "now", self}};
  if (!options.against.empty()) states.insert(states.begin(), {options.againstName, options.against});
  if (!options.list) printHeading(states.size() > 1);
  std::vector<Row> rows;
  for (const Case& one : allCases()) {
    if (options.large || !one.isLarge) measureCase(one, states, options, rows);
  }
  if (options.list) return 0;
  printGrowth(rows);
  if (const std::string why = whyNoPictures(); !why.empty()) std::printf("\nno pictures: %s\n", why.c_str());

  const auto failed = std::count_if(rows.begin(), rows.end(), [](const Row& row) { return row.failed(); });
  std::printf("\n%zu rows, %zu failed\n", rows.size(), static_cast<std::size_t>(failed));
  if (!options.results.empty()) {
    std::filesystem::create_directories(options.results);
    if (!writeJson(options.results + "/benchmarks.json", rows) ||
        !writePlot(options.results + "/benchmarks.svg", rows)) {
      std::fprintf(stderr, "cannot write to `%s`\n", options.results.c_str());
      return 2;
    }
  }
  return failed == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  // Documents of a million nodes are larger than hosts take by default.
  TolmSDK::setReadLimits({.documentValues = 100'000'000});
  CLI::App app("Measures sfg.");
  Options options;
  declare(app, options);
  CLI11_PARSE(app, argc, argv);
  if (options.measured.empty()) return run(options);
  options.settings.keepsMemory = options.allocators == "keep";
  measureHere(options.measured, options.size, options.settings);
  return 0;
}

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <thread>

#include "sfg/host/build.h"
#include "sfg/host/check.h"
#include "tools/build_options.h"
#include "tools/command.h"
#include "tools/depfile.h"
#include "tools/kept_memory.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"
#include "tools/watch/build_inputs.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kBuildNotes =
    "Example:\n\n"
    "  sfg build materials.json\n"
    "  sfg build materials -o shaders --target spirv,glsl --stage pixel,vertex --jobs 8\n"
    "  sfg build materials.json --shard 2/4 --cache /shared/cache\n\n"
    "A manifest says what is made of what:\n\n"
    "  { \"libraries\": [\"library\"], \"output\": \"shaders\",\n"
    "    \"shaders\": [ { \"graphs\": [\"materials/*.json\"], \"targets\": [\"spirv\", \"glsl\"],\n"
    "                   \"environments\": [\"sun.json\", \"night.json\"], \"tool\": \"lightloop\" } ] }\n\n"
    "Every graph is made in every environment, with every set of constants and level of detail, in every "
    "stage, for every\n"
    "target. Without a manifest, name a folder or a graph, and say the rest with options. `sfg reference "
    "manifest` tells\n"
    "all keys.\n\n"
    "Only what has changed is made. Results are kept in a cache by what they follow from: the texts of the "
    "fragments that a\n"
    "graph reaches, their include files, graph, environment, options and versions; where files lie does not "
    "matter. Equal\n"
    "texts are compiled once. An interrupted build goes on where it was.\n\n"
    "Exit status: 0 everything is there; 1 some shaders could not be made, the others are there; 2 wrong "
    "usage, or a\n"
    "manifest that cannot be used.\n";

/// Set by Ctrl-C. A second one ends the process at once.
std::atomic<bool> isInterrupted{false};
extern "C" void interrupt(int) {
  isInterrupted = true;
  std::signal(SIGINT, SIG_DFL);
}

std::string durationText(double seconds) {
  const auto whole = static_cast<long>(seconds + 0.5);
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
  return std::to_string(whole / 3600) + " h " + std::to_string(whole % 3600 / 60) + " min";
}

std::string fixed(double number, int digits) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(digits) << number;
  return text.str();
}

/// "1200 of 10000, 85 a second, 2 min left": a line that is written over again on a terminal, elsewhere a
/// line for each finished hundred. On the standard error stream.
class BuildProgress {
public:
  void show(std::size_t done, std::size_t all) {
    if (!line_.isTerminal()) {
      if (done % 100 == 0) std::cerr << textOf(done, all) + "\n" << std::flush;
      return;
    }
    if (const auto now = Clock::now(); now - last_ >= std::chrono::milliseconds(100) || done == all) {
      last_ = now;
      line_.show(textOf(done, all));
    }
  }
  void clear() { line_.clear(); }

private:
  using Clock = std::chrono::steady_clock;

  std::string textOf(std::size_t done, std::size_t all) const {
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    const double rate = static_cast<double>(done) / std::max(seconds, 1e-3);
    std::string text = std::to_string(done) + " of " + std::to_string(all) + ", ";
    text += fixed(rate, rate < 10 ? 1 : 0) + " a second";
    if (done == all) return text;
    return text + ", " + durationText(static_cast<double>(all - done) / std::max(rate, 1e-3)) + " left";
  }

  ProgressLine line_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_ = {};
};

/// "12 shaders: 9 built, 2 reused, 0 unchanged, 1 failed; 0.8 s", and where the time went.
std::string summaryOf(const host::BuildPlan& plan, const host::BuildReport& report) {
  std::ostringstream text;
  text << report.tasks << (report.tasks == 1 ? " shader: " : " shaders: ") << report.built << " built, "
       << report.reused << " reused, " << report.unchanged << " unchanged, " << report.failed << " failed";
  if (report.isStopped) text << ", " << report.tasks - report.done() << " left";
  text << "; " << fixed(report.seconds, 1) << " s\n";
  if (report.built == 0 && report.reused == 0) return text.str();
  text << "steps:";
  const char* separator = " ";
  for (const host::BuildReport::Step& step : report.steps) {
    text << separator << step.name << ' ' << fixed(step.seconds, 2) << " s";
    separator = ", ";
  }
  text << "\n";
  for (const host::BuildReport::Slow& slow : report.slowest)
    text << "slow: " << fixed(slow.seconds * 1e3, 1) << " ms " << plan.tasks[slow.task].output << "\n";
  return text.str();
}

class BuildCommand : public Command {
public:
  explicit BuildCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("build", "Make all shaders of a manifest, in one process")) {
    declareBuildOptions(app(), options_);
    declareChoice<bool>(app(), "--format", {{"text", false}, {"json", true}}, isJson_,
                        "`text`: progress on the standard error stream, then a report; `json`: a line for "
                        "each shader when it is done, and one for the report");
    CLI::Option* const depfile =
        app()
            .add_option("--MF", depfile_,
                        "also write a dependency file for Make or Ninja (also spelled `-MF`): all that the "
                        "shaders follow from, folders included")
            ->type_name("FILE");
    app()
        .add_option("--MT", target_, "the file in it that depends on them (also spelled `-MT`)")
        ->type_name("FILE")
        ->needs(depfile);
    app().footer(kBuildNotes);
  }

  int run(Diagnostics& diagnostics) override {
    const host::BuildPlan plan = makePlan(options_, diagnostics);
    if (!depfile_.empty()) writeDependencies(plan);
    host::BuildOptions options = options_.buildOptions();
    keepFreedMemory();
    std::signal(SIGINT, interrupt);
    options.stop = &isInterrupted;
    BuildProgress progress;
    options.onProblems = [&](std::span<const host::Diagnostic> problems) {
      progress.clear();
      diagnostics.show(problems);
    };
    options.onResult = [&](const host::BuildResult& result, std::size_t done, std::size_t all) {
      if (isJson_) {
        std::cout << host::eventJson(plan, result, done, all) << std::flush;
        return;
      }
      if (!result.diagnostics.empty()) {
        progress.clear();
        diagnostics.show(result.diagnostics);
      }
      progress.show(done, all);
    };
    const host::BuildReport report = host::build(plan, options);
    progress.clear();
    std::cout << (isJson_ ? host::reportJson(plan, report) : summaryOf(plan, report)) << std::flush;
    if (isInterrupted) endAsInterrupted();
    return report.failed != 0 ? kRefused : kDone;
  }

private:
  /// In front of the build, so that one that fails is tried again when something has changed.
  void writeDependencies(const host::BuildPlan& plan) const {
    std::vector<std::string> files;
    for (const auto& [file, unused] : look(buildInputs(plan))) files.push_back(file);
    writeOutput(depfile_, writeDepfile(target_.empty() ? plan.outputFolder : target_, files));
  }

  /// Whoever started this shall see that it was interrupted.
  static void endAsInterrupted() {
    std::signal(SIGINT, SIG_DFL);
    std::raise(SIGINT);
  }

  BuildCommandOptions options_;
  bool isJson_ = false;
  std::string depfile_;
  std::string target_;
};

}  // namespace

std::unique_ptr<Command> makeBuildCommand(CLI::App& parent) { return std::make_unique<BuildCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools

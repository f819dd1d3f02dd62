#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>
#include <sstream>

#include "sfg/host/build.h"
#include "tools/build_options.h"
#include "tools/command.h"
#include "tools/watch/build_inputs.h"
#include "tools/watch/troubles.h"
#include "tools/watch/watch_events.h"
#include "tools/watch/watcher.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kWatchNotes =
    "Example:\n\n"
    "  sfg watch materials.json\n"
    "  sfg watch brick.json -L library --target glsl -o out --exec 'touch reload'\n\n"
    "Shaders are built as `sfg build` does, at once and whenever something is saved that they are made of; "
    "graphs,\n"
    "folders and include files may come and go. An error is told when it comes and when it is mended; until "
    "then the\n"
    "shader stays as it was last good. Ctrl-C ends it.\n\n"
    "`--exec` runs a command of the system's shell after each round in which something was made or went "
    "wrong. It finds\n"
    "in its environment SFG_BUILT, how many shaders were made, and SFG_FAILED, how many could not be.\n\n"
    "Exit status: 0 ended by Ctrl-C; 2 wrong usage.\n";

constexpr std::chrono::milliseconds kPollingInterval{500};
/// How often folders may change while they are looked through.
constexpr int kMostReadings = 10;

std::atomic<bool> isEnded{false};
extern "C" void endWatch(int) { isEnded = true; }

// What is told of no shader stands under these names, which no output has.
constexpr const char* kPlan = "the list of shaders";
constexpr const char* kLibraries = "the libraries";
constexpr const char* kBuild = "the build";

/// "brick.json", or "brick.json and 3 more".
std::string namesOf(const std::vector<std::string>& paths) {
  std::string names = std::filesystem::path(paths.front()).filename().string();
  if (paths.size() > 1) names += " and " + std::to_string(paths.size() - 1) + " more";
  return names;
}

std::vector<host::Diagnostic> diagnosticsOf(const host::InputError& error) {
  std::vector<host::Diagnostic> told(error.related().begin(), error.related().end());
  told.push_back(error.diagnostic());
  return told;
}

/// "2 built, 1 reused, 9 unchanged; 0.1 s": what there is any of.
std::string textOf(const host::BuildReport& report) {
  std::ostringstream text;
  const char* separator = "";
  const auto add = [&](std::size_t count, const char* word) {
    if (count == 0) return;
    text << separator << count << ' ' << word;
    separator = ", ";
  };
  add(report.built, "built");
  add(report.reused, "reused");
  add(report.failed, "failed");
  add(report.unchanged, "unchanged");
  text << std::fixed << std::setprecision(1) << "; " << report.seconds << " s";
  return text.str();
}

class WatchCommand : public Command {
public:
  explicit WatchCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("watch", "Build shaders again whenever their files change")) {
    declareBuildOptions(app(), options_);
    app()
        .add_option("--exec", command_, "run a command of the shell after each round")
        ->type_name("COMMAND")
        ->allow_extra_args(false);
    app().add_flag("--poll", polls_,
                   "look at the files twice a second, for folders of which the system tells nothing, as on "
                   "some networks");
    declareChoice<bool>(app(), "--format", {{"text", false}, {"json", true}}, isJson_,
                        "`text`: what is told a person; `json`: a line for each round");
    app().footer(kWatchNotes);
  }

  int run(Diagnostics&) override {
    std::signal(SIGINT, endWatch);
    std::signal(SIGTERM, endWatch);
    std::unique_ptr<ChangeSignal> signal = polls_ ? nullptr : makeSystemSignal(kPollingInterval);
    Watcher watcher(signal ? std::move(signal) : makePollingSignal(kPollingInterval));
    checkArguments();
    for (std::vector<std::string> changed; !isEnded; changed = watcher.waitForChanges(isEnded)) {
      runRound(watcher, changed);
    }
    return kDone;
  }

private:
  /// What no change of a file could mend ends the command.
  void checkArguments() const {
    std::error_code error;
    if (!std::filesystem::exists(options_.manifest, error)) readPlan();
    try {
      readPlan();
    } catch (const host::InputError& fault) {
      if (fault.file().empty()) throw;
    }
  }

  /// Throws InputError. Its problems are told with the round.
  host::BuildPlan readPlan() const {
    std::ostringstream nobody;
    Diagnostics diagnostics(nobody, false);
    return makePlan(options_, diagnostics);
  }

  void runRound(Watcher& watcher, const std::vector<std::string>& changed) {
    Troubles now;
    WatchRound round{changed, {}, std::nullopt};
    const std::optional<host::BuildReport>& report = round.report;
    if (const std::optional<host::BuildPlan> plan = readPlan(watcher, now))
      round.report = build(*plan, now, round.made);
    if (isEnded) return;
    std::sort(round.made.begin(), round.made.end());
    // What could not be tried is as wrong as it was.
    if (!report) now.insert(troubles_.begin(), troubles_.end());
    const TroubleNews news = compareTroubles(troubles_, now);
    troubles_ = std::move(now);
    const bool isNews = !news.come.empty() || !news.gone.empty();
    const bool isMade = report && (report->built != 0 || report->reused != 0);
    if (!isNews && !isMade && !changed.empty()) return;
    tell(round, news);
    if (report && !command_.empty()) runCommand(*report);
  }

  /// The plan, read behind the moment from which changes of anything in it are told. Nothing when it cannot
  /// be read; then what was watched is watched on.
  std::optional<host::BuildPlan> readPlan(Watcher& watcher, Troubles& now) {
    for (int reading = 1;; ++reading) {
      std::optional<host::BuildPlan> plan;
      WatchedPaths paths = watched_;
      try {
        plan = readPlan();
        now[kPlan] = plan->problems;
        paths = buildInputs(*plan);
      } catch (const host::InputError& error) {
        now[kPlan] = diagnosticsOf(error);
      }
      paths.files.insert(options_.manifest);
      if (paths == watched_ || reading == kMostReadings) return plan;
      watched_ = std::move(paths);
      watcher.watch(watched_);
    }
  }

  /// Nothing when nothing could be tried.
  std::optional<host::BuildReport> build(const host::BuildPlan& plan, Troubles& now,
                                         std::vector<std::string>& made) const {
    host::BuildOptions options = options_.buildOptions();
    options.stop = &isEnded;
    options.onProblems = [&](std::span<const host::Diagnostic> problems) {
      std::vector<host::Diagnostic>& told = now[kLibraries];
      told.insert(told.end(), problems.begin(), problems.end());
    };
    options.onResult = [&](const host::BuildResult& result, std::size_t, std::size_t) {
      const std::string& output = plan.tasks[result.task].output;
      if (!result.diagnostics.empty()) now[output] = result.diagnostics;
      if (result.outcome == host::BuildOutcome::built || result.outcome == host::BuildOutcome::reused)
        made.push_back(output);
    };
    try {
      return host::build(plan, options);
    } catch (const host::InputError& error) {
      now[kBuild] = diagnosticsOf(error);
      return std::nullopt;
    }
  }

  void tell(const WatchRound& round, const TroubleNews& news) const {
    if (isJson_) {
      std::cout << roundJson(round, news) << std::flush;
      return;
    }
    // What was told in an earlier round may be told again, with the files as they are now.
    Diagnostics diagnostics = Diagnostics::standard();
    diagnostics.setDetail(options_.libraries.detail);
    diagnostics.show(news.come);
    for (const std::string& thing : news.gone) std::cout << "mended: " << thing << "\n";
    std::cout << (round.changed.empty() ? "watching" : namesOf(round.changed)) << ": "
              << (round.report ? textOf(*round.report) : "nothing can be built until that is mended") << "\n"
              << std::flush;
  }

  void runCommand(const host::BuildReport& report) const {
    ::setenv("SFG_BUILT", std::to_string(report.built + report.reused).c_str(), 1);
    ::setenv("SFG_FAILED", std::to_string(report.failed).c_str(), 1);
    const int status = std::system(command_.c_str());
    // Ctrl-C reaches the command alone while it runs.
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) isEnded = true;
    if (status != 0 && !isEnded) (isJson_ ? std::cerr : std::cout) << "`--exec` failed\n" << std::flush;
  }

  BuildCommandOptions options_;
  std::string command_;
  bool polls_ = false;
  bool isJson_ = false;
  WatchedPaths watched_;
  Troubles troubles_;
};

}  // namespace

std::unique_ptr<Command> makeWatchCommand(CLI::App& parent) { return std::make_unique<WatchCommand>(parent); }

}  // namespace TolmSDK::Graphics::sfg::tools

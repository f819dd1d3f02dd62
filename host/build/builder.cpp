#include <algorithm>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <set>
#include <unordered_set>
#include <utility>

#include "host/build/build_keys.h"
#include "host/build/build_state.h"
#include "host/build/file_stamps.h"
#include "host/build/output_file.h"
#include "host/build/shader_maker.h"
#include "host/documents/diagnose.h"
#include "host/job/run_all.h"
#include "sfg/host/build.h"
#include "text/ascii.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Tasks that one collapse makes: those from `first` to before `end`.
struct Unit {
  std::size_t first;
  std::size_t end;
};

bool isOneCollapse(const BuildTask& a, const BuildTask& b) {
  return a.graph == b.graph && a.environment == b.environment && a.collapse == b.collapse;
}

std::vector<Unit> unitsOf(const std::vector<BuildTask>& tasks) {
  std::vector<Unit> units;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    if (i == 0 || !isOneCollapse(tasks[i - 1], tasks[i])) units.push_back({i, i});
    units.back().end = i + 1;
  }
  return units;
}

bool isLibraryFile(const fs::path& file) {
  const std::string extension = file.extension().string();
  return equalsIgnoringCase(extension, ".fraglib") || equalsIgnoringCase(extension, ".h");
}

/// Everything in the folders that a library set is loaded of: names and hashes.
std::string contentsOf(const LibraryFolders& folders, FileHashes& hashes) {
  std::set<fs::path> all(folders.libraries.begin(), folders.libraries.end());
  all.insert(folders.includes.begin(), folders.includes.end());
  KeyText key;
  for (const fs::path& folder : folders.libraries) key.add(folder.string());
  key.add("");
  for (const fs::path& folder : folders.includes) key.add(folder.string());
  for (const fs::path& folder : all) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
      if (isLibraryFile(entry->path())) files.push_back(entry->path().string());
    }
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) key.add(file).add(hashes.hashOf(file));
  }
  return key.hash();
}

std::string journalName(const BuildShard& shard) {
  if (shard.count == 1) return std::string();
  return "-" + std::to_string(shard.index) + "-of-" + std::to_string(shard.count);
}

/// One round over a plan.
class Round {
public:
  Round(const BuildPlan& plan, const BuildOptions& options)
      : plan_(plan), options_(options), units_(unitsOf(plan.tasks)),
        state_(plan.outputFolder, journalName(options.shard)), texts_(options.cache.get(), times_) {
    for (auto& [file, mark] : state_.takeFiles()) hashes_.add(file, std::move(mark));
  }

  BuildReport run() {
    makeFolders();
    contents_ = contentsOf(plan_.folders, hashes_);
    if (options_.shard.count > 1) keepShard();
    for (const Unit& unit : units_) report_.tasks += unit.end - unit.first;
    runAll(units_.size(), std::max<std::size_t>(1, options_.threads),
           [this](std::size_t i) { runUnit(units_[i]); });
    finish();
    return std::move(report_);
  }

private:
  bool isStopped() const { return options_.stop != nullptr && *options_.stop; }
  fs::path stateFolder() const { return fs::path(plan_.outputFolder) / kStateFolder; }

  void makeFolders() const {
    std::error_code error;
    fs::create_directories(stateFolder(), error);
    if (error) {
      throw inputError(Finding::cannotWrite, plan_.outputFolder, {},
                       "the output folder cannot be made: " + error.message());
    }
    removeOldParts();
  }

  /// What builds left behind that were killed. Those of builds that are running are younger.
  void removeOldParts() const {
    constexpr std::chrono::hours kOld{24};
    std::error_code error;
    for (fs::directory_iterator entry(stateFolder(), error), end; !error && entry != end;
         entry.increment(error)) {
      if (entry->path().extension() != ".part") continue;
      std::error_code ignored;
      const auto time = entry->last_write_time(ignored);
      if (!ignored && fs::file_time_type::clock::now() - time > kOld) fs::remove(entry->path(), ignored);
    }
  }

  void keepShard() {
    std::erase_if(units_, [this](const Unit& unit) {
      const BuildTask& task = plan_.tasks[unit.first];
      const std::string hash = KeyText()
                                   .add(hashes_.hashOf(task.graph))
                                   .add(environmentHash(task))
                                   .add(collapseText(task, plan_.language))
                                   .hash();
      return std::stoull(hash.substr(0, 15), nullptr, 16) % options_.shard.count != options_.shard.index - 1;
    });
  }

  std::string environmentHash(const BuildTask& task) {
    return task.environment.empty() ? std::string() : hashes_.hashOf(task.environment);
  }

  /// Of everything that could matter to a task.
  std::string inputsOf(const BuildTask& task, const std::string& graph,
                       const std::string& environment) const {
    return KeyText()
        .add(versionsText())
        .add(areContentsSure_ ? contents_ : std::string())
        .add(graph)
        .add(environment)
        .add(collapseText(task, plan_.language))
        .add(outputText(task))
        .hash();
  }

  void runUnit(const Unit& unit) {
    if (isStopped()) return;
    const BuildTask& first = plan_.tasks[unit.first];
    const std::string graph = hashes_.hashOf(first.graph);
    const std::string environment = environmentHash(first);
    std::vector<std::size_t> rest;
    for (std::size_t i = unit.first; i < unit.end; ++i) {
      if (!answerUnchanged(i, inputsOf(plan_.tasks[i], graph, environment))) rest.push_back(i);
    }
    if (!rest.empty()) UnitRun(*this, rest).run();
  }

  /// Whether nothing that could matter has changed.
  bool answerUnchanged(std::size_t index, const std::string& inputs) {
    const auto start = Clock::now();
    const OutputNote* const note = state_.find(plan_.tasks[index].output);
    if (note == nullptr || note->inputs != inputs || !isIntact(index, *note)) return false;
    const std::vector<std::string>* const files = state_.findFiles(note->files);
    if (files == nullptr) return false;
    BuildResult result;
    result.task = index;
    result.outcome = BuildOutcome::unchanged;
    result.seconds = secondsSince(start);
    result.files = withDocuments(plan_.tasks[index], *files);
    answer(std::move(result));
    return true;
  }

  static std::vector<std::string> withDocuments(const BuildTask& task,
                                                const std::vector<std::string>& reached) {
    std::vector<std::string> files{task.graph};
    if (!task.environment.empty()) files.push_back(task.environment);
    files.insert(files.end(), reached.begin(), reached.end());
    return files;
  }

  /// Whether the files are there as they were written.
  bool isIntact(std::size_t index, const OutputNote& note) const {
    const BuildTask& task = plan_.tasks[index];
    if (note.marks.size() != (task.reflection.empty() ? 1 : 2)) return false;
    if (!isIntact(task.output, note.marks[0])) return false;
    return task.reflection.empty() || isIntact(task.reflection, note.marks[1]);
  }
  static bool isIntact(const std::string& file, const FileMark& mark) {
    const std::optional<FileStamp> stamp = stampOf(file);
    if (!stamp || stamp->size != mark.stamp.size) return false;
    if (stamp->isSame(mark.stamp)) return true;
    const std::optional<std::string> bytes = readBytes(file);
    return bytes && hashOfBytes(*bytes) == mark.hash;
  }
  static std::string hashOfBytes(std::string_view bytes) { return KeyText().add(bytes).hash(); }

  /// The tasks of a unit for which it is not enough that nothing has changed.
  class UnitRun {
  public:
    UnitRun(Round& round, std::vector<std::size_t> tasks)
        : round_(round), tasks_(std::move(tasks)), first_(round.plan_.tasks[tasks_.front()]) {}

    void run() {
      round_.loadLibraries();
      readDocuments();
      maker_.emplace(round_.libraries_, round_.texts_, round_.times_);
      for (const std::size_t index : tasks_) {
        if (round_.isStopped()) return;
        start_ = Clock::now();
        BuildResult result;
        result.task = index;
        result.outcome = runGuarded(index);
        result.diagnostics = takeDiagnostics(result.outcome);
        result.files = withDocuments(first_, reached_.files);
        result.seconds = secondsSince(start_);
        round_.answer(std::move(result));
      }
    }

  private:
    /// Once: whatever is made is made of these texts.
    void readDocuments() {
      const StepTimer timer(round_.times_, BuildStep::key);
      const auto read = [&](const std::string& file, std::optional<std::string>& text, std::string& hash) {
        text = round_.hashes_.read(file, hash);
        return text ? Document::fromText(*text, file) : Document::fromFile(file);
      };
      std::optional<std::string> graph;
      std::optional<std::string> environment;
      graph_ = read(first_.graph, graph, graphHash_);
      if (!first_.environment.empty()) environment_ = read(first_.environment, environment, environmentHash_);
      isRead_ = graph && (environment || first_.environment.empty());
      if (isRead_) reached_ = round_.keys_->reached(*graph, environment.value_or(std::string()));
    }

    std::string keyOf(const BuildTask& task) const {
      return KeyText()
          .add(versionsText())
          .add(graphHash_)
          .add(environmentHash_)
          .add(reached_.hash)
          .add(collapseText(task, round_.plan_.language))
          .add(outputText(task))
          .hash();
    }

    /// Whatever happens to one task, the others go on.
    BuildOutcome runGuarded(std::size_t index) {
      try {
        return runTask(index);
      } catch (const std::bad_alloc&) {
        written_.push_back(
            diagnose(Finding::outOfMemory, Severity::error, first_.graph, {}, "out of memory"));
      } catch (const std::exception& error) {
        written_.push_back(diagnose(Finding::failure, Severity::error, first_.graph, {}, error.what()));
      }
      return BuildOutcome::failed;
    }

    BuildOutcome runTask(std::size_t index) {
      const BuildTask& task = round_.plan_.tasks[index];
      const std::string key = isRead_ ? keyOf(task) : std::string();
      const OutputNote* const note = round_.state_.find(task.output);
      if (isRead_ && note != nullptr && note->key == key && round_.isIntact(index, *note)) {
        this->note(task, key, note->marks);
        return BuildOutcome::unchanged;
      }
      if (const auto known = isRead_ ? findKnown(task, key) : std::nullopt)
        return write(task, key, *known->bytes, known->reflection) ? BuildOutcome::reused
                                                                  : BuildOutcome::failed;
      return make(task, key);
    }

    /// What the cache has for the key: a line with the key of the bytes, then the reflection.
    std::optional<ShaderMaker::Made> findKnown(const BuildTask& task, const std::string& key) {
      BuildCache* const cache = round_.options_.cache.get();
      if (cache == nullptr) return std::nullopt;
      const StepTimer timer(round_.times_, BuildStep::cache);
      const std::optional<std::string> entry = cache->find(key);
      const std::size_t end = entry ? entry->find('\n') : std::string::npos;
      if (end == std::string::npos) return std::nullopt;
      std::optional<std::string> bytes = cache->find(entry->substr(0, end));
      if (!bytes) return std::nullopt;
      ShaderMaker::Made known;
      known.bytes = std::make_shared<const std::string>(std::move(*bytes));
      if (!task.reflection.empty()) known.reflection = entry->substr(end + 1);
      return known;
    }

    BuildOutcome make(const BuildTask& task, const std::string& key) {
      if (!isCollapsed_) {
        ++round_.collapses_;
        isCollapsed_ = maker_->collapse(*graph_, environment_, task.collapse);
        if (!*isCollapsed_) failure_ = maker_->takeDiagnostics();
      }
      if (!*isCollapsed_) return BuildOutcome::failed;
      const std::optional<ShaderMaker::Made> made = maker_->make(task);
      if (!made || !write(task, key, *made->bytes, made->reflection)) return BuildOutcome::failed;
      if (BuildCache* const cache = round_.options_.cache.get(); cache != nullptr && !key.empty()) {
        const StepTimer timer(round_.times_, BuildStep::cache);
        cache->keep(key, made->textKey + "\n" + made->reflection);
      }
      return made->isCompiled ? BuildOutcome::built : BuildOutcome::reused;
    }

    std::vector<Diagnostic> takeDiagnostics(BuildOutcome outcome) {
      std::vector<Diagnostic> told = maker_->takeDiagnostics();
      if (outcome == BuildOutcome::failed) told.insert(told.begin(), failure_.begin(), failure_.end());
      told.insert(told.end(), written_.begin(), written_.end());
      written_.clear();
      return told;
    }

    bool write(const BuildTask& task, const std::string& key, std::string_view bytes,
               const std::string& reflection) {
      const StepTimer timer(round_.times_, BuildStep::write);
      std::vector<FileMark> marks;
      if (!writeFile(task.output, bytes, marks)) return false;
      if (!task.reflection.empty() && !writeFile(task.reflection, reflection, marks)) return false;
      if (!key.empty()) note(task, key, marks);
      return true;
    }

    bool writeFile(const std::string& file, std::string_view bytes, std::vector<FileMark>& marks) {
      FileStamp stamp;
      if (auto reason = round_.writeOutput(file, bytes, stamp)) {
        written_.push_back(
            diagnose(Finding::cannotWrite, Severity::error, file, {}, "cannot be written: " + *reason));
        return false;
      }
      marks.push_back({stamp, hashOfBytes(bytes)});
      return true;
    }

    void note(const BuildTask& task, const std::string& key, const std::vector<FileMark>& marks) {
      OutputNote note;
      note.inputs = round_.inputsOf(task, graphHash_, environmentHash_);
      note.key = key;
      note.marks = marks;
      note.files = round_.state_.noteFiles(reached_.files);
      round_.state_.note(task.output, note);
    }

    Round& round_;
    std::vector<std::size_t> tasks_;
    const BuildTask& first_;
    std::optional<Document> graph_;
    std::optional<Document> environment_;
    bool isRead_ = false;
    std::string graphHash_;
    std::string environmentHash_;
    Reached reached_;
    std::optional<ShaderMaker> maker_;
    std::optional<bool> isCollapsed_;
    std::vector<Diagnostic> failure_;
    std::vector<Diagnostic> written_;
    Clock::time_point start_;
  };

  void loadLibraries() {
    const std::lock_guard<std::mutex> lock(librariesMutex_);
    if (libraries_) return;
    const StepTimer timer(times_, BuildStep::libraries);
    auto loaded = LibrarySet::load(plan_.folders, plan_.language);
    keys_ = std::make_unique<LibraryKeys>(loaded);
    // What changed while it was loaded must be looked at again.
    FileHashes now;
    if (contentsOf(plan_.folders, now) != contents_) areContentsSure_ = false;
    libraries_ = std::move(loaded);
    tell(libraries_->problems());
  }

  std::optional<std::string> writeOutput(const std::string& file, std::string_view bytes, FileStamp& stamp) {
    const std::string folder = fs::path(file).parent_path().string();
    {
      const std::lock_guard<std::mutex> lock(foldersMutex_);
      if (folders_.insert(folder).second) {
        std::error_code error;
        fs::create_directories(folder, error);
      }
    }
    return replaceStamped(file, bytes, stateFolder(), stamp);
  }

  void tell(std::span<const Diagnostic> diagnostics) {
    if (diagnostics.empty() || !options_.onProblems) return;
    const std::lock_guard<std::mutex> lock(answerMutex_);
    options_.onProblems(diagnostics);
  }

  void answer(BuildResult result) {
    for (auto& [file, mark] : hashes_.takeLearnt()) state_.noteFile(file, mark);
    if (options_.cache) tell(options_.cache->takeProblems());
    const std::lock_guard<std::mutex> lock(answerMutex_);
    count(result);
    if (options_.onResult) options_.onResult(result, report_.done(), report_.tasks);
  }

  void count(const BuildResult& result) {
    switch (result.outcome) {
    case BuildOutcome::built: ++report_.built; break;
    case BuildOutcome::reused: ++report_.reused; break;
    case BuildOutcome::unchanged: ++report_.unchanged; break;
    case BuildOutcome::failed: ++report_.failed; break;
    }
    constexpr std::size_t kShown = 10;
    auto& slowest = report_.slowest;
    const BuildReport::Slow slow{result.task, result.seconds};
    const auto isSlower = [](const BuildReport::Slow& a, const BuildReport::Slow& b) {
      return a.seconds > b.seconds;
    };
    slowest.insert(std::upper_bound(slowest.begin(), slowest.end(), slow, isSlower), slow);
    if (slowest.size() > kShown) slowest.pop_back();
  }

  void finish() {
    for (auto& [file, mark] : hashes_.takeLearnt()) state_.noteFile(file, mark);
    if (!state_.fault().empty()) {
      tell(std::vector{diagnose(Finding::cannotWrite, Severity::warning, stateFolder().string(), {},
                                "what was built cannot be noted, and is looked at again the next time: " +
                                    state_.fault())});
    }
    state_.compact();
    if (options_.cache) {
      options_.cache->shrink();
      tell(options_.cache->takeProblems());
    }
    report_.isStopped = report_.done() < report_.tasks;
    report_.seconds = secondsSince(start_);
    report_.collapses = collapses_;
    report_.compiledTexts = texts_.compiled();
    for (std::size_t i = 0; i < static_cast<std::size_t>(BuildStep::count); ++i)
      report_.steps.push_back({kStepNames[i], times_.seconds(static_cast<BuildStep>(i))});
  }

  const BuildPlan& plan_;
  const BuildOptions& options_;
  Clock::time_point start_ = Clock::now();
  std::vector<Unit> units_;
  BuildState state_;
  FileHashes hashes_;
  std::string contents_;  // of the library folders
  std::atomic<bool> areContentsSure_{true};
  StepTimes times_;
  CompiledTexts texts_;
  std::atomic<std::size_t> collapses_{0};

  std::mutex librariesMutex_;
  std::shared_ptr<const LibrarySet> libraries_;
  std::unique_ptr<LibraryKeys> keys_;

  std::mutex foldersMutex_;
  std::unordered_set<std::string> folders_;

  std::mutex answerMutex_;
  BuildReport report_;
};

}  // namespace

BuildReport build(const BuildPlan& plan, const BuildOptions& options) { return Round(plan, options).run(); }

const char* nameOf(BuildOutcome outcome) noexcept {
  switch (outcome) {
  case BuildOutcome::built: return "built";
  case BuildOutcome::reused: return "reused";
  case BuildOutcome::unchanged: return "unchanged";
  case BuildOutcome::failed: break;
  }
  return "failed";
}

}  // namespace TolmSDK::Graphics::sfg::host

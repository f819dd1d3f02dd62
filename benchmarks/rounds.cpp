#include "benchmarks/rounds.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/memory_meter.h"
#include "benchmarks/yardstick.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr double kLong = 1.0;  // seconds of a round after which one repetition is enough
constexpr double kMostRepetitions = 10;
constexpr int kThreadRepetitions = 3;

/// Work whose best repetition counts, by the name of its figure.
struct Contestant {
  const char* name;
  std::function<void()> round;
};

/// Seconds of one round: the least of all repetitions.
struct Times {
  double processor = std::numeric_limits<double>::infinity();  ///< of one thread, or of all of the process
  double wall = std::numeric_limits<double>::infinity();       ///< divided by the number of threads
};

class BestTimes : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) failure_ = run.error_message;
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      const auto rounds = static_cast<double>(run.iterations);
      Times& best = times_[{run.run_name.function_name, run.threads}];
      best.processor = std::min(best.processor, run.cpu_accumulated_time / rounds);
      best.wall = std::min(best.wall, run.real_accumulated_time / rounds);
    }
  }
  /// Why a round failed; empty when none did.
  const std::string& failure() const { return failure_; }
  const Times& of(const char* name, int threads = 1) const { return times_.at({name, threads}); }

private:
  std::map<std::pair<std::string, std::int64_t>, Times> times_;
  std::string failure_;
};

void repeat(benchmark::State& state, const std::function<void()>& round) {
  try {
    for (auto _ : state) round();
  } catch (const std::exception& failure) {
    state.SkipWithError(failure.what());
  }
}

/// Measures the contestants, each set up by `configure`. Their repetitions take turns in random order, so
/// that what else the machine does hits all of them.
template <class Configure>
BestTimes measure(const std::vector<Contestant>& contestants, const Configure& configure) {
  std::string program = "sfg_benchmarks";
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  char* arguments[] = {program.data(), interleaving.data(), nullptr};
  int count = 2;
  benchmark::Initialize(&count, arguments);

  benchmark::ClearRegisteredBenchmarks();
  for (const Contestant& contestant : contestants) {
    configure(*benchmark::RegisterBenchmark(
        contestant.name, [round = contestant.round](benchmark::State& state) { repeat(state, round); }));
  }
  BestTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  if (!times.failure().empty()) throw std::runtime_error(times.failure());
  return times;
}

/// Whose processor time counts: that of the thread which calls the rounds, or of all threads.
void countThreads(const Work& work, benchmark::internal::Benchmark& benchmark) {
  if (work.usesThreads) benchmark.MeasureProcessCPUTime();
}

double measureOnce(const Work& work) {
  const BestTimes times =
      measure({{"once", work.round}}, [&](auto& benchmark) { countThreads(work, *benchmark.Iterations(1)); });
  return times.of("once").processor;
}

/// What a second thread gains, for the round and for its reference.
Figures measureGains(const Work& work, double seconds) {
  const BestTimes times =
      measure({{"round", work.round}, {"reference", work.reference}}, [&](auto& benchmark) {
        benchmark.MinTime(seconds)->Repetitions(kThreadRepetitions)->Threads(1)->Threads(2);
      });
  const auto gain = [&](const char* name) {
    return 2 * times.of(name, 1).processor / times.of(name, 2).processor;
  };
  const auto wallGain = [&](const char* name) { return times.of(name, 1).wall / times.of(name, 2).wall; };
  return {{"gain", gain("round")},
          {"wallGain", wallGain("round")},
          {"plainGain", gain("reference")},
          {"plainWallGain", wallGain("reference")}};
}

void measureMemory(const Work& work, std::size_t textLength, Figures& figures) {
  startMemoryMeter();
  work.round();
  const MemoryReading memory = readMemoryMeter();
  const double characters = work.characters != 0 ? work.characters : static_cast<double>(textLength);
  if (characters != 0) {
    figures["characters"] = characters;
    figures["bytesPerChar"] = static_cast<double>(memory.peakBytes) / characters;
  }
  if (work.fragments != 0) {
    figures["allocsPerFragment"] =
        static_cast<double>(memory.allocations) / static_cast<double>(work.fragments);
  }
}

}  // namespace

Figures measureWork(const Work& work, double seconds) {
  if (work.inTwoThreads) return measureGains(work, seconds);
  // The first round pays for what profiles keep from then on.
  const double first = measureOnce(work);
  Figures figures = {{"first", first}};
  std::vector<Contestant> contestants = {{"best", work.round}};
  if (work.reference) contestants.push_back({"reference", work.reference});

  const WString text = work.text ? work.text() : WString();
  std::optional<Yardstick> yardstick;
  std::optional<Emitter> emitter;
  if (work.text) {
    yardstick.emplace(text);
    emitter.emplace(text);
    if (emitter->print().view() != text) throw std::logic_error("the emitter writes another text");
    contestants.push_back({"yardstick", [&] { yardstick->copy(); }});
    contestants.push_back({"emitter", [&] { emitter->print(); }});
  }

  const double repetitions = std::clamp(seconds / first, first < kLong ? 3.0 : 1.0, kMostRepetitions);
  const double share = seconds / repetitions / static_cast<double>(contestants.size());
  const BestTimes times = measure(contestants, [&](auto& benchmark) {
    countThreads(work, *benchmark.MinTime(share)->Repetitions(static_cast<int>(repetitions)));
  });
  for (const Contestant& contestant : contestants) {
    figures[contestant.name] = times.of(contestant.name).processor;
  }
  if (work.usesThreads) figures["wall"] = times.of("best").wall;
  measureMemory(work, text.size(), figures);
  return figures;
}

Figures measureLargeWork(const Work& work) {
  Figures figures = {{"best", measureOnce(work)}};
  measureMemory(work, 0, figures);
  return figures;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

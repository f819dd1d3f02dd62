#include "benchmarks/measure.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "benchmarks/memory_meter.h"
#include "benchmarks/stopwatch.h"
#include "benchmarks/yardstick.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

using Json = nlohmann::json;

constexpr double kShortest = 100e-6;  // seconds that the clock measures well
constexpr double kLong = 1.0;         // seconds of rounds after which one is enough
constexpr rlim_t kMemoryLimit = rlim_t{4} << 30;
constexpr std::string_view kTooLarge = "the generated code is too large";
constexpr char kOutOfTime[] = "{\"stopped\":\"out of time\"}";

/// Work whose best round counts. Short rounds are measured several at a time: the clock does not resolve one.
struct Contestant {
  const char* name;
  std::function<void()> round;
  double best = std::numeric_limits<double>::infinity();
  int batch = 1;

  /// Answers the seconds spent.
  double measure() {
    const double taken = secondsOf([&] {
      for (int i = 0; i < batch; ++i) round();
    });
    if (taken < kShortest) {
      batch *= 2;
    } else {
      best = std::min(best, taken / batch);
    }
    return taken;
  }
};

/// Figures of a round, of what it is compared with, and of its memory. The contestants take turns, so that
/// what else the machine does hits all of them.
Figures measureRounds(const Work& work, double seconds) {
  // The first round pays for what profiles keep from then on.
  Figures figures = {{"first", secondsOf(work.round)}};
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

  double spent = 0;
  const auto isOpen = [](const Contestant& contestant) { return std::isinf(contestant.best); };
  for (int rounds = 0; spent < seconds || (rounds < 3 && spent < kLong) ||
                       std::any_of(contestants.begin(), contestants.end(), isOpen);
       ++rounds) {
    for (Contestant& contestant : contestants) spent += contestant.measure();
  }
  for (const Contestant& contestant : contestants) figures[contestant.name] = contestant.best;

  startMemoryMeter();
  work.round();
  const MemoryReading memory = readMemoryMeter();
  const double characters = work.characters != 0 ? work.characters : static_cast<double>(text.size());
  if (characters != 0) {
    figures["characters"] = characters;
    figures["bytesPerChar"] = static_cast<double>(memory.peakBytes) / characters;
  }
  if (work.fragments != 0) {
    figures["allocsPerFragment"] =
        static_cast<double>(memory.allocations) / static_cast<double>(work.fragments);
  }
  return figures;
}

void stopOutOfTime(int) {
  static_cast<void>(!write(STDOUT_FILENO, kOutOfTime, sizeof kOutOfTime - 1));
  _exit(0);
}

void setBounds(const MeasureSettings& settings) {
  const rlimit memory = {kMemoryLimit, kMemoryLimit};
  setrlimit(RLIMIT_AS, &memory);
  std::signal(SIGXCPU, stopOutOfTime);
  const rlimit time = {settings.limit, settings.limit + 1};
  setrlimit(RLIMIT_CPU, &time);
}

Figures measureCase(const std::string& caseName, std::size_t size, double seconds) {
  for (const Case& one : allCases()) {
    if (one.name != caseName) continue;
    const Work work = one.make(size);
    if (work.measure) return work.measure();
    // Has the code in memory and bound, which belongs to no case.
    one.make(one.sizes.front()).round();
    return measureRounds(work, seconds);
  }
  throw std::invalid_argument("no such case");
}

}  // namespace

Outcome measureInProcess(const std::string& program, const std::string& caseName, std::size_t size,
                         const MeasureSettings& settings) {
  const std::string command =
      "exec '" + program + "' --measure='" + caseName + "' --size=" + std::to_string(size) +
      " --time=" + std::to_string(settings.seconds) + " --limit=" + std::to_string(settings.limit) +
      " --malloc=" + (settings.keepsMemory ? "keep" : "default");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  if (!pipe) return {{}, {}, "cannot start a process"};
  std::string answer;
  for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) answer += static_cast<char>(c);
  const Json json = Json::parse(answer, nullptr, false);
  if (!json.is_object()) return {{}, {}, "the process broke off"};
  return {json.value("figures", Figures()), json.value("stopped", ""), json.value("failed", "")};
}

void measureHere(const std::string& caseName, std::size_t size, const MeasureSettings& settings) {
  setBounds(settings);
  if (settings.keepsMemory) keepFreedMemory();
  Json answer;
  try {
    answer["figures"] = measureCase(caseName, size, settings.seconds);
  } catch (const std::bad_alloc&) {
    answer["stopped"] = "out of memory";
  } catch (const std::exception& failure) {
    const std::string message = failure.what();
    answer[message.find(kTooLarge) != std::string::npos ? "stopped" : "failed"] = message;
  }
  std::puts(answer.dump().c_str());
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

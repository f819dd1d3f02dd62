#include "benchmarks/measure.h"

#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

#include "benchmarks/memory_meter.h"
#include "benchmarks/rounds.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

using Json = nlohmann::json;

constexpr rlim_t kMemoryLimit = rlim_t{4} << 30;
constexpr std::string_view kTooLarge = "the generated code is too large";
constexpr char kOutOfTime[] = "{\"stopped\":\"out of time\"}";

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

const Case& findCase(const std::string& name) {
  for (const Case& one : allCases()) {
    if (one.name == name) return one;
  }
  throw std::invalid_argument("no such case");
}

Figures measureCase(const Case& one, std::size_t size, double seconds) {
  const Work work = one.make(size);
  if (one.isLarge) return measureLargeWork(work);
  // Has the code in memory and bound, which belongs to no case.
  if (!work.inTwoThreads) one.make(one.sizes.front()).round();
  return measureWork(work, seconds);
}

/// An exception's message as an answer.
Json answerTo(const std::string& message) {
  if (message == std::bad_alloc().what()) return {{"stopped", "out of memory"}};
  if (message.find(kTooLarge) != std::string::npos) return {{"stopped", message}};
  return {{"failed", message}};
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
  if (settings.keepsMemory) keepFreedMemory();
  Json answer;
  try {
    const Case& one = findCase(caseName);
    if (!one.isLarge) setBounds(settings);
    answer["figures"] = measureCase(one, size, settings.seconds);
  } catch (const std::exception& failure) {
    answer = answerTo(failure.what());
  }
  std::puts(answer.dump().c_str());
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

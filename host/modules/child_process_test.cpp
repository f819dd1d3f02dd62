#include "host/modules/child_process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Kind = ChildOutcome::Kind;
using namespace std::chrono_literals;

int requests = 0;

/// What the request names.
std::string work(const std::string& request) {
  ++requests;
  if (request == "count") return std::to_string(requests);
  if (request == "large") return std::string(3'000'000, 'x');
  if (request == "crash") std::raise(SIGSEGV);
  if (request == "throw") throw std::runtime_error("away");
  if (request == "sleep") std::this_thread::sleep_for(60s);
  if (request == "spin") {
    for (volatile bool isEndless = true; isEndless;) {
    }
  }
  if (request != "memory") return request;
  try {
    const std::vector<char> much(std::size_t{1} << 30, 'x');
    return much.back() == 'x' ? "much" : "";
  } catch (const std::bad_alloc&) {
    return "too much";
  }
}

/// The maker lives as long as its children.
std::unique_ptr<ChildProcess> childWith(const ChildLimits& limits) {
  const std::shared_ptr<ChildMaker> maker = ChildMaker::start(work, limits);
  return maker == nullptr ? nullptr : maker->make();
}

class ChildProcessTest : public testing::Test {
protected:
  void SetUp() override {
    if (childWith({}) == nullptr) GTEST_SKIP() << "there are no children here";
  }
};

TEST_F(ChildProcessTest, AnswersOneRequestBehindTheOther) {
  const std::unique_ptr<ChildProcess> child = childWith({});
  EXPECT_EQ(child->ask("").answer, "");
  EXPECT_EQ(child->ask(std::string(1'000'000, 'y')).answer, std::string(1'000'000, 'y'));
  EXPECT_EQ(child->ask("large").answer, std::string(3'000'000, 'x'));
  const ChildOutcome outcome = child->ask("count");
  EXPECT_EQ(outcome.kind, Kind::answered);
  EXPECT_EQ(outcome.answer, "4");
  EXPECT_EQ(requests, 0) << "the work is done in a copy";
}

TEST_F(ChildProcessTest, OutlivesACrash) {
  const std::unique_ptr<ChildProcess> child = childWith({});
  EXPECT_EQ(child->ask("crash").kind, Kind::crashed);
  EXPECT_EQ(child->ask("count").kind, Kind::crashed) << "it is gone";
  const ChildOutcome thrown = childWith({})->ask("throw");
  EXPECT_EQ(thrown.kind, Kind::crashed);
  EXPECT_EQ(thrown.signal, 0);
}

TEST_F(ChildProcessTest, EndsWorkThatDoesNot) {
  EXPECT_EQ(childWith({1s, 0, 0s})->ask("spin").kind, Kind::outOfTime);
  EXPECT_EQ(childWith({0s, 0, 300ms})->ask("sleep").kind, Kind::outOfTime);
}

TEST_F(ChildProcessTest, LimitsMemory) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer takes all addresses";
#endif
  EXPECT_EQ(childWith({0s, std::uint64_t{1} << 28, 0s})->ask("memory").answer, "too much");
  EXPECT_EQ(childWith({})->ask("memory").answer, "much");
}

TEST_F(ChildProcessTest, EndsWithItsObject) {
  const auto start = std::chrono::steady_clock::now();
  { const std::unique_ptr<ChildProcess> child = childWith({}); }
  EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
}

TEST_F(ChildProcessTest, ServesThreadsAtOnce) {
  const std::shared_ptr<ChildMaker> maker = ChildMaker::start(work, {});
  std::vector<std::thread> threads;
  std::vector<std::string> answers(8);
  for (std::size_t t = 0; t < answers.size(); ++t) {
    threads.emplace_back([&answers, &maker, t] {
      for (int i = 0; i < 20; ++i) answers[t] += maker->make()->ask(std::to_string(t)).answer;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t t = 0; t < answers.size(); ++t)
    EXPECT_EQ(answers[t], std::string(20, static_cast<char>('0' + t)));
}

/// A lock that a thread of this process holds all the time, as threads of a host hold those of the system.
std::mutex busy;

std::string workWithLock(const std::string& request) {
  const std::lock_guard<std::mutex> lock(busy);
  return request;
}

TEST_F(ChildProcessTest, WaitsForNoLockThatAThreadOfThisProcessHolds) {
  const std::shared_ptr<ChildMaker> maker = ChildMaker::start(workWithLock, {0s, 0, 20s});
  const std::lock_guard<std::mutex> lock(busy);
  const std::unique_ptr<ChildProcess> child = maker->make();
  const ChildOutcome outcome = child->ask("through");
  EXPECT_EQ(outcome.kind, Kind::answered);
  EXPECT_EQ(outcome.answer, "through");
}

TEST_F(ChildProcessTest, MakesChildrenBehindAnothersEnd) {
  const std::shared_ptr<ChildMaker> maker = ChildMaker::start(work, {});
  const std::unique_ptr<ChildProcess> first = maker->make();
  EXPECT_EQ(first->ask("crash").signal, SIGSEGV);
  EXPECT_EQ(maker->make()->ask("a").answer, "a");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

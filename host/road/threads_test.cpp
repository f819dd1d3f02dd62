// Many jobs at once, while the libraries they use are loaded anew.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>
#include <vector>

#include "sfg/host/compile.h"
#include "sfg/host/job.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr std::size_t kThreads = 8;
constexpr std::size_t kRounds = 4;

/// The set that new jobs take: exchanged by one thread, taken by all.
class CurrentSet {
public:
  explicit CurrentSet(std::shared_ptr<const LibrarySet> set) : set_(std::move(set)) {}
  std::shared_ptr<const LibrarySet> get() const {
    const std::lock_guard lock(mutex_);
    return set_;
  }
  void exchange(std::shared_ptr<const LibrarySet> set) {
    const std::lock_guard lock(mutex_);
    set_.swap(set);
  }

private:
  mutable std::mutex mutex_;
  std::shared_ptr<const LibrarySet> set_;
};

/// The whole road; the shader, and its module's size where there are compilers.
std::string travel(const std::shared_ptr<const LibrarySet>& libraries, const std::string& material) {
  CollapseOptions options;
  options.tool = CollapseTool::lightLoop;
  Job job(libraries, Document::fromFile("examples/materials/" + material), options,
          Document::fromFile("examples/environments/studio.json"));
  job.collapse();
  std::string result;
  for (const Diagnostic& warning : job.warnings()) result += warning.place() + ": " + warning.text + "\n";
  const Shader shader = job.assemble();
  result += shader.text + job.resultJson();
  if (hasCompilers()) result += std::to_string(compileToSpirv(shader).size());
  return result;
}

TEST(ThreadsTest, JobsGoOnWhileLibrariesAreLoadedAnew) {
  const LibraryFolders folders{{"library"}, {"library"}};
  CurrentSet current(LibrarySet::load(folders));
  const std::vector<std::string> materials = {"marble.json", "checker_unlit.json"};
  std::vector<std::string> expected;
  for (const std::string& material : materials) expected.push_back(travel(current.get(), material));

  std::atomic<bool> done = false;
  std::atomic<std::size_t> same = 0;
  std::thread loader([&] {
    while (!done) current.exchange(current.get()->reload());
  });
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      for (std::size_t round = 0; round < kRounds; ++round) {
        const std::size_t material = (i + round) % materials.size();
        if (travel(current.get(), materials[material]) == expected[material]) ++same;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  done = true;
  loader.join();
  EXPECT_EQ(same, kThreads * kRounds);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

// Many jobs at once, while the libraries they use are loaded anew.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "sfg/host/check.h"
#include "sfg/host/compile.h"
#include "sfg/host/job.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

constexpr std::size_t kThreads = 8;
constexpr std::size_t kRounds = 3;

/// SFG_SECONDS=600 goes on for ten minutes, if kRounds are done by then.
std::chrono::seconds leastTime() {
  const char* const seconds = std::getenv("SFG_SECONDS");
  return std::chrono::seconds(seconds == nullptr ? 0 : std::atoi(seconds));
}

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

/// A folder with a fragment that no compiler takes.
class BrokenFolder {
public:
  BrokenFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sfg_threads_XXXXXX").string();
    path_ = mkdtemp(pattern.data());
    std::ofstream(path_ / "broken.fraglib") << R"json({ "broken": { "language": ["dx11"],
  "implementation": [ "void broken(out float4 result)", "{", "result = colour;", "}" ] } })json";
  }
  ~BrokenFolder() { std::filesystem::remove_all(path_); }
  BrokenFolder(const BrokenFolder&) = delete;
  BrokenFolder& operator=(const BrokenFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

private:
  std::filesystem::path path_;
};

constexpr const char* kBroken = R"({ "outputs": [ { "name": "color", "type": "float4", "node": "bad" } ],
  "nodes": [ { "name": "bad", "fragment": "broken" } ] })";

std::string textOf(const std::vector<Diagnostic>& diagnostics) {
  std::string text;
  for (const Diagnostic& told : diagnostics) text += told.place() + ": " + told.text + "\n";
  return text;
}

/// What a compiler has against the shader, and where that comes from.
std::string explained(const Job& job, const Shader& shader) {
  try {
    if (!hasCompilers()) throw CompileError("refused", {{5, "wrong"}}, true);
    compileToSpirv(shader);
    return "compiles";
  } catch (const CompileError& error) {
    return textOf(job.explain(shader, error));
  }
}

/// The whole road: all that a job and a check tell of a material, its modules and their interfaces.
std::string travel(const std::shared_ptr<const LibrarySet>& libraries, const Checker& checker,
                   const Document& graph) {
  CollapseOptions options;
  options.tool = graph.isFile() ? CollapseTool::lightLoop : CollapseTool::standard;
  Job job(libraries, graph, options, Document::fromFile("examples/environments/studio.json"));
  job.collapse();
  std::string result = textOf(job.problems()) + textOf(job.errors()) + textOf(job.warnings());
  result += textOf(checker.checkGraph(graph).diagnostics);
  result += job.resultJson();
  for (const ShaderStage stage : {ShaderStage::pixel, ShaderStage::vertex}) {
    const Shader shader = job.assemble(stage, NameStyle::readable);
    ShaderInterface told = interfaceFor(job.reflect(stage, NameStyle::readable), ShaderTarget::glsl);
    result += shader.text;
    for (const InterfaceBuffer& buffer : told.buffers) {
      for (const std::uint8_t byte : packBuffer(buffer, {})) result += static_cast<char>(byte);
    }
    if (hasCompilers() && graph.isFile()) {
      const std::vector<std::uint32_t> module = compileToSpirv(shader);
      result += translateSpirv(module, stage, ShaderTarget::glsl);
      markUsed(told, module);
    }
    result += writeInterfaceJson(told) + explained(job, shader);
    result += job.mapSources(stage, NameStyle::readable).find(5, 5).place();
  }
  return result;
}

TEST(ThreadsTest, JobsGoOnWhileLibrariesAreLoadedAnew) {
  const BrokenFolder broken;
  const LibraryFolders folders{{"library", broken.path()}, {"library"}};
  CurrentSet current(LibrarySet::load(folders));
  const auto makeChecker = [&] {
    CheckOptions options;
    options.folders = folders;
    options.environment = Document::fromFile("examples/environments/studio.json");
    return Checker(options);
  };
  const Checker checker = makeChecker();
  const std::vector<Document> graphs = {Document::fromFile("examples/materials/marble.json"),
                                        Document::fromFile("examples/materials/checker_unlit.json"),
                                        Document::fromText(kBroken, "broken.json")};
  std::vector<std::string> expected;
  for (const Document& graph : graphs) expected.push_back(travel(current.get(), checker, graph));
  if (hasCompilers()) {
    EXPECT_NE(expected[2].find("`colour` is not declared"), std::string::npos) << expected[2];
  }

  std::atomic<bool> done = false;
  std::atomic<std::size_t> loaded = 0;
  std::atomic<std::size_t> rounds = 0;
  std::atomic<std::size_t> same = 0;
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end = Clock::now() + leastTime();
  std::thread loader([&] {
    do {
      current.exchange(current.get()->reload());
      ++loaded;
    } while (!done);
  });
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      for (std::size_t round = 0; round < kRounds || Clock::now() < end; ++round) {
        const std::size_t graph = (i + round) % graphs.size();
        ++rounds;
        if (travel(current.get(), checker, graphs[graph]) == expected[graph]) ++same;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  done = true;
  loader.join();
  EXPECT_GE(rounds, kThreads * kRounds);
  EXPECT_EQ(same, rounds);
  EXPECT_GT(loaded, 0u);
  RecordProperty("rounds", static_cast<int>(rounds));
  RecordProperty("loaded", static_cast<int>(loaded));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

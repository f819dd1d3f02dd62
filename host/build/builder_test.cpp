// Rounds: what is made, what is not, and what is told.

#include <sys/stat.h>

#include <thread>

#include "host/build/build_fixture.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

class Build : public BuildFixture {
protected:
  Build() {
    write("graphs/one.json", dimGraph(0.25));
    write("graphs/two.json", dimGraph(0.75));
    write("graphs/red.json", redGraph());
  }
  /// Another key for the same graph exactly when the change of a file changes this.
  std::string buildAfter(const std::string& file, const std::string& text) {
    const BuildPlan plan = assembledPlan();
    build(plan, withCache());
    fs::remove_all(path("out"));
    write(file, text);
    return build(assembledPlan(), withCache());
  }
};

TEST_F(Build, MakesWhatHasChangedAndNothingElse) {
  const BuildPlan plan = assembledPlan();
  EXPECT_EQ(build(plan), "3 built, 0 reused, 0 unchanged, 0 failed") << told();
  EXPECT_EQ(report_.collapses, 3u);
  const auto first = contents("out");
  EXPECT_EQ(first.size(), 3u);
  EXPECT_EQ(build(plan), "0 built, 0 reused, 3 unchanged, 0 failed");
  write("graphs/two.json", dimGraph(0.5));
  EXPECT_EQ(build(plan), "1 built, 0 reused, 2 unchanged, 0 failed");
  write("lib/deep.h", "#define DEEP 2.0\n");
  EXPECT_EQ(build(plan), "2 built, 0 reused, 1 unchanged, 0 failed");
  EXPECT_EQ(build(plan), "0 built, 0 reused, 3 unchanged, 0 failed");
}

TEST_F(Build, OutputsThatWereChangedOrRemovedAreMadeAgain) {
  const BuildPlan plan = assembledPlan();
  build(plan, withCache());
  const auto first = contents("out");
  write("out/one.hlsl", "spoilt");
  fs::remove(path("out/two.hlsl"));
  EXPECT_EQ(build(plan, withCache()), "0 built, 2 reused, 1 unchanged, 0 failed");
  EXPECT_EQ(contents("out"), first);
}

TEST_F(Build, TaskKnowsTheFilesItRead) {
  const BuildPlan plan = assembledPlan();
  const std::vector<std::string> files = {path("graphs/one.json"), path("lib/deep.h"), path("lib/half.h"),
                                          path("lib/test.fraglib")};
  build(plan);
  EXPECT_EQ(files_[0], files);
  files_.clear();
  build(plan);
  EXPECT_EQ(files_[0], files);
}

TEST_F(Build, EqualTextsAreCompiledOnce) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  write("graphs/same.json", redGraph() + "\n\n");
  const BuildPlan plan = this->plan(R"("graphs": ["graphs/red.json", "graphs/same.json"])");
  EXPECT_EQ(build(plan), "1 built, 1 reused, 0 unchanged, 0 failed") << told();
  EXPECT_EQ(report_.compiledTexts, 1u);
  EXPECT_EQ(read("out/red.spv"), read("out/same.spv"));
}

TEST_F(Build, ChangedValueOfAUniformCompilesNothing) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  const auto graph = [](const std::string& amount) {
    return R"({"outputs": [{"name": "color", "type": "float3", "node": "a"}],
      "nodes": [{"name": "a", "fragment": "dim", "inputs": {"amount": {"value": )" +
           amount + "}}}]}";
  };
  write("graphs/one.json", graph("0.25"));
  write("graphs/two.json", graph("0.75"));
  const auto plan = [this] {
    return this->plan(R"("graphs": ["graphs/one.json", "graphs/two.json"], "reflection": true)");
  };
  EXPECT_EQ(build(plan(), withCache()), "1 built, 1 reused, 0 unchanged, 0 failed") << told();
  EXPECT_EQ(report_.compiledTexts, 1u);
  EXPECT_EQ(read("out/one.spv"), read("out/two.spv"));
  EXPECT_NE(read("out/one.spv.json"), read("out/two.spv.json"));
  write("graphs/two.json", graph("0.5"));
  EXPECT_EQ(build(plan(), withCache()), "0 built, 1 reused, 1 unchanged, 0 failed") << told();
  EXPECT_EQ(report_.compiledTexts, 0u);
}

TEST_F(Build, OneCollapseServesStagesAndTargets) {
  if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  const BuildPlan plan =
      this->plan(R"("graphs": ["graphs/one.json"], "stages": ["pixel", "vertex"], "reflection": true,
        "targets": ["spirv", "glsl", "assembled"])");
  EXPECT_EQ(build(plan), "6 built, 0 reused, 0 unchanged, 0 failed") << told();
  EXPECT_EQ(report_.collapses, 1u);
  EXPECT_EQ(report_.compiledTexts, 2u);
  EXPECT_EQ(contents("out").size(), 12u);
}

TEST_F(Build, ConstantsMakeShadersOfTheirOwn) {
  const BuildPlan plan = this->plan(R"("graphs": ["graphs/one.json"], "targets": ["assembled"],
    "constants": [{"name": "low", "values": {"a.amount": 0.125}}, {"name": "high", "values": {"a.amount": 8}}])");
  EXPECT_EQ(build(plan), "2 built, 0 reused, 0 unchanged, 0 failed") << told();
  EXPECT_NE(read("out/one.low.hlsl").find("0.125"), std::string::npos);
  EXPECT_NE(read("out/one.high.hlsl").find("8.0"), std::string::npos);
}

TEST_F(Build, ConstantsThatDoNotFitAreToldWithTheGraph) {
  const auto told = [&](const std::string& values) {
    build(plan(R"("graphs": ["graphs/one.json"], "targets": ["assembled"],
      "constants": [{"name": "x", "values": {)" +
               values + "}}]"));
    return this->told();
  };
  EXPECT_EQ(told(R"("b.amount": 1)"),
            "graphs/one.json:1:1: a constant is given to the unknown node `b` [unknown-node]\n");
  EXPECT_EQ(told(R"("a.amuont": 1)"),
            "graphs/one.json:1:1: a constant is given to node `a`, which has no input `amuont`; did you mean "
            "`amount`? Its inputs are `color`, `amount` [unknown-port]\n");
  EXPECT_EQ(told(R"("a.amount": true)"),
            "graphs/one.json:1:1: the constant of input `amount` of node `a` does not fit the type `float`: "
            "expected a number [wrong-value]\n");
}

TEST_F(Build, FailureLeavesTheOthersAlone) {
  write("graphs/bad.json", R"({"outputs": [{"name": "c", "type": "float3", "node": "a"}],
    "nodes": [{"name": "a", "fragment": "nothing"}]})");
  write("graphs/broken.json", R"({"nodes": [)");
  const BuildPlan plan = assembledPlan();
  EXPECT_EQ(build(plan), "3 built, 0 reused, 0 unchanged, 2 failed");
  EXPECT_NE(told().find("node `a` uses the fragment `nothing`, which no library has"), std::string::npos)
      << told();
  EXPECT_NE(told().find("graphs/broken.json:1:12"), std::string::npos) << told();
  EXPECT_EQ(contents("out").size(), 3u);
  EXPECT_EQ(build(plan), "0 built, 0 reused, 3 unchanged, 2 failed");
}

TEST_F(Build, EveryNumberOfThreadsMakesTheSame) {
  for (int i = 0; i < 40; ++i) write("graphs/many/" + std::to_string(i) + ".json", dimGraph(0.01 * i));
  const BuildPlan plan = assembledPlan();
  build(plan);
  const auto one = contents("out");
  fs::remove_all(path("out"));
  BuildOptions options;
  options.threads = 4;
  EXPECT_EQ(build(plan, options), "43 built, 0 reused, 0 unchanged, 0 failed");
  EXPECT_EQ(contents("out"), one);
}

TEST_F(Build, TwoBuildsIntoOneFolderAtATime) {
  for (int i = 0; i < 40; ++i) write("graphs/many/" + std::to_string(i) + ".json", dimGraph(0.01 * i));
  const BuildPlan plan = assembledPlan();
  std::thread other([&] { host::build(plan, BuildOptions()); });
  EXPECT_TRUE(build(plan).ends_with(", 0 failed")) << told();
  other.join();
  EXPECT_EQ(contents("out").size(), 43u);
  EXPECT_EQ(build(plan), "0 built, 0 reused, 43 unchanged, 0 failed");
}

TEST_F(Build, StoppedBuildGoesOnWhereItWas) {
  const BuildPlan plan = assembledPlan();
  std::atomic<bool> stop{false};
  BuildOptions options;
  options.stop = &stop;
  options.onResult = [&](const BuildResult&, std::size_t, std::size_t) { stop = true; };
  EXPECT_EQ(build(plan, options), "1 built, 0 reused, 0 unchanged, 0 failed");
  EXPECT_TRUE(report_.isStopped);
  EXPECT_EQ(build(plan), "2 built, 0 reused, 1 unchanged, 0 failed");
}

TEST_F(Build, ShardsAreTheWholeAndStayWhenMaterialsAreAdded) {
  for (int i = 0; i < 20; ++i) write("graphs/many/" + std::to_string(i) + ".json", dimGraph(0.01 * i));
  const auto outputsOf = [&](std::size_t index) {
    const BuildPlan plan = assembledPlan();
    BuildOptions options;
    options.shard = {index, 3};
    std::set<std::string> outputs;
    options.onResult = [&](const BuildResult& result, std::size_t, std::size_t) {
      outputs.insert(plan.tasks[result.task].output);
    };
    build(plan, options);
    EXPECT_EQ(report_.tasks, outputs.size());
    return outputs;
  };
  std::set<std::string> all;
  const std::set<std::string> first = outputsOf(1);
  for (std::size_t i = 1; i <= 3; ++i) all.merge(outputsOf(i));
  EXPECT_EQ(all.size(), 23u);
  EXPECT_EQ(build(assembledPlan()), "0 built, 0 reused, 23 unchanged, 0 failed");
  write("graphs/aaa.json", dimGraph(7));
  for (const std::string& output : first) EXPECT_EQ(outputsOf(1).count(output), 1u) << output;
}

// What changes a key: the graph is made again.

TEST_F(Build, KeyCoversTheFragmentsReached) {
  std::string library = read("lib/test.fraglib");
  library.replace(library.find("color * amount"), 14, "amount * color");
  EXPECT_EQ(buildAfter("lib/test.fraglib", library), "2 built, 1 reused, 0 unchanged, 0 failed");
}
TEST_F(Build, KeyCoversIncludesOfIncludes) {
  EXPECT_EQ(buildAfter("lib/deep.h", "#define DEEP 3.0\n"), "2 built, 1 reused, 0 unchanged, 0 failed");
}
TEST_F(Build, KeyCoversTheGraph) {
  EXPECT_EQ(buildAfter("graphs/one.json", dimGraph(0.3)), "1 built, 2 reused, 0 unchanged, 0 failed");
}
TEST_F(Build, KeyCoversEveryOptionOfATask) {
  write("sun.json", R"({"lights": []})");
  const std::string graph = R"("graphs": ["graphs/one.json"], "targets": ["assembled"])";
  build(plan(graph), withCache());
  for (const char* option :
       {R"("surfaceLods": [5])", R"("lightLods": [5])", R"("environments": ["sun.json"])",
        R"("stages": ["compute"])", R"("uniformNames": "generated")", R"("tool": "lightloop")",
        R"("constants": [{"name": "x", "values": {"a.amount": 5}}])"}) {
    fs::remove_all(path("out"));
    EXPECT_EQ(build(plan(graph + ", " + option), withCache()), "1 built, 0 reused, 0 unchanged, 0 failed")
        << option << told();
  }
}

// What does not.

TEST_F(Build, KeyLeavesOutUnrelatedFragments) {
  std::string library = read("lib/test.fraglib");
  library.replace(library.find("float3(0.0, 0.0, 0.0)"), 21, "float3(0.5, 0.5, 0.5)");
  EXPECT_EQ(buildAfter("lib/test.fraglib", library), "0 built, 3 reused, 0 unchanged, 0 failed");
}
TEST_F(Build, KeyLeavesOutUnrelatedIncludes) {
  EXPECT_EQ(buildAfter("lib/alone.h", "#define OTHER\n"), "0 built, 3 reused, 0 unchanged, 0 failed");
}
TEST_F(Build, KeyLeavesOutPathsAndDates) {
  build(assembledPlan(), withCache());
  fs::create_directories(path("moved"));
  for (const char* name : {"lib", "graphs"}) fs::rename(path(name), path(std::string("moved/") + name));
  for (const auto& entry : fs::recursive_directory_iterator(path("moved")))
    fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - std::chrono::hours(1));
  write("moved/build.json",
        R"({"libraries": ["lib"], "shaders": [{"graphs": ["graphs"], "targets": ["assembled"]}]})");
  EXPECT_EQ(build(readManifest(Document::fromFile(path("moved/build.json"))), withCache()),
            "0 built, 3 reused, 0 unchanged, 0 failed");
}

TEST_F(Build, TouchedFilesChangeNothing) {
  const BuildPlan plan = assembledPlan();
  build(plan);
  for (const char* name : {"lib/test.fraglib", "graphs/one.json", "out/one.hlsl"})
    fs::last_write_time(path(name), fs::file_time_type::clock::now() - std::chrono::hours(1));
  EXPECT_EQ(build(plan), "0 built, 0 reused, 3 unchanged, 0 failed");
}

TEST_F(Build, UnwritableOutputIsToldAndTheRestIsMade) {
  fs::create_directories(path("out/one.hlsl/in the way"));
  EXPECT_EQ(build(assembledPlan()), "2 built, 0 reused, 0 unchanged, 1 failed");
  EXPECT_EQ(told(), "out/one.hlsl: cannot be written: Is a directory [cannot-write]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

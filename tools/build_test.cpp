// `sfg build`: exit statuses, what is told, and what is left when it is killed.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>

#include "sfg/host/version.h"
#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

namespace fs = std::filesystem;

class BuildTest : public CommandTest {
protected:
  BuildTest() {
    writeLibrary();
    for (int i = 0; i < 12; ++i) write("graphs/g" + std::to_string(i) + ".json", tintGraph(i));
    write("build.json", R"({"libraries": ["lib"], "output": "out",
  "shaders": [{"graphs": ["graphs"], "targets": ["assembled"]}]})");
  }

  static std::string tintGraph(int amount) {
    return R"({"outputs": [{"name": "c", "type": "float3", "node": "a"}], "nodes": [{"name": "a",
  "fragment": "tint", "inputs": {"amount": {"constant": )" +
           std::to_string(amount) + "}}}]}";
  }

  /// The first line of the report, without the time.
  static std::string countsOf(const CommandRun& run) { return run.out.substr(0, run.out.find(';')); }
  CommandRun build(const std::string& options = "--no-cache") const {
    return run("build build.json " + options);
  }
  int shell(const std::string& command) const {
    return std::system(("cd '" + path(".") + "' && " + command + " >.out 2>.err </dev/null").c_str());
  }

  /// Names and bytes of the outputs.
  std::map<std::string, std::string> outputs() const {
    std::map<std::string, std::string> all;
    if (!exists("out")) return all;
    for (const auto& entry : fs::directory_iterator(path("out"))) {
      const std::string name = entry.path().filename().string();
      if (entry.is_regular_file()) all[name] = read("out/" + name);
    }
    return all;
  }
};

TEST_F(BuildTest, TellsWhatWasDone) {
  const CommandRun first = build();
  EXPECT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(countsOf(first), "12 shaders: 12 built, 0 reused, 0 unchanged, 0 failed");
  EXPECT_NE(first.out.find("\nsteps: libraries "), std::string::npos) << first.out;
  EXPECT_EQ(std::count(first.out.begin(), first.out.end(), '\n'), 12);  // two lines, and the slowest ten
  EXPECT_EQ(outputs().size(), 12u);
  EXPECT_EQ(countsOf(build()), "12 shaders: 0 built, 0 reused, 12 unchanged, 0 failed");
}

TEST_F(BuildTest, ALineForEachFinishedHundred) {
  for (int i = 0; i < 210; ++i) write("graphs/more/" + std::to_string(i) + ".json", tintGraph(i));
  const CommandRun run = build();
  EXPECT_EQ(run.err.substr(0, 12), "100 of 222, ");
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 2) << run.err;
}

TEST_F(BuildTest, FailureIsStatusOneAndTheRestIsThere) {
  write("graphs/bad.json", R"({"outputs": [{"name": "c", "type": "float3", "node": "a"}],
  "nodes": [{"name": "a", "fragment": "tnit"}]})");
  const CommandRun run = build();
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("graphs/bad.json:2:"), std::string::npos) << run.err;
  EXPECT_EQ(countsOf(run), "13 shaders: 12 built, 0 reused, 0 unchanged, 1 failed");
}

TEST_F(BuildTest, FaultsOfTheManifestAreStatusTwo) {
  write("build.json",
        "{\"libraries\": [\"lib\"],\n  \"shaders\": [{\"graphs\": [\"graphs\"], \"targets\": [\"x\"]}]}");
  const CommandRun run = build();
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err.substr(0, 42), "build.json:2:50: error: `x` is not known h");
  EXPECT_FALSE(exists("out"));
  EXPECT_EQ(this->run("build gone.json").status, 2);
  EXPECT_EQ(this->run("build build.json --shard 3/2").status, 2);
  EXPECT_EQ(this->run("build build.json --target spirv").err,
            "sfg: error: `--target` is for graphs and folders; a manifest says it itself [wrong-usage]\n");
}

TEST_F(BuildTest, FolderOrGraphStandsForAManifest) {
  const CommandRun folder = run("build graphs -L lib -o out --target assembled --no-cache");
  EXPECT_EQ(countsOf(folder), "12 shaders: 12 built, 0 reused, 0 unchanged, 0 failed") << folder.err;
  const CommandRun graph =
      run("build graphs/g1.json -L lib -o other --target assembled --stage pixel,vertex --no-cache");
  EXPECT_EQ(countsOf(graph), "2 shaders: 2 built, 0 reused, 0 unchanged, 0 failed") << graph.err;
  EXPECT_EQ(read("other/g1.pixel.hlsl"), read("out/g1.hlsl"));
}

TEST_F(BuildTest, EventsAreALineEach) {
  const CommandRun run = build("--no-cache --format json --jobs 1");
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 13);
  EXPECT_EQ(run.out.substr(0, 83),
            R"({"event":"shader","output":"out/g0.hlsl","graph":"graphs/g0.json","outcome":"built")");
  EXPECT_NE(run.out.find(R"("files":["graphs/g0.json","lib/test.fraglib"],"diagnostics":[])"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find(R"({"event":"end","version":1,"shaders":12,"built":12,"reused":0,)"),
            std::string::npos)
      << run.out;
  EXPECT_EQ(run.err, "");
}

TEST_F(BuildTest, CacheServesAnotherFolder) {
  EXPECT_EQ(countsOf(build("--cache cache")), "12 shaders: 12 built, 0 reused, 0 unchanged, 0 failed");
  const auto first = outputs();
  EXPECT_EQ(countsOf(build("--cache cache -o other")),
            "12 shaders: 0 built, 12 reused, 0 unchanged, 0 failed");
  fs::remove_all(path("out"));
  fs::rename(path("other"), path("out"));
  EXPECT_EQ(outputs(), first);
}

TEST_F(BuildTest, DamagedEntriesAreMadeAgainWithAWarning) {
  build("--cache cache");
  const auto first = outputs();
  for (const auto& entry : fs::recursive_directory_iterator(path("cache/entries")))
    if (entry.is_regular_file()) write(entry.path().lexically_relative(path(".")).string(), "spoilt");
  fs::remove_all(path("out"));
  const CommandRun run = build("--cache cache");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(countsOf(run), "12 shaders: 12 built, 0 reused, 0 unchanged, 0 failed");
  EXPECT_NE(run.err.find("is damaged, and is made again [cache-trouble]\n"), std::string::npos) << run.err;
  EXPECT_EQ(outputs(), first);
  fs::remove_all(path("out"));
  EXPECT_EQ(countsOf(build("--cache cache")), "12 shaders: 0 built, 12 reused, 0 unchanged, 0 failed");
}

TEST_F(BuildTest, FullDiskIsToldAndLeavesNothingHalf) {
  // No file may be longer than a block: what stands for the file system's end.
  const int status = shell("(ulimit -f 1; trap '' XFSZ; '" SFG_COMMAND "' build build.json --cache cache)");
  EXPECT_NE(status, 0);
  EXPECT_NE(read(".err").find("cannot be written: File too large [cannot-write]\n"), std::string::npos)
      << read(".err");
  for (const auto& [name, bytes] : outputs()) EXPECT_EQ(bytes, "") << name;
  EXPECT_EQ(countsOf(build("--cache cache")), "12 shaders: 12 built, 0 reused, 0 unchanged, 0 failed");
}

TEST_F(BuildTest, KilledBuildsGoOnToTheSameBytes) {
  const auto start = std::chrono::steady_clock::now();
  build("--cache cache");
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  const auto whole = outputs();
  ASSERT_EQ(whole.size(), 12u);
  const char* const wanted = std::getenv("SFG_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 8;
  std::mt19937 random(1);
  for (int i = 0; i < kills; ++i) {
    fs::remove_all(path("out"));
    if (i % 2 == 0) fs::remove_all(path("cache"));
    const double delay = seconds * std::uniform_real_distribution<double>(0, 1)(random);
    shell("{ '" SFG_COMMAND "' build build.json --cache cache & p=$!; sleep " + std::to_string(delay) +
          "; kill -9 $p; wait $p; }");
    // What is there is whole.
    for (const auto& [name, bytes] : outputs()) EXPECT_EQ(bytes, whole.at(name)) << name;
    const CommandRun resumed = build("--cache cache");
    EXPECT_EQ(resumed.status, 0) << resumed.err;
    EXPECT_EQ(resumed.err, "");
    EXPECT_EQ(outputs(), whole) << "killed after " << delay << " s";
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools

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

  /// How many results lie in a folder and below.
  std::size_t resultsIn(const std::string& folder) const {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(path(folder)))
      if (entry.path().extension() == ".hlsl") ++count;
    return count;
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

TEST_F(BuildTest, FullFileSystemIsToldAndTheNextBuildGoesOn) {
  // A file system of its own, too small for all, that other processes do not see.
  const std::string mounted = "unshare --mount sh -c 'mount -t tmpfs -o size=64k full out && ";
  fs::create_directories(path("out"));
  if (shell(mounted + "true'") != 0) GTEST_SKIP() << "no file system can be mounted here";
  for (int i = 0; i < 60; ++i) write("graphs/more/" + std::to_string(i) + ".json", tintGraph(100 + i));
  shell(mounted + "\"" SFG_COMMAND "\" build build.json --cache cache; echo $? >status; cp -a out kept'");
  EXPECT_EQ(read("status"), "1\n");
  EXPECT_NE(read(".err").find("cannot be written: No space left on device [cannot-write]\n"),
            std::string::npos)
      << read(".err");
  const std::size_t fit = resultsIn("kept");
  EXPECT_GT(fit, 0u);
  EXPECT_LT(fit, 72u);
  // With room again only the rest is made, and what was there is what a whole build makes.
  fs::remove_all(path("out"));
  fs::rename(path("kept"), path("out"));
  const auto kept = outputs();
  const CommandRun run = build("--cache cache");
  EXPECT_EQ(run.status, 0) << run.err;
  const auto all = outputs();
  EXPECT_EQ(all.size(), 12u);
  for (const auto& [name, bytes] : kept) EXPECT_EQ(bytes, all.at(name)) << name;
  EXPECT_EQ(resultsIn("out"), 72u);
}

TEST_F(BuildTest, TwoProcessesBuildIntoOneFolder) {
  for (int i = 0; i < 40; ++i) write("graphs/more/" + std::to_string(i) + ".json", tintGraph(100 + i));
  const std::string one = "'" SFG_COMMAND "' build build.json --cache cache --jobs 1";
  EXPECT_EQ(shell("{ " + one + " >one 2>&1 & p=$!; " + one + " >two 2>&1; s=$?; wait $p && exit $s; }"), 0)
      << read("one") << read("two");
  EXPECT_EQ(resultsIn("out"), 52u);
  for (const auto& entry : fs::directory_iterator(path("out/.sfg-build")))
    EXPECT_NE(entry.path().extension(), ".part");
  EXPECT_EQ(countsOf(build("--cache cache")), "52 shaders: 0 built, 0 reused, 52 unchanged, 0 failed");
  const auto together = outputs();
  fs::remove_all(path("out"));
  build();
  EXPECT_EQ(outputs(), together);
}

TEST_F(BuildTest, CachesThatCannotBeUsedAreToldOnce) {
  // A folder under a file is one that nobody can write, not even root.
  write("file", "");
  const CommandRun unwritable = build("--cache file/cache");
  EXPECT_EQ(unwritable.status, 0);
  EXPECT_EQ(countsOf(unwritable), "12 shaders: 12 built, 0 reused, 0 unchanged, 0 failed");
  EXPECT_EQ(unwritable.err,
            "file/cache: warning: nothing can be kept in the cache: Not a directory [cache-trouble]\n");
  const auto whole = outputs();
  fs::remove_all(path("out"));
  write("cache/version", "sfg build cache 99\n");
  const CommandRun other = build("--cache cache");
  EXPECT_EQ(other.status, 0);
  EXPECT_EQ(
      other.err,
      "cache: warning: the cache is one of another version of sfg, and is left alone: nothing is reused "
      "or kept; another folder can be named with `--cache` [cache-trouble]\n");
  EXPECT_EQ(outputs(), whole);
  EXPECT_EQ(read("cache/version"), "sfg build cache 99\n");
}

TEST_F(BuildTest, BrokenGraphWithOptionsIsNoManifest) {
  write("broken.json", "{ \"nodes\": [\n");
  const CommandRun run = this->run("build broken.json -L lib -o other --target assembled --no-cache");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err.substr(0, 21), "broken.json:2:1: erro") << run.err;
  EXPECT_EQ(countsOf(run), "1 shader: 0 built, 0 reused, 0 unchanged, 1 failed");
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

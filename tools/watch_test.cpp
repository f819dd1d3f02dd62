// The command `sfg watch` as a process: what it prints while files change.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

std::string graphOf(const std::string& fragment) {
  return R"({ "outputs": [ { "name": "color", "type": "float3", "node": "a" } ], "nodes": [ { "name": "a", "fragment": ")" +
         fragment + "\" } ] }";
}

class WatchTest : public CommandTest {
protected:
  WatchTest() {
    writeLibrary();
    write("graphs/a.json", graphOf("tint"));
    write("graphs/b.json", graphOf("tint"));
    write("manifest.json",
          R"({ "libraries": ["lib"], "shaders": [ { "graphs": ["graphs"], "targets": ["assembled"] } ] })");
  }
  ~WatchTest() override { end(); }

  void start(const std::string& arguments) {
    const std::string line = "cd '" + path("") + "' && exec '" SFG_COMMAND "' watch " + arguments +
                             " --no-cache --diagnostics short >out 2>err </dev/null";
    process_ = fork();
    if (process_ == 0) {
      execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
      _exit(127);
    }
  }
  /// Ends it as Ctrl-C does, or otherwise; answers its status.
  int end(int signal = SIGINT) {
    if (process_ > 0) kill(process_, signal);
    return wait();
  }
  int wait() {
    if (process_ <= 0) return -1;
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// What it has printed when that ends with a line that begins so; without the seconds.
  std::string printedUpTo(const std::string& begin) {
    for (int i = 0; i < 3000 && waitpid(process_, nullptr, WNOHANG) == 0; ++i) {
      const std::string text = read("out");
      const std::size_t last = text.rfind('\n', text.size() - 2) + 1;
      if (text.size() > told_ && text.ends_with("\n") && text.compare(last, begin.size(), begin) == 0) {
        const std::string lines = text.substr(told_);
        told_ = text.size();
        return lines.substr(0, lines.rfind(';'));
      }
      std::this_thread::sleep_for(milliseconds(10));
    }
    ADD_FAILURE() << begin << " is not told, but: " << read("out") << read("err");
    return {};
  }
  void replace(const std::string& name, const std::string& text) const {
    write(name + ".new", text);
    fs::rename(path(name + ".new"), path(name));
  }

private:
  pid_t process_ = -1;
  std::size_t told_ = 0;
};

TEST_F(WatchTest, BuildsWhatASavedFileTouches) {
  start("manifest.json");
  EXPECT_EQ(printedUpTo("watching"), "watching: 2 built");
  replace("graphs/b.json", graphOf("frame"));
  EXPECT_EQ(printedUpTo("b.json"), "b.json: 1 built, 1 unchanged");
  write("graphs/more/c.json", graphOf("clock"));
  EXPECT_EQ(printedUpTo("more"), "more: 1 built, 2 unchanged");
  EXPECT_EQ(end(), 0);
}

TEST_F(WatchTest, TellsErrorsWhenTheyComeAndWhenTheyAreGone) {
  start("manifest.json");
  printedUpTo("watching");
  const std::string good = read("shaders/b.hlsl");
  write("graphs/b.json", graphOf("missing"));
  EXPECT_EQ(printedUpTo("b.json"), "b.json: 1 failed, 1 unchanged");
  EXPECT_NE(read("err").find("missing"), std::string::npos) << read("err");
  EXPECT_EQ(read("shaders/b.hlsl"), good);
  // What is wrong already is not told again.
  const std::string told = read("err");
  write("graphs/a.json", graphOf("clock"));
  EXPECT_EQ(printedUpTo("a.json"), "a.json: 1 built, 1 failed");
  EXPECT_EQ(read("err"), told);
  write("graphs/b.json", graphOf("tint"));
  EXPECT_NE(printedUpTo("b.json").find("mended: "), std::string::npos);
}

TEST_F(WatchTest, WaitsForAManifestAndForFolders) {
  start("manifest.json");
  printedUpTo("watching");
  const std::string manifest = read("manifest.json");
  write("manifest.json", "{ \"shaders\": ");
  EXPECT_EQ(printedUpTo("manifest.json"), "manifest.json: nothing can be built until that is mended\n");
  write("manifest.json", manifest);
  EXPECT_NE(printedUpTo("manifest.json").find("mended: the list of shaders"), std::string::npos);
  fs::rename(path("lib"), path("away"));
  EXPECT_NE(printedUpTo("lib").find("nothing can be built until that is mended"), std::string::npos);
  fs::rename(path("away"), path("lib"));
  EXPECT_NE(printedUpTo("lib").find("mended: "), std::string::npos);
  EXPECT_EQ(end(), 0);
}

TEST_F(WatchTest, FoldersThatVanishAreToldAndNothingIsLost) {
  start("manifest.json");
  printedUpTo("watching");
  const std::string good = read("shaders/b.hlsl");
  fs::rename(path("graphs"), path("away"));
  EXPECT_NE(printedUpTo("graphs").find(": nothing can be built until that is mended\n"), std::string::npos);
  EXPECT_NE(read("err").find("graphs"), std::string::npos) << read("err");
  EXPECT_EQ(read("shaders/b.hlsl"), good);
  fs::rename(path("away"), path("graphs"));
  EXPECT_NE(printedUpTo("graphs").find("mended: the list of shaders"), std::string::npos);
  // What is gone of the results is made again with the next round.
  fs::remove_all(path("shaders"));
  write("graphs/a.json", graphOf("clock"));
  EXPECT_EQ(printedUpTo("a.json"), "a.json: 2 built");
  EXPECT_EQ(read("shaders/b.hlsl"), good);
  EXPECT_EQ(end(), 0);
}

TEST_F(WatchTest, EventsAreALineForEachRound) {
  start("manifest.json --format json");
  const std::string round = R"({"event":"round","version":1,"changed":[)";
  printedUpTo(round + "]");
  const std::string first = read("out");
  EXPECT_EQ(
      first.substr(0, first.find("\"seconds\"")),
      round +
          R"(],"made":["shaders/a.hlsl","shaders/b.hlsl"],"built":2,"reused":0,"unchanged":0,"failed":0,)");
  write("graphs/b.json", graphOf("missing"));
  printedUpTo(round + "\"");
  const std::string all = read("out");
  const std::string last = all.substr(all.find('\n') + 1);
  EXPECT_EQ(last.substr(0, last.find("\"seconds\"")),
            round + R"("graphs/b.json"],"made":[],"built":0,"reused":0,"unchanged":1,"failed":1,)");
  EXPECT_NE(last.find(R"("diagnostics":[{"file":"graphs/b.json","line":1,)"), std::string::npos) << last;
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 2);
  EXPECT_EQ(read("err"), "");
  EXPECT_EQ(end(), 0);
}

TEST_F(WatchTest, RunsACommandBehindEachRound) {
  start("manifest.json --poll --exec 'echo $SFG_BUILT $SFG_FAILED >>rounds; echo ran'");
  EXPECT_EQ(printedUpTo("ran").find("watching"), 0u);
  write("graphs/b.json", graphOf("frame"));
  printedUpTo("ran");
  EXPECT_EQ(read("rounds"), "2 0\n1 0\n");
  // A program that waits for a command does not hear Ctrl-C, which ends the command.
  EXPECT_EQ(end(SIGTERM), 0);
}

TEST_F(WatchTest, EndsWithACommandThatCtrlCEnds) {
  start("manifest.json --exec 'kill -INT $$'");
  for (int i = 0; i < 3000 && read("out").empty(); ++i) std::this_thread::sleep_for(milliseconds(10));
  EXPECT_EQ(wait(), 0);
}

TEST_F(WatchTest, RefusesArgumentsThatNoFileMends) {
  EXPECT_EQ(run("watch none.json").status, 2);
  EXPECT_EQ(run("watch manifest.json --target glsl").status, 2);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools

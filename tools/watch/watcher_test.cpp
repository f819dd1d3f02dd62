#include "tools/watch/watcher.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

namespace TolmSDK::Graphics::sfg::tools {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using Paths = std::vector<std::string>;

enum class Signal { system, polling };

class WatcherTest : public testing::TestWithParam<Signal> {
protected:
  WatcherTest() {
    std::string pattern = (fs::temp_directory_path() / "sfg_watch_XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~WatcherTest() override { fs::remove_all(folder_); }

  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  void write(const std::string& name, const std::string& text) const {
    fs::create_directories(fs::path(path(name)).parent_path());
    std::ofstream(path(name)) << text;
  }

  Watcher watcher(const WatchedPaths& paths) const {
    Watcher made(signal(), {milliseconds(15), milliseconds(200)});
    made.watch(paths);
    return made;
  }
  /// Names in the test's folder.
  Paths names(const Paths& paths) const {
    Paths names;
    for (const std::string& path : paths)
      names.push_back(fs::path(path).lexically_relative(folder_).string());
    return names;
  }
  /// What is told within a while, nothing if nothing is.
  Paths told(Watcher& watcher, milliseconds within = milliseconds(3000)) const {
    std::atomic<bool> stop = false;
    std::atomic<bool> isDone = false;
    std::thread clock([&] {
      const auto end = std::chrono::steady_clock::now() + within;
      while (!isDone && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(milliseconds(5));
      stop = true;
    });
    Paths changed = watcher.waitForChanges(stop);
    isDone = true;
    clock.join();
    return names(changed);
  }
  Paths toldSoon(Watcher& watcher) const { return told(watcher, milliseconds(60)); }

private:
  static std::unique_ptr<ChangeSignal> signal() {
    if (GetParam() == Signal::polling) return makePollingSignal(milliseconds(10));
    // So slow that a change that only polling sees fails the test.
    return makeSystemSignal(milliseconds(60'000));
  }

  std::string folder_;
};

TEST_P(WatcherTest, TellsFilesThatWereWrittenInPlace) {
  write("a", "1");
  write("b", "1");
  Watcher watcher = this->watcher({{path("a"), path("b"), path("c")}, {}, {}});
  EXPECT_EQ(toldSoon(watcher), Paths());
  write("b", "2");
  EXPECT_EQ(told(watcher), Paths{"b"});
  write("c", "new");
  EXPECT_EQ(told(watcher), Paths{"c"});
  fs::remove(path("a"));
  EXPECT_EQ(told(watcher), Paths{"a"});
  EXPECT_EQ(toldSoon(watcher), Paths());
}

TEST_P(WatcherTest, TellsFilesThatWereSavedByRenaming) {
  write("a", "1");
  Watcher watcher = this->watcher({{path("a")}, {}, {}});
  const auto time = fs::last_write_time(path("a"));
  write("a.new", "2");
  fs::last_write_time(path("a.new"), time);
  fs::rename(path("a.new"), path("a"));
  EXPECT_EQ(told(watcher), Paths{"a"});
}

TEST_P(WatcherTest, TellsFilesThatAreAwayForAMoment) {
  write("a", "1");
  Watcher watcher = this->watcher({{path("a")}, {}, {}});
  fs::rename(path("a"), path("a~"));
  write("a", "2");
  EXPECT_EQ(told(watcher), Paths{"a"});
  EXPECT_EQ(toldSoon(watcher), Paths());
}

TEST_P(WatcherTest, KeepsToTheFilesItWatches) {
  write("lib/a.fraglib", "1");
  Watcher watcher = this->watcher({{}, {}, {{path("lib"), ".fraglib"}}});
  write("lib/a.fraglib~", "1");
  write("lib/.a.fraglib.swp", "1");
  EXPECT_EQ(toldSoon(watcher), Paths());
  write("lib/b.FragLib", "1");
  EXPECT_EQ(told(watcher), Paths{"lib/b.FragLib"});
}

TEST_P(WatcherTest, TellsNamesThatComeAndGo) {
  write("graphs/a.json", "1");
  Watcher watcher = this->watcher({{}, {path("graphs")}, {}});
  write("graphs/a.json", "2");
  EXPECT_EQ(toldSoon(watcher), Paths());
  fs::create_directory(path("graphs/more"));
  EXPECT_EQ(told(watcher), Paths{"graphs/more"});
  fs::rename(path("graphs/a.json"), path("graphs/b.json"));
  EXPECT_EQ(told(watcher), (Paths{"graphs/a.json", "graphs/b.json"}));
}

TEST_P(WatcherTest, FindsFoldersThatAreMadeLater) {
  Watcher watcher = this->watcher({{path("deep/er/a")}, {}, {{path("one/two/lib"), ".h"}}});
  fs::create_directory(path("one"));
  EXPECT_EQ(toldSoon(watcher), Paths());
  fs::create_directory(path("one/two"));
  EXPECT_EQ(toldSoon(watcher), Paths());
  fs::create_directory(path("one/two/lib"));
  EXPECT_EQ(told(watcher), Paths{"one/two/lib"});
  write("one/two/lib/x.h", "1");
  EXPECT_EQ(told(watcher), Paths{"one/two/lib/x.h"});
  write("one/two/lib/x.h", "22");
  EXPECT_EQ(told(watcher), Paths{"one/two/lib/x.h"});
  write("deep/er/a", "1");
  EXPECT_EQ(told(watcher), Paths{"deep/er/a"});
}

TEST_P(WatcherTest, TellsAFolderThatVanishesAndComesBack) {
  write("lib/a.h", "1");
  write("lib/b.h", "1");
  Watcher watcher = this->watcher({{}, {}, {{path("lib"), ".h"}}});
  fs::rename(path("lib"), path("away"));
  EXPECT_EQ(told(watcher), (Paths{"lib", "lib/a.h", "lib/b.h"}));
  write("lib/a.h", "1");
  EXPECT_EQ(told(watcher), (Paths{"lib", "lib/a.h"}));
  write("lib/a.h", "22");
  EXPECT_EQ(told(watcher), Paths{"lib/a.h"});
  fs::remove_all(path("lib"));
  EXPECT_EQ(told(watcher), (Paths{"lib", "lib/a.h"}));
}

TEST_P(WatcherTest, TellsABurstAtOnce) {
  Paths expected;
  for (int i = 100; i < 200; ++i) {
    const std::string name = "lib/" + std::to_string(i) + ".h";
    write(name, "1");
    expected.push_back(name);
  }
  Watcher watcher = this->watcher({{}, {}, {{path("lib"), ".h"}}});
  for (const std::string& name : expected) write(name, "22");
  EXPECT_EQ(told(watcher), expected);
  EXPECT_EQ(toldSoon(watcher), Paths());
}

TEST_P(WatcherTest, WaitsForFilesToHoldStillButNotForEver) {
  write("a", "");
  Watcher watcher = this->watcher({{path("a")}, {}, {}});
  std::atomic<bool> isDone = false;
  std::thread writer([&] {
    while (!isDone) {
      std::ofstream(path("a"), std::ios::app) << "x" << std::flush;
      std::this_thread::sleep_for(milliseconds(5));
    }
  });
  EXPECT_EQ(told(watcher, milliseconds(10'000)), Paths{"a"});
  isDone = true;
  writer.join();
}

TEST_P(WatcherTest, SeesBehindSymbolicLinks) {
  write("real/a", "1");
  write("real/b.h", "1");
  fs::create_directory(path("lib"));
  fs::create_symlink(path("real/a"), path("a"));
  fs::create_symlink("../real/b.h", path("lib/b.h"));
  Watcher watcher = this->watcher({{path("a")}, {}, {{path("lib"), ".h"}}});
  write("real/a", "22");
  EXPECT_EQ(told(watcher), Paths{"a"});
  write("real/b.h", "22");
  EXPECT_EQ(told(watcher), Paths{"lib/b.h"});
}

TEST_P(WatcherTest, MissesNothingWhileNobodyWaits) {
  write("a", "1");
  Watcher watcher = this->watcher({{path("a")}, {}, {}});
  write("a", "2");
  std::this_thread::sleep_for(milliseconds(100));
  EXPECT_EQ(told(watcher), Paths{"a"});
}

std::string nameOf(const testing::TestParamInfo<Signal>& signal) {
  return signal.param == Signal::system ? "System" : "Polling";
}

INSTANTIATE_TEST_SUITE_P(By, WatcherTest, testing::Values(Signal::system, Signal::polling), nameOf);

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools

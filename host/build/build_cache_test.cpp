#include <sys/resource.h>

#include "host/build/build_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

namespace fs = std::filesystem;

const std::string kKey = "abcdef";

class Cache : public BuildFixture {
protected:
  std::string problemsOf(BuildCache& cache) const {
    std::string text;
    for (const Diagnostic& diagnostic : cache.takeProblems()) text += withoutFolder(diagnostic) + "\n";
    return text;
  }
  std::string entry() const { return "cache/entries/ab/cdef"; }
};

TEST_F(Cache, GivesBackWhatWasKept) {
  const std::string bytes("\0\n\xff binary", 10);
  BuildCache(path("cache")).keep(kKey, bytes);
  BuildCache cache(path("cache"));
  EXPECT_EQ(cache.find(kKey), bytes);
  EXPECT_EQ(cache.find("abcdee"), std::nullopt);
  EXPECT_EQ(problemsOf(cache), "");
}

TEST_F(Cache, DamagedEntryIsToldAndRemoved) {
  BuildCache cache(path("cache"));
  for (const char* damage : {"", "x", "sfg-entry abcdef", "sfg-entry abcdef 00\nbytes"}) {
    cache.keep(kKey, "bytes");
    write(entry(), damage);
    EXPECT_EQ(cache.find(kKey), std::nullopt) << damage;
    EXPECT_FALSE(fs::exists(path(entry())));
  }
  EXPECT_EQ(problemsOf(cache), "cache: the entry `cache/entries/ab/cdef` is damaged, and is made again "
                               "[cache-trouble]\n");
  cache.keep(kKey, "bytes");
  EXPECT_EQ(cache.find(kKey), "bytes");
}

TEST_F(Cache, EntryOfAnotherKeyIsDamaged) {
  BuildCache cache(path("cache"));
  cache.keep(kKey, "bytes");
  fs::rename(path(entry()), path("cache/entries/ab/xxxx"));
  EXPECT_EQ(cache.find("abxxxx"), std::nullopt);
}

TEST_F(Cache, CacheOfAnotherVersionIsLeftAlone) {
  write("cache/version", "sfg build cache 99\n");
  write(entry(), "theirs");
  BuildCache cache(path("cache"));
  cache.keep(kKey, "bytes");
  EXPECT_EQ(cache.find(kKey), std::nullopt);
  EXPECT_EQ(
      problemsOf(cache),
      "cache: the cache is one of another version of sfg, and is left alone: nothing is reused or kept; "
      "another folder can be named with `--cache` [cache-trouble]\n");
  EXPECT_EQ(read(entry()), "theirs");
}

TEST_F(Cache, UnwritableFolderIsToldOnce) {
  write("cache", "a file");
  BuildCache cache(path("cache"));
  cache.keep(kKey, "bytes");
  cache.keep("other", "bytes");
  EXPECT_EQ(problemsOf(cache), "cache: nothing can be kept in the cache: Not a directory [cache-trouble]\n");
  EXPECT_EQ(problemsOf(cache), "");
}

TEST_F(Cache, WhatWasUsedLongestAgoLeaves) {
  BuildCache cache(path("cache"), 4000);
  for (int i = 0; i < 10; ++i) {
    const std::string key = "k" + std::to_string(i) + "key";
    cache.keep(key, std::string(600, 'x'));
    fs::last_write_time(path("cache/entries/k" + std::to_string(i) + "/key"),
                        fs::file_time_type::clock::now() - std::chrono::hours(20 - i));
  }
  EXPECT_NE(cache.find("k0key"), std::nullopt);  // used now
  cache.shrink();
  std::string left;
  for (int i = 0; i < 10; ++i) left += cache.find("k" + std::to_string(i) + "key") ? '+' : '-';
  EXPECT_EQ(left, "+-----++++");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

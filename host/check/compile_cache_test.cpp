#include "host/check/compile_cache.h"

#include <gtest/gtest.h>

#include <thread>

#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(BoundedMapTest, ForgetsTheOldest) {
  BoundedMap<int> map(2);
  map.insert("a", 1);
  map.insert("b", 2);
  map.insert("a", 3);
  ASSERT_NE(map.find("a"), nullptr);
  EXPECT_EQ(*map.find("a"), 1);
  map.insert("c", 4);
  EXPECT_EQ(map.find("a"), nullptr);
  EXPECT_NE(map.find("b"), nullptr);
  EXPECT_NE(map.find("c"), nullptr);
}

TEST(BoundedMapTest, KeepsNothingWithoutRoom) {
  BoundedMap<int> map(0);
  map.insert("a", 1);
  EXPECT_EQ(map.find("a"), nullptr);
}

class CompileCacheTest : public testing::Test {
protected:
  void SetUp() override {
    if (!hasCompilers()) GTEST_SKIP() << "the library has no compilers";
  }
  static Shader shader(const std::string& expression) {
    Shader made;
    made.entryPoint = "main";
    made.text = "float4 main() : SV_Target { return " + expression + "; }\n";
    return made;
  }
};

TEST_F(CompileCacheTest, CompilesEachTextOnce) {
  CheckCache cache;
  EXPECT_EQ(cache.impl().compile(shader("1.0")), nullptr);
  EXPECT_EQ(cache.impl().compile(shader("1.0")), nullptr);
  EXPECT_EQ(cache.compiledTexts(), 1u);
  const auto error = cache.impl().compile(shader("wrong"));
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(cache.impl().compile(shader("wrong")), error);
  EXPECT_EQ(cache.compiledTexts(), 2u);
}

TEST_F(CompileCacheTest, TellsEntryPointsApart) {
  CheckCache cache;
  Shader other = shader("1.0");
  other.entryPoint = "none";
  EXPECT_EQ(cache.impl().compile(shader("1.0")), nullptr);
  EXPECT_NE(cache.impl().compile(other), nullptr);
}

TEST_F(CompileCacheTest, ThreadsWaitForEachOther) {
  CheckCache cache;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] { EXPECT_EQ(cache.impl().compile(shader("0.25")), nullptr); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(cache.compiledTexts(), 1u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

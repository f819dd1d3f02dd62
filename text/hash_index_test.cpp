#include "text/hash_index.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(HashIndex, FindsNothingAtFirst) {
  const HashIndex index;
  EXPECT_EQ(index.find(0, [](std::size_t) { return true; }), kNotFound);
}

TEST(HashIndex, AsksForEntriesOfTheHashOnly) {
  HashIndex index;
  index.add(7, 0);
  index.add(8, 1);
  std::vector<std::size_t> asked;
  const auto remember = [&](std::size_t number) {
    asked.push_back(number);
    return false;
  };
  EXPECT_EQ(index.find(8, remember), kNotFound);
  EXPECT_EQ(asked, std::vector<std::size_t>{1});
}

TEST(HashIndex, TellsEntriesOfOneHashApart) {
  const std::vector<std::string> entries{"a", "b", "c"};
  HashIndex index;
  for (std::size_t i = 0; i < entries.size(); ++i) index.add(42, i);
  const auto find = [&](const std::string& text) {
    return index.find(42, [&](std::size_t i) { return entries[i] == text; });
  };
  EXPECT_EQ(find("a"), 0u);
  EXPECT_EQ(find("b"), 1u);
  EXPECT_EQ(find("c"), 2u);
  EXPECT_EQ(find("d"), kNotFound);
}

TEST(HashIndex, HoldsWhatAMapHolds) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    std::mt19937 random(seed);
    // Few hashes for many entries, then many: long runs of full places, and tables that grow often.
    const unsigned hashes = seed % 2 == 0 ? 5 : 100000;
    std::vector<unsigned> entries;
    std::unordered_map<unsigned, std::size_t> expected;
    HashIndex index;
    for (int i = 0; i < 3000; ++i) {
      const auto value = static_cast<unsigned>(random() % 4000);
      const auto isValue = [&](std::size_t number) { return entries[number] == value; };
      const auto known = expected.find(value);
      ASSERT_EQ(index.find(value % hashes, isValue), known == expected.end() ? kNotFound : known->second);
      if (known != expected.end()) continue;
      expected.emplace(value, entries.size());
      index.add(value % hashes, entries.size());
      entries.push_back(value);
    }
    for (const auto& [value, number] : expected) {
      const auto isValue = [&, sought = value](std::size_t i) { return entries[i] == sought; };
      ASSERT_EQ(index.find(value % hashes, isValue), number);
    }
  }
}

TEST(HashIndex, FindsWhatWasThereBeforeRoomWasMade) {
  HashIndex index;
  const auto find = [&](std::size_t entry) {
    return index.find(entry * 7, [&](std::size_t number) { return number == entry; });
  };
  for (std::size_t i = 0; i < 10; ++i) index.add(i * 7, i);
  index.reserve(5000);
  index.reserve(1);
  for (std::size_t i = 10; i < 5000; ++i) index.add(i * 7, i);
  for (std::size_t i = 0; i < 5000; ++i) ASSERT_EQ(find(i), i);
  EXPECT_EQ(find(5000), kNotFound);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

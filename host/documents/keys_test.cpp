#include "host/documents/keys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// All tables that objects of these three documents can have, each once.
std::vector<const KeyTable*> allTables() {
  std::vector<const KeyTable*> tables = {&graphKeys(), &environmentKeys(), &fragmentKeys()};
  for (std::size_t i = 0; i < tables.size(); ++i) {
    for (const Key& key : tables[i]->keys) {
      if (key.table != nullptr && std::find(tables.begin(), tables.end(), key.table) == tables.end()) {
        tables.push_back(key.table);
      }
    }
  }
  return tables;
}

TEST(KeysTest, ReachEveryKindOfObject) {
  std::string objects;
  for (const KeyTable* const table : allTables()) objects += std::string(table->object) + "\n";
  EXPECT_EQ(objects,
            "a graph\nan environment\na fragment\na parameter\na graph output\na node\na light\na port\n"
            "an interface\na profile\nan input of a node\n");
}

TEST(KeysTest, StandOnceAndSayWhatTheyMean) {
  for (const KeyTable* const table : allTables()) {
    std::set<std::string_view> names;
    for (const Key& key : table->keys) {
      EXPECT_TRUE(names.insert(key.name).second) << table->object << ", " << key.name;
      EXPECT_TRUE(key.meaning.ends_with('.')) << table->object << ", " << key.name;
      EXPECT_EQ(table->find(key.name), &key);
      EXPECT_EQ(key.holds == Holds::word, !key.words.empty()) << table->object << ", " << key.name;
    }
    EXPECT_EQ(table->find("wheels"), nullptr);
    EXPECT_EQ(table->find(""), nullptr);
  }
}

TEST(KeysTest, OfAProfileAreKeysOfAFragmentToo) {
  for (const Key& key : profileKeys().keys) EXPECT_NE(fragmentKeys().find(key.name), nullptr) << key.name;
}

TEST(KeysTest, RulesNameKeysOfTheirTable) {
  for (const KeyTable* const table : allTables()) {
    for (const std::string_view key : table->onlyOneOf) EXPECT_NE(table->find(key), nullptr) << key;
    if (!table->insteadOfRequired.empty()) {
      EXPECT_NE(table->find(table->insteadOfRequired), nullptr) << table->insteadOfRequired;
    }
  }
}

TEST(KeysTest, CommentsBeginWithTwoSlashes) {
  EXPECT_TRUE(isCommentKey(std::string("//")));
  EXPECT_TRUE(isCommentKey(std::string("// why")));
  EXPECT_FALSE(isCommentKey(std::string("/")));
  EXPECT_FALSE(isCommentKey(std::string("/ /")));
  EXPECT_FALSE(isCommentKey(std::string()));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

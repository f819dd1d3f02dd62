#include "host/documents/near_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <random>

#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string nearest(const std::string& name, const std::vector<std::string>& known) {
  return std::string(nearestName(name, known));
}

TEST(NearNameTest, FindsEachKindOfSlip) {
  const std::vector<std::string> keys = {"inputs", "outputs", "value", "postprocess", "lights"};
  EXPECT_EQ(nearest("input", keys), "inputs");
  EXPECT_EQ(nearest("inputss", keys), "inputs");
  EXPECT_EQ(nearest("inpots", keys), "inputs");
  EXPECT_EQ(nearest("valeu", keys), "value");
  EXPECT_EQ(nearest("avlue", keys), "value");
  EXPECT_EQ(nearest("VALUE", keys), "value");
  EXPECT_EQ(nearest("postproces", keys), "postprocess");
  EXPECT_EQ(nearest("ligths", keys), "lights");
}

TEST(NearNameTest, KnowsWhenNothingIsNear) {
  EXPECT_EQ(nearest("wheels", {"inputs", "value"}), "");
  EXPECT_EQ(nearest("x", {"y", "z"}), "");
  EXPECT_EQ(nearest("", {"y"}), "");
  EXPECT_EQ(nearest("inputs", {}), "");
  EXPECT_EQ(nearest("inputs", {""}), "");
  EXPECT_EQ(nearest("abcdefghij", {"abcdefzzzz"}), "");
  EXPECT_EQ(nearest("abcdefghij", {"abcdefgzzz"}), "abcdefgzzz");
}

TEST(NearNameTest, PrefersTheFewestChangesThenTheSameCaseThenTheFirst) {
  EXPECT_EQ(nearest("noise", {"noises2", "noise2"}), "noise2");
  EXPECT_EQ(nearest("noise2", {"Noise2", "noise3"}), "Noise2");
  EXPECT_EQ(nearest("addfloat", {"addFloat2", "addFloat", "addFloat3"}), "addFloat");
  EXPECT_EQ(nearest("addFloat1", {"addFloat2", "addFloat3"}), "addFloat2");
  EXPECT_EQ(nearest("same", {"same", "Same"}), "same");
}

TEST(NearNameTest, KeepsToNamesOfALengthThatPeopleType) {
  const std::string longest(NearName::kLongest, 'a');
  EXPECT_EQ(nearest(longest, {longest.substr(1)}), longest.substr(1));
  EXPECT_EQ(nearest(longest + "a", {longest}), "");
  EXPECT_EQ(nearest(longest, {longest + "a"}), "");
}

/// The same rule by a full table.
std::size_t changes(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> table(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        table[i][j] = i + j;
        continue;
      }
      table[i][j] = std::min(
          {table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0u : 1u)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
    }
  }
  return table[a.size()][b.size()];
}

bool isPartOf(const std::string& name, const std::string& known) {
  std::size_t at = 0;
  for (const char c : known) at += at < name.size() && name[at] == c ? 1 : 0;
  return at == name.size() && known.size() > name.size() && known.size() <= name.size() + 5;
}

TEST(NearNameTest, CompletesWhatWasCutShort) {
  EXPECT_EQ(nearest("const", {"value", "constant", "constants"}), "constant");
  EXPECT_EQ(nearest("const", {"constant", "cons"}), "cons");
  EXPECT_EQ(nearest("const", {"constabulary"}), "");
  EXPECT_EQ(nearest("node", {"nodeOutput"}), "");
}

TEST(NearNameTest, AgreesWithTheFullTable) {
  std::mt19937 random(7);
  const auto name = [&] {
    std::string text;
    for (std::size_t i = 0, size = 1 + random() % 10; i < size; ++i)
      text += static_cast<char>('a' + random() % 3);
    return text;
  };
  std::size_t near = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string mistyped = name();
    const std::string known = name();
    const std::size_t most = std::clamp<std::size_t>(mistyped.size() / 3, 1, 3);
    const std::size_t count = changes(mistyped, known);
    const bool isCut = mistyped.size() >= 5 && isPartOf(mistyped, known);
    const bool isNear = isCut || (count <= most && count < std::max(mistyped.size(), known.size()));
    EXPECT_EQ(nearest(mistyped, {known}), isNear ? known : "") << mistyped << " " << known;
    near += isNear ? 1 : 0;
  }
  EXPECT_GT(near, 1000u);
}

TEST(NearNameTest, TakesTimeInProportionToTheNames) {
  const auto search = [](std::size_t count, std::size_t length) {
    const std::string mistyped(length, 'a');
    std::vector<std::string> names(count, std::string(length, 'a'));
    for (std::size_t i = 0; i < count; ++i) names[i][i % length] = static_cast<char>('b' + i % 20);
    names.push_back(mistyped + "z");
    return test::processorTime([&] { EXPECT_NE(nearest(mistyped, names), ""); });
  };
  EXPECT_LT(test::timeGrowth(6250, [&](std::size_t count) { return search(count, 20); }),
            test::kLinearGrowth);
  EXPECT_LT(test::timeGrowth(8, [&](std::size_t length) { return search(50000, length - 1); }),
            test::kLinearGrowth);
}

TEST(KnownNames, AreToldADozenAtMost) {
  EXPECT_EQ(knownNamesHint("x", {}), "; none are known");
  EXPECT_EQ(knownNamesHint("octave", {"octaves", "scale"}),
            "; did you mean `octaves`? Known are `octaves`, `scale`");
  EXPECT_EQ(knownNamesHint("x", std::vector<std::string>(14, "long name")),
            "; known are `long name`, `long name`, `long name`, `long name`, `long name`, `long name`, `long "
            "name`, `long name`, `long name`, `long name`, `long name`, `long name` and 2 more");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

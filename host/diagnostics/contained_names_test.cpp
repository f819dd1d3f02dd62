#include "host/diagnostics/contained_names.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Name = ContainedNames::Name;
using Identifiers = Set<std::wstring_view>;

/// "name<identifier", one line for each answer.
std::wstring answers(const std::vector<Name>& names, const Identifiers& identifiers) {
  ContainedNames search(names);
  std::wstring text;
  for (int run = 0; run < 2; ++run) {
    text.clear();
    for (const ContainedNames::Found& found : search.find(identifiers)) {
      text += std::to_wstring(found.name) + L"<" + std::wstring(found.inside) + L"\n";
    }
  }
  return text;
}

/// The same, identifier by identifier.
std::wstring plainAnswers(const std::vector<Name>& names, const Identifiers& identifiers) {
  std::wstring text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    for (const std::wstring_view other : identifiers) {
      if (other == names[i].text || other.find(names[i].text) == other.npos) continue;
      if (names[i].isSampler && other == L"sampler_" + std::wstring(names[i].text)) continue;
      text += std::to_wstring(i) + L"<" + std::wstring(other) + L"\n";
      break;
    }
  }
  return text;
}

TEST(ContainedNamesTest, TellsTheFirstIdentifierThatHoldsAName) {
  const std::vector<Name> names = {{L"gain", false}, {L"image", true}, {L"image", false}, {L"bias", false}};
  EXPECT_EQ(answers(names, {L"again", L"bias", L"gain", L"gains", L"sampler_image"}),
            L"0<again\n2<sampler_image\n");
  EXPECT_EQ(answers(names, {L"image", L"sampler_image2"}), L"1<sampler_image2\n2<sampler_image2\n");
}

TEST(ContainedNamesTest, FindsNamesInsideEachOther) {
  EXPECT_EQ(answers({{L"a", false}, {L"ab", false}, {L"b", false}, {L"bab", false}}, {L"bab", L"c"}),
            L"0<bab\n1<bab\n2<bab\n");
}

TEST(ContainedNamesTest, AnswersAsEveryIdentifierLookedAtForEveryName) {
  std::mt19937 random(7);
  const auto text = [&](std::size_t longest) {
    std::wstring word(1 + random() % longest, L'a');
    for (wchar_t& c : word) c = static_cast<wchar_t>(L'a' + random() % 2);
    return word;
  };
  for (int round = 0; round < 2000; ++round) {
    std::vector<std::wstring> words;
    for (std::size_t i = 0; i < 12; ++i) words.push_back(text(i < 6 ? 4 : 7));
    if (round % 3 == 0) words.back() = L"sampler_" + words[0];
    std::vector<Name> names;
    for (std::size_t i = 0; i < 6; ++i) names.push_back({words[i], random() % 2 == 0});
    const Identifiers identifiers(words.begin() + 4, words.end());
    ASSERT_EQ(answers(names, identifiers), plainAnswers(names, identifiers));
  }
}

TEST(ContainedNamesTest, TakesTimeInProportionToTheNames) {
  const auto search = [](std::size_t count) {
    std::vector<std::wstring> words;
    for (std::size_t i = 0; i < count; ++i) words.push_back(L"name" + std::to_wstring(i) + L"_");
    std::vector<Name> names;
    for (const std::wstring& word : words) names.push_back({word, false});
    EXPECT_TRUE(ContainedNames(names).find(Identifiers(words.begin(), words.end())).empty());
  };
  EXPECT_LT(test::costGrowth(1000, search), test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

#include "tolmsdk/ustring.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace TolmSDK {
namespace {

// Made before main, as other modules make theirs.
const UString kMadeBeforeMain(L"made before main");
const UString kEmptyBeforeMain;

TEST(UString, EqualTextsShareOneRepresentation) {
  const std::wstring text = L"sfg_noise";
  const UString a(text.c_str());
  const UString b{std::wstring_view(text)};
  const UString c{WString(L"sfg_noise")};
  EXPECT_EQ(a, b);
  EXPECT_EQ(a, c);
  EXPECT_EQ(&a.str(), &b.str());
  EXPECT_EQ(a.str(), L"sfg_noise");
  EXPECT_EQ(a.size(), 9u);
}

TEST(UString, DifferentTextsDiffer) {
  EXPECT_FALSE(UString(L"a") == UString(L"b"));
  EXPECT_FALSE(UString(L"a") == UString(L"A"));
  using namespace std::literals;
  EXPECT_FALSE(UString(L"a\0b"sv) == UString(L"a"));
  EXPECT_EQ(UString(L"a\0b"sv).size(), 3u);
}

TEST(UString, EmptyTextsAreOne) {
  EXPECT_EQ(UString(), UString(L""));
  EXPECT_EQ(UString(), UString(std::wstring_view()));
  EXPECT_EQ(UString(), UString(static_cast<const wchar_t*>(nullptr)));
  EXPECT_TRUE(UString().empty());
  EXPECT_STREQ(UString().c_str(), L"");
}

TEST(UString, IsReadyBeforeMain) {
  EXPECT_EQ(kMadeBeforeMain, UString(L"made before main"));
  EXPECT_EQ(kEmptyBeforeMain, UString());
}

TEST(UString, OrdersByText) {
  const UString last(L"zeta");
  const UString first(L"alpha");
  const UString middle(L"beta");
  EXPECT_TRUE(first < last);
  EXPECT_FALSE(last < first);
  EXPECT_FALSE(first < first);
  const Set<UString> set{last, first, middle};
  std::wstring walked;
  for (const UString& text : set) walked.append(text.view()).append(L" ");
  EXPECT_EQ(walked, L"alpha beta zeta ");
  EXPECT_NE(set.find(std::wstring_view(L"beta")), set.end());
}

TEST(UString, HashesByIdentity) {
  const std::unordered_set<UString> set{UString(L"a"), UString(L"a"), UString(L"b")};
  EXPECT_EQ(set.size(), 2u);
}

TEST(UString, ReadsNoFurtherThanItsView) {
  const std::vector<wchar_t> exact{L'a', L'b'};
  EXPECT_EQ(UString(std::wstring_view(exact.data(), exact.size())).str(), L"ab");
}

TEST(UString, ManyThreadsAgreeOnOneRepresentation) {
  constexpr std::size_t kThreads = 8;
  constexpr std::size_t kTexts = 500;
  std::vector<std::vector<const WString*>> seen(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&mine = seen[thread]] {
      for (std::size_t text = 0; text < kTexts; ++text) {
        mine.push_back(&UString(L"shared text " + std::to_wstring(text)).str());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t thread = 1; thread < kThreads; ++thread) EXPECT_EQ(seen[thread], seen[0]);
  EXPECT_EQ(*seen[0][7], L"shared text 7");
}

}  // namespace
}  // namespace TolmSDK

#include "tolmsdk/sha1.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace TolmSDK {
namespace {

// Expected digests are what `printf TEXT | sha1sum` prints.
TEST(Sha1, IsTheDigestOfTheUtf8Bytes) {
  EXPECT_EQ(SHA1_GetStringHash(L""), L"da39a3ee5e6b4b0d3255bfef95601890afd80709");
  EXPECT_EQ(SHA1_GetStringHash(L"abc"), L"a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(SHA1_GetStringHash(L"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            L"84983e441c3bd26ebaae4aa1f95129e5e54670f1");
  EXPECT_EQ(SHA1_GetStringHash(L"\u00e4\u20ac\U0001F600"), L"29587906e591b9c6b15559a397eaffca2aeb48ba");
  EXPECT_EQ(SHA1_GetStringHash(std::wstring(1000000, L'a')), L"34aa973cd4c4daa4f61eeb2bdbad27316534016f");
}

TEST(Sha1, HashesALoneSurrogateAsTheReplacementCharacter) {
  const std::wstring lone(1, static_cast<wchar_t>(0xD800));
  EXPECT_EQ(SHA1_GetStringHash(lone), SHA1_GetStringHash(L"\uFFFD"));
  EXPECT_EQ(SHA1_GetStringHash(L"\uFFFD"), L"9bdb77276c1852e1fb067820472812fcf6084024");
}

// Texts whose wide characters straddle every place where a piece is handed on.
TEST(Sha1, DoesNotDependOnHowLongTextsAreCut) {
  std::wstring text;
  for (int i = 0; i < 3000; ++i) text += L"a\u00e4\u20ac\U0001F600"[i % 4 == 3 ? 0 : i % 4];
  EXPECT_EQ(SHA1_GetStringHash(text), L"e79dc51af16e7cd0e3a0840c1a8bdb701448752b");
}

// The same digest where wide characters are 16 bits wide.
TEST(Sha1, HashesASurrogatePairAsItsCodePoint) {
  const std::wstring pair{static_cast<wchar_t>(0xD83D), static_cast<wchar_t>(0xDE00)};
  EXPECT_EQ(SHA1_GetStringHash(pair), L"9c533688a979a858cbd6a43c9f91aba624651f18");
  EXPECT_EQ(SHA1_GetStringHash(pair), SHA1_GetStringHash(L"\U0001F600"));
}

TEST(Sha1, CutsNoCharacterOfFourBytes) {
  const wchar_t* const digests[] = {
      L"478fad0d27306474c5ff00f5e5b39ebdd9a26dd5", L"edbdce3a281ff32384d38a2043faf6410a476e3f",
      L"11773f2b82fc15362def57347c8a14d4ac29d809", L"c76d41afbe76e09063741ca49a5e6e04e8ce9b06"};
  for (std::size_t offset = 0; offset < std::size(digests); ++offset) {
    std::wstring text(offset, L'a');
    for (int i = 0; i < 1000; ++i) text += L"\U0001F600";
    EXPECT_EQ(SHA1_GetStringHash(text), digests[offset]);
  }
}

TEST(Sha1, HashesTheWholeTextWithItsNulls) {
  using namespace std::literals;
  EXPECT_NE(SHA1_GetStringHash(L"a\0b"sv), SHA1_GetStringHash(L"a"));
}

TEST(Sha1, ServesManyThreads) {
  std::vector<WString> digests(8);
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (WString& digest : digests) {
    threads.emplace_back([&digest] {
      for (int round = 0; round < 100; ++round) digest = SHA1_GetStringHash(L"abc");
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const WString& digest : digests) EXPECT_EQ(digest, L"a9993e364706816aba3e25717850c26c9cd0d89d");
}

}  // namespace
}  // namespace TolmSDK

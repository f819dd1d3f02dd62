#include "collapse/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace TolmSDK::Graphics::sfg {
namespace {

bool isAligned(const void* memory, std::size_t alignment) {
  return reinterpret_cast<std::uintptr_t>(memory) % alignment == 0;
}

TEST(Arena, AlignsEveryPieceAndLetsNoneOverlap) {
  Arena arena;
  struct Piece {
    std::byte* memory;
    std::size_t size;
  };
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < 4000; ++i) {
    const std::size_t alignment = std::size_t{1} << (i % 5);
    const std::size_t size = 1 + i * 7 % 61;
    pieces.push_back({arena.allocate(size, alignment), size});
    ASSERT_TRUE(isAligned(pieces.back().memory, alignment)) << i;
    std::memset(pieces.back().memory, static_cast<int>(i % 251), size);
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    for (std::size_t k = 0; k < pieces[i].size; ++k)
      ASSERT_EQ(pieces[i].memory[k], static_cast<std::byte>(i % 251)) << i;
  }
}

TEST(Arena, TakesPiecesThatAreLargerThanABlock) {
  Arena arena;
  std::byte* const before = arena.allocate(10, 1);
  std::memset(before, 1, 10);
  constexpr std::size_t kLarge = std::size_t{1} << 20;
  std::byte* const large = arena.allocate(kLarge, 8);
  ASSERT_TRUE(isAligned(large, 8));
  std::memset(large, 2, kLarge);
  std::byte* const behind = arena.allocate(10, 1);
  std::memset(behind, 3, 10);
  EXPECT_EQ(before[9], std::byte{1});
  EXPECT_EQ(large[kLarge - 1], std::byte{2});
  EXPECT_EQ(behind[0], std::byte{3});
}

TEST(Arena, FillsABlockToItsLastByte) {
  Arena arena;
  std::byte* const first = arena.allocate(1000, 1);
  EXPECT_EQ(arena.allocate(24, 8), first + 1000);
  EXPECT_NE(arena.allocate(1, 1), first + 1024);
}

TEST(Arena, MakesArraysOfValues) {
  Arena arena;
  std::memset(arena.allocate(500, 1), 0xff, 500);
  const std::span<std::uint64_t> numbers = arena.makeArray<std::uint64_t>(3000);
  ASSERT_EQ(numbers.size(), 3000u);
  ASSERT_TRUE(isAligned(numbers.data(), alignof(std::uint64_t)));
  for (const std::uint64_t number : numbers) ASSERT_EQ(number, 0u);
  EXPECT_TRUE(arena.makeArray<std::uint64_t>(0).empty());
  EXPECT_THROW(arena.makeArray<std::uint64_t>(static_cast<std::size_t>(-1) / 4), std::bad_array_new_length);
}

/// Counts those that live; the fourth one made throws.
struct Fragile {
  Fragile() {
    if (made == 3) throw std::runtime_error("the fourth");
    ++made;
    ++living;
  }
  ~Fragile() { --living; }
  Fragile(const Fragile&) = delete;
  Fragile& operator=(const Fragile&) = delete;

  static inline int made = 0;
  static inline int living = 0;
  std::uint64_t value = 0;
};

TEST(Arena, DestroysThePartOfAnArrayWhoseConstructorThrows) {
  Arena arena;
  Fragile::made = 0;
  EXPECT_THROW(arena.makeArray<Fragile>(10), std::runtime_error);
  EXPECT_EQ(Fragile::living, 0);
  // It goes on behind.
  Fragile::made = -10;
  const std::span<Fragile> whole = arena.makeArray<Fragile>(5);
  EXPECT_EQ(Fragile::living, 5);
  std::destroy(whole.begin(), whole.end());
  EXPECT_EQ(Fragile::living, 0);
}

TEST(Arena, DestroysNothing) {
  Fragile::made = -10;
  Fragile::living = 0;
  { Arena().makeArray<Fragile>(3); }
  EXPECT_EQ(Fragile::living, 3);
  Fragile::living = 0;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

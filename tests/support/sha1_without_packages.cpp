// SHA-1 for builds on machines of which no packages are installed. sha1_test compares it with published
// digests.

#include "tolmsdk/sha1.h"

#include <array>
#include <bit>
#include <cstdint>

#include "tolmsdk/unicode.h"

namespace TolmSDK {

namespace {

using State = std::array<std::uint32_t, 5>;

/// The bytes with a one bit, zeros and their number of bits in eight bytes behind them: whole blocks of 64.
std::string padded(std::string_view bytes) {
  std::string out(bytes);
  out += '\x80';
  while (out.size() % 64 != 56) out += '\0';
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8) out += static_cast<char>(bits >> shift & 255);
  return out;
}

/// The sixteen words of a block, the high byte first, and those that follow from them.
std::array<std::uint32_t, 80> schedule(std::string_view block) {
  std::array<std::uint32_t, 80> words{};
  for (std::size_t i = 0; i < block.size(); ++i) {
    words[i / 4] = words[i / 4] << 8 | static_cast<unsigned char>(block[i]);
  }
  for (std::size_t i = 16; i < words.size(); ++i) {
    words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
  }
  return words;
}

/// The function of a round's step, with the constant that is added to it.
std::uint32_t mixed(std::size_t step, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
  switch (step / 20) {
  case 0: return ((b & c) | (~b & d)) + 0x5A827999;
  case 1: return (b ^ c ^ d) + 0x6ED9EBA1;
  case 2: return ((b & c) | (b & d) | (c & d)) + 0x8F1BBCDC;
  default: return (b ^ c ^ d) + 0xCA62C1D6;
  }
}

void addBlock(State& state, std::string_view block) {
  const auto words = schedule(block);
  State s = state;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::uint32_t next = std::rotl(s[0], 5) + mixed(i, s[1], s[2], s[3]) + s[4] + words[i];
    s = {next, s[0], std::rotl(s[1], 30), s[2], s[3]};
  }
  for (std::size_t i = 0; i < s.size(); ++i) state[i] += s[i];
}

}  // namespace

WString SHA1_GetStringHash(std::wstring_view text) { return fromUtf8(SHA1_GetBytesHash(toUtf8(text))); }

std::string SHA1_GetBytesHash(std::string_view bytes) {
  const std::string all = padded(bytes);
  State state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (std::size_t i = 0; i < all.size(); i += 64) addBlock(state, std::string_view(all).substr(i, 64));
  std::string out;
  for (const std::uint32_t word : state) {
    for (int shift = 28; shift >= 0; shift -= 4) out += "0123456789abcdef"[word >> shift & 15];
  }
  return out;
}

}  // namespace TolmSDK

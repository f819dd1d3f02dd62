#pragma once

// The hash of a text, for tables of one run: it may differ between machines.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace TolmSDK::Graphics::sfg {

/// Takes in one more number. The order counts.
inline std::uint64_t mixHash(std::uint64_t hash, std::uint64_t number) noexcept {
  constexpr std::uint64_t kFactor = 0x9e3779b97f4a7c15u;
  return (std::rotl(hash, 23) ^ number) * kFactor;
}

/// Reads sixteen bytes at a time, in two halves that do not wait for each other.
inline std::size_t hashOfText(std::wstring_view text) noexcept {
  const auto* from = reinterpret_cast<const char*>(text.data());
  std::size_t left = text.size() * sizeof(wchar_t);
  std::uint64_t first = left;
  std::uint64_t second = 0;
  std::uint64_t bytes[2];
  for (; left >= sizeof bytes; left -= sizeof bytes, from += sizeof bytes) {
    std::memcpy(bytes, from, sizeof bytes);
    first = mixHash(first, bytes[0]);
    second = mixHash(second, bytes[1]);
  }
  bytes[0] = bytes[1] = 0;
  if (left != 0) std::memcpy(bytes, from, left);
  first = mixHash(mixHash(first, bytes[0]), bytes[1]);
  const std::uint64_t hash = mixHash(first, second);
  return static_cast<std::size_t>(hash ^ (hash >> 32));
}

}  // namespace TolmSDK::Graphics::sfg

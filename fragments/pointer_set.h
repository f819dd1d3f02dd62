#pragma once

// A set of addresses that costs no allocation per element.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Addresses other than null, in a table that is at most half full: a place is looked for from the address's
/// own on.
class PointerSet {
public:
  /// False when it was there before.
  bool insert(const void* pointer) {
    if (places_.size() < 2 * (used_ + 1)) grow();
    const std::size_t place = find(pointer);
    if (places_[place] == pointer) return false;
    places_[place] = pointer;
    ++used_;
    return true;
  }

  bool contains(const void* pointer) const {
    return pointer != nullptr && !places_.empty() && places_[find(pointer)] == pointer;
  }

  /// False when it was not there.
  bool erase(const void* pointer) {
    if (!contains(pointer)) return false;
    std::size_t hole = find(pointer);
    places_[hole] = nullptr;
    --used_;
    // Those behind the hole whose own place is not behind it move into it, so that each is still found.
    for (std::size_t next = following(hole); places_[next] != nullptr; next = following(next)) {
      const std::size_t distance = (next - homeOf(places_[next])) & (places_.size() - 1);
      if (distance < ((next - hole) & (places_.size() - 1))) continue;
      places_[hole] = std::exchange(places_[next], nullptr);
      hole = next;
    }
    return true;
  }

private:
  static constexpr std::size_t kSmallest = 16;

  std::size_t homeOf(const void* pointer) const {
    // Fibonacci hashing: the high bits of the product are spread well.
    const std::uint64_t product = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer)) *
                                  std::uint64_t{0x9e3779b97f4a7c15u};
    return static_cast<std::size_t>(product >> (64 - std::countr_zero(places_.size())));
  }
  std::size_t following(std::size_t place) const { return (place + 1) & (places_.size() - 1); }

  std::size_t find(const void* pointer) const {
    std::size_t place = homeOf(pointer);
    while (places_[place] != nullptr && places_[place] != pointer) place = following(place);
    return place;
  }

  void grow() {
    Array<const void*> before(places_.empty() ? kSmallest : 2 * places_.size());
    before.swap(places_);
    for (const void* pointer : before)
      if (pointer != nullptr) places_[find(pointer)] = pointer;
  }

  Array<const void*> places_;
  std::size_t used_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg

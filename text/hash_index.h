#pragma once

// A hash table beside an array: it knows where in the array an entry is, not what it holds.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Numbers of entries by the entries' hashes. The owner keeps the entries themselves, one behind another as a
/// rule: in large tables that is much faster than nodes that lie all over the memory. Entries are never
/// removed.
class HashIndex {
public:
  /// The number of the entry with that hash for which `isSought(number)`, or the not-found value.
  template <class IsSought>
  std::size_t find(std::size_t hash, IsSought&& isSought) const {
    if (places_.empty()) return kNotFound;
    const std::uint32_t tag = tagOf(hash);
    for (std::size_t at = homeOf(tag); places_[at].entry != 0; at = following(at)) {
      const std::size_t number = places_[at].entry - 1;
      if (places_[at].tag == tag && isSought(number)) return number;
    }
    return kNotFound;
  }

  /// Makes room for that many entries in all.
  void reserve(std::size_t count) {
    std::size_t wanted = kSmallest;
    while (4 * count > 3 * wanted) wanted *= 2;
    if (wanted > places_.size()) growTo(wanted);
  }

  /// Forgets all entries; a small table keeps its memory.
  void clear() {
    if (used_ == 0) return;
    if (places_.size() > kSmallest) places_ = {};
    std::fill(places_.begin(), places_.end(), Place());
    used_ = 0;
  }

  /// Does not look whether the entry is there. Called behind the entry's own insertion, so that no number
  /// stays here when that throws. Numbers are below 2^32 - 1.
  void add(std::size_t hash, std::size_t number) {
    if (4 * (used_ + 1) > 3 * places_.size()) growTo(places_.empty() ? kSmallest : 2 * places_.size());
    put({tagOf(hash), static_cast<std::uint32_t>(number + 1)});
    ++used_;
  }

private:
  static constexpr std::size_t kSmallest = 16;

  struct Place {
    std::uint32_t tag = 0;
    std::uint32_t entry = 0;  // its number plus one; 0 in a free place
  };

  static std::uint32_t tagOf(std::size_t hash) {
    // Fibonacci hashing: the high bits of the product are spread well.
    return static_cast<std::uint32_t>((std::uint64_t{hash} * std::uint64_t{0x9e3779b97f4a7c15u}) >> 32);
  }
  /// The high bits, so that a larger table has its entries in the same order and is filled from front to
  /// back.
  std::size_t homeOf(std::uint32_t tag) const { return tag >> (32 - std::countr_zero(places_.size())); }
  std::size_t following(std::size_t at) const { return (at + 1) & (places_.size() - 1); }

  void put(Place place) {
    std::size_t at = homeOf(place.tag);
    while (places_[at].entry != 0) at = following(at);
    places_[at] = place;
  }

  void growTo(std::size_t places) {
    Array<Place> before(places);
    before.swap(places_);
    for (const Place& place : before)
      if (place.entry != 0) put(place);
  }

  Array<Place> places_;
  std::size_t used_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg

#pragma once

// What instances that a walk has visited before still have to write.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class FragmentInstance;

/// Writes by the time at which a walk came to them, which is their place in the text. Found and removed in
/// about constant time.
class PendingWrites {
public:
  struct Write {
    std::uint32_t time = 0;
    FragmentInstance* instance = nullptr;
    bool isDeclaration = false;  // of its outputs; else all the rest
    /// Not null: the write is a call of the source of this instance's input `input`, for which the definition
    /// of the instance waits.
    const FragmentInstance* awaitedBy = nullptr;
    std::size_t input = 0;
  };

  void assign(Array<Write> writes) {
    writes_ = std::move(writes);
    std::sort(writes_.begin(), writes_.end(), [](const Write& a, const Write& b) { return a.time < b.time; });
    next_.resize(writes_.size() + 1);
    std::iota(next_.begin(), next_.end(), std::size_t{0});
  }

  void clear() noexcept {
    writes_.clear();
    next_.clear();
  }

  /// The number of the first one from `from` to `to` that was not removed, or the not-found value.
  std::size_t findFirst(std::uint32_t from, std::uint32_t to) {
    if (writes_.empty()) return kNotFound;
    const auto first =
        std::lower_bound(writes_.begin(), writes_.end(), from,
                         [](const Write& write, std::uint32_t time) { return write.time < time; });
    const std::size_t left = findLeft(static_cast<std::size_t>(first - writes_.begin()));
    return left < writes_.size() && writes_[left].time <= to ? left : kNotFound;
  }

  const Write& operator[](std::size_t number) const { return writes_[number]; }
  void remove(std::size_t number) { next_[number] = number + 1; }

private:
  /// The first one from there on that was not removed. Shortens the way for the next question.
  std::size_t findLeft(std::size_t number) {
    while (next_[number] != number) {
      next_[number] = next_[next_[number]];
      number = next_[number];
    }
    return number;
  }

  Array<Write> writes_;
  Array<std::size_t> next_;  // itself, or nearer to the first behind it that was not removed
};

}  // namespace TolmSDK::Graphics::sfg

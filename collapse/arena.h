#pragma once

// Memory for what lives as long as a collapse.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <type_traits>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Hands out memory piece by piece and frees it as a whole, so that a piece costs neither a call of the heap
/// nor its bookkeeping. It destroys nothing: whoever makes an object in it does. A failure to get memory
/// (std::bad_alloc) leaves it as it was.
class Arena {
public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  /// `alignment` is a power of two, at most that of every fundamental type.
  std::byte* allocate(std::size_t size, std::size_t alignment) {
    const std::size_t gap = (alignment - used_ % alignment) % alignment;
    if (gap > room_ || size > room_ - gap) return allocateInNewBlock(size);
    return take(gap, size);
  }

  /// Value-initialised. Should a constructor throw, those made before are destroyed.
  template <class T>
  std::span<T> makeArray(std::size_t count) {
    static_assert(alignof(T) <= alignof(std::max_align_t));
    if (count == 0) return {};
    if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
    T* const first = reinterpret_cast<T*>(allocate(count * sizeof(T), alignof(T)));
    std::uninitialized_value_construct_n(first, count);
    return {first, count};
  }

private:
  /// Blocks grow up to a size from which on their number no longer costs anything.
  static constexpr std::size_t kSmallest = std::size_t{1} << 10;
  static constexpr std::size_t kLargest = std::size_t{1} << 14;

  std::byte* take(std::size_t gap, std::size_t size) noexcept {
    std::byte* const piece = blocks_.back().get() + used_ + gap;
    used_ += gap + size;
    room_ -= gap + size;
    return piece;
  }

  /// A block begins at an address that suits every alignment.
  std::byte* allocateInNewBlock(std::size_t size) {
    const std::size_t usual = std::min(kSmallest << std::min<std::size_t>(blocks_.size(), 4), kLargest);
    const std::size_t room = std::max(usual, size);
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(room));
    used_ = 0;
    room_ = room;
    return take(0, size);
  }

  Array<std::unique_ptr<std::byte[]>> blocks_;
  std::size_t used_ = 0;  // of the last block
  std::size_t room_ = 0;  // behind that
};

}  // namespace TolmSDK::Graphics::sfg

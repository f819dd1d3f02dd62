#pragma once

// Strings and containers whose memory may change hands between modules.

#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tolmsdk/export.h"

namespace TolmSDK {

/// One heap for all modules: what one module allocates another may free. Throws std::bad_alloc.
TOLMSDK_API void* CrossDllAllocate(std::size_t size);
/// Frees what CrossDllAllocate answered; null is ignored.
TOLMSDK_API void CrossDllFree(void* memory) noexcept;

/// Standard allocator over the cross-module heap. Stateless: all instances are equal.
template <class T>
class StlAllocator {
public:
  using value_type = T;

  constexpr StlAllocator() noexcept = default;
  template <class U>
  constexpr StlAllocator(const StlAllocator<U>&) noexcept {}

  T* allocate(std::size_t count) {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(CrossDllAllocate(count * sizeof(T)));
  }
  void deallocate(T* memory, std::size_t) noexcept { CrossDllFree(memory); }

  friend constexpr bool operator==(const StlAllocator&, const StlAllocator&) noexcept { return true; }
};

/// Wide-character text: the string type of every interface.
using WString = std::basic_string<wchar_t, std::char_traits<wchar_t>, StlAllocator<wchar_t>>;

template <class T>
using Array = std::vector<T, StlAllocator<T>>;

/// Ordered by value; look-ups accept views without making a string.
template <class T>
using Set = std::set<T, std::less<>, StlAllocator<T>>;

template <class Key, class Value, class Less = std::less<>>
using Map = std::map<Key, Value, Less, StlAllocator<std::pair<const Key, Value>>>;

/// The answer of a search for an index that found nothing.
inline constexpr std::size_t kNotFound = std::numeric_limits<std::size_t>::max();

}  // namespace TolmSDK

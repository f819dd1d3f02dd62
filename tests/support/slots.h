#pragma once

// The place of a virtual operation in its class's table of virtual operations, as the Itanium C++ ABI lays it
// out.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace TolmSDK::test {

/// Place of the operation, counted from 1 with the destructor, which takes two entries of the table, as the
/// first. For an overload the type of the member pointer is named: slotOf<void
/// (Class::*)(int)>(&Class::operation).
template <class Member>
std::size_t slotOf(Member operation) {
  static_assert(std::is_member_function_pointer_v<Member>);
  std::uintptr_t words[2] = {};
  static_assert(sizeof(words) >= sizeof(operation));
  std::memcpy(words, &operation, sizeof(operation));
  // The offset into the table; its lowest bit marks a virtual operation (on some processors the other word
  // does).
  return static_cast<std::size_t>(words[0] & ~std::uintptr_t{1}) / sizeof(void*);
}

}  // namespace TolmSDK::test

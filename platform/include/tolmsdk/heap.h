#pragma once

// The host utility library's heap: every counted object lives on it, so that any module may destroy it.

#include <cstddef>

#include "tolmsdk/export.h"

namespace TolmSDK {

/// Allocates `size` bytes on the host's heap, aligned for any fundamental type. Throws std::bad_alloc.
TOLMSDK_API void* HeapAllocate(std::size_t size);
/// Frees what HeapAllocate answered; null is ignored.
TOLMSDK_API void HeapFree(void* memory) noexcept;

/// Base that puts every object of a class hierarchy on the host's heap. No data, no virtuals.
class HeapObject {
public:
  static void* operator new(std::size_t size) { return HeapAllocate(size); }
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* memory) noexcept { HeapFree(memory); }
  static void operator delete(void*, void*) noexcept {}

protected:
  ~HeapObject() = default;
};

}  // namespace TolmSDK

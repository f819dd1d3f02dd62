#include "tolmsdk/heap.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "tolmsdk/types.h"

namespace TolmSDK {

namespace {

void* allocate(std::size_t size) {
  void* const memory = std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* HeapAllocate(std::size_t size) { return allocate(size); }

void HeapFree(void* memory) noexcept { std::free(memory); }

void* CrossDllAllocate(std::size_t size) { return allocate(size); }

void CrossDllFree(void* memory) noexcept { std::free(memory); }

}  // namespace TolmSDK

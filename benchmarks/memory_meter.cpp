#include "benchmarks/memory_meter.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstddef>

// The C library's own allocator, behind the names below: defining malloc in the program puts every allocation
// of every library through it.
extern "C" {
void* __libc_malloc(std::size_t size);
void __libc_free(void* memory);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

// Counts only while a reading is under way, so that it costs the measured times (and threads) nothing.
std::atomic<bool> isCounting{false};
std::atomic<std::size_t> allocations{0};
std::atomic<std::ptrdiff_t> heldBytes{0};  // since the start; negative when more was freed
std::atomic<std::ptrdiff_t> peakBytes{0};

void* counted(void* memory) {
  if (memory == nullptr || !isCounting.load(std::memory_order_relaxed)) return memory;
  allocations.fetch_add(1, std::memory_order_relaxed);
  const auto size = static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
  const std::ptrdiff_t held = heldBytes.fetch_add(size, std::memory_order_relaxed) + size;
  std::ptrdiff_t peak = peakBytes.load(std::memory_order_relaxed);
  while (held > peak && !peakBytes.compare_exchange_weak(peak, held, std::memory_order_relaxed)) {
  }
  return memory;
}

void uncounted(void* memory) {
  if (memory == nullptr || !isCounting.load(std::memory_order_relaxed)) return;
  heldBytes.fetch_sub(static_cast<std::ptrdiff_t>(malloc_usable_size(memory)), std::memory_order_relaxed);
}

}  // namespace

// The libraries find these only where they are visible.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) { return counted(__libc_malloc(size)); }

void free(void* memory) {
  uncounted(memory);
  __libc_free(memory);
}

void* calloc(std::size_t count, std::size_t size) { return counted(__libc_calloc(count, size)); }

void* realloc(void* memory, std::size_t size) {
  uncounted(memory);
  return counted(__libc_realloc(memory, size));
}

void* memalign(std::size_t alignment, std::size_t size) { return counted(__libc_memalign(alignment, size)); }

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  void* made = memalign(alignment, size);
  if (made == nullptr) return ENOMEM;
  *memory = made;
  return 0;
}

}  // extern "C"
#pragma GCC visibility pop

namespace TolmSDK::Graphics::sfg::benchmarks {

void keepFreedMemory() {
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  mallopt(M_MMAP_MAX, 0);
}

void startMemoryMeter() {
  allocations = 0;
  heldBytes = 0;
  peakBytes = 0;
  isCounting = true;
}

MemoryReading readMemoryMeter() {
  isCounting = false;
  return {allocations.load(), static_cast<std::size_t>(peakBytes.load())};
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

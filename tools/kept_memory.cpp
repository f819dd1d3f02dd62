#include "tools/kept_memory.h"

#include <malloc.h>

#include <climits>

namespace TolmSDK::Graphics::sfg::tools {

void keepFreedMemory() {
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
}

}  // namespace TolmSDK::Graphics::sfg::tools

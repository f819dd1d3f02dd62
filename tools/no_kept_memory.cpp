#include "tools/kept_memory.h"

namespace TolmSDK::Graphics::sfg::tools {

void keepFreedMemory() {}

}  // namespace TolmSDK::Graphics::sfg::tools

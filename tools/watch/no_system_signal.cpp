// For systems that this program asks nothing.

#include "tools/watch/change_signal.h"

namespace TolmSDK::Graphics::sfg::tools {

std::unique_ptr<ChangeSignal> makeSystemSignal(std::chrono::milliseconds /*pollingInterval*/) {
  return nullptr;
}

}  // namespace TolmSDK::Graphics::sfg::tools

#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {

const char* hostVersion() noexcept { return SFG_VERSION; }

}  // namespace TolmSDK::Graphics::sfg::host

#include <sfg/version.h>

namespace TolmSDK::Graphics::sfg {

char const* sfgVersion() noexcept { return SFG_VERSION; }

}  // namespace TolmSDK::Graphics::sfg

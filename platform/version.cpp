#include <tolmsdk/version.h>

namespace TolmSDK {

char const* platformVersion() noexcept { return SFG_VERSION; }

}  // namespace TolmSDK

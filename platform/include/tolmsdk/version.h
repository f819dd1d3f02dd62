#pragma once

#include <tolmsdk/export.h>

namespace TolmSDK {

// The version of the platform library that was loaded, as "major.minor.patch"; it need not be the one whose
// headers were compiled against. The text is static. Safe from every thread.
[[nodiscard]] TOLMSDK_API char const* platformVersion() noexcept;

}  // namespace TolmSDK

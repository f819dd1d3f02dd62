#pragma once

#include <sfg/export.h>

namespace TolmSDK::Graphics::sfg {

// The version of the generator library that was loaded, as "major.minor.patch"; it need not be the one whose
// headers were compiled against. The text is static. Safe from every thread.
[[nodiscard]] SFG_API char const* sfgVersion() noexcept;

}  // namespace TolmSDK::Graphics::sfg

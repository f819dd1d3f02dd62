#include "host/shader/known_names.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(KnownNames, AreToldADozenAtMost) {
  EXPECT_EQ(knownNamesHint("x", {}), "; none are known");
  EXPECT_EQ(knownNamesHint("x", std::vector<std::string>(14, "long name")),
            "; known are `long name`, `long name`, `long name`, `long name`, `long name`, `long name`, `long "
            "name`, `long name`, `long name`, `long name`, `long name`, `long name` and 2 more");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

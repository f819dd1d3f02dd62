// A table of mistakes that people make: each with its exact place, identifier and words.

#include <ostream>

#include "tools/command_test_support.h"

namespace TolmSDK::Graphics::sfg::tools {
namespace {

TEST(Placeholder, Compiles) {}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools

// What profiles keep from one collapse for the next changes no byte.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/collapse.h"
#include "tests/support/random_scene.h"

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(RepeatedCollapse, WritesTheSameBytesEveryTime) {
  constexpr unsigned kScenes = 400;
  constexpr int kRepeats = 4;  // the definitions of the third are kept ones
  for (unsigned seed = 1; seed <= kScenes; ++seed) {
    const test::RandomScene repeated(seed);
    const std::string byDefault = test::collapseDefault(test::RandomScene(seed).scene);
    const std::string byLightLoop = test::collapseLightLoop(test::RandomScene(seed).scene);
    for (int i = 0; i < kRepeats; ++i) {
      ASSERT_EQ(test::collapseDefault(repeated.scene), byDefault) << "scene " << seed << ", " << i;
      ASSERT_EQ(test::collapseLightLoop(repeated.scene), byLightLoop) << "scene " << seed << ", " << i;
    }
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

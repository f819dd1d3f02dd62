#pragma once

// Collapses a scene and says what came of it.

#include <string>

#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "tests/support/describe.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::test {

/// The result's description ("null" without one), or the message thrown.
template <class Tool>
std::string collapseWith(Tool& tool, const TestScene& scene) {
  try {
    return describe(
        tool.collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get()));
  } catch (const Exception& exception) {
    return exception.what();
  }
}

inline std::string collapseDefault(const TestScene& scene) {
  return collapseWith(*makeRef<AShaderCollapseToolDefault>(), scene);
}

inline std::string collapseLightLoop(const TestScene& scene) {
  return collapseWith(*makeRef<AShaderCollapseToolLightLoop>(), scene);
}

}  // namespace TolmSDK::Graphics::sfg::test

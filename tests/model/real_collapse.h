#pragma once

// A scene through the real tools and through the model, both as the same kind of text.

#include <string>

#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_collapse_tool_light_loop.h"
#include "tests/model/collapsed_text.h"
#include "tests/model/model_collapse.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::model {

enum class ToolKind { byDefault, lightLoop };

template <class Tool>
std::string collapseWith(const test::TestScene& scene) {
  try {
    const auto tool = makeRef<Tool>();
    const IShaderFragment* result =
        tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
    return result != nullptr ? describe(read(*result)) : "null";
  } catch (const Exception& exception) {
    return exception.what();
  }
}

inline std::string collapseReally(ToolKind kind, const test::TestScene& scene) {
  return kind == ToolKind::byDefault ? collapseWith<AShaderCollapseToolDefault>(scene)
                                     : collapseWith<AShaderCollapseToolLightLoop>(scene);
}

inline std::string collapseByModel(ToolKind kind, const test::TestScene& scene) {
  const Input input{scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get()};
  return kind == ToolKind::byDefault ? collapseDefault(input) : collapseLightLoop(input);
}

}  // namespace TolmSDK::Graphics::sfg::model

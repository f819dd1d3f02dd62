#pragma once

// Drawings in the language of Graphviz.

#include <string>

#include "host/drawing/graph_drawing.h"

namespace TolmSDK::Graphics::sfg::host {

/// For `dot`, which lays boxes and wires out from left to right: a table for each box, wires in the colour of
/// their type. `title` is a line above. UTF-8, with a line feed at its end.
std::string writeDot(const GraphDrawing& drawing, const std::string& title);

}  // namespace TolmSDK::Graphics::sfg::host

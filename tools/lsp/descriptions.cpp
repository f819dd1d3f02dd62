#include "tools/lsp/descriptions.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

std::string typedName(const PortCard& port) {
  return port.type.empty() ? port.name : port.type + " " + port.name;
}

std::string listed(const std::vector<PortCard>& ports) {
  std::string text;
  for (const PortCard& port : ports) text.append(text.empty() ? "" : ", ").append(typedName(port));
  return text;
}

void appendLines(std::string& text, const char* title, const std::vector<PortCard>& ports) {
  if (ports.empty()) return;
  text.append("\n\n").append(title).append("\n");
  for (const PortCard& port : ports) text.append("\n- ").append(describe(port));
}

/// "0 to 1", "from 0", "up to 1", or nothing.
std::string rangeOf(const PortCard& port) {
  if (port.min.empty() && port.max.empty()) return std::string();
  if (port.max.empty()) return "from " + port.min;
  if (port.min.empty()) return "up to " + port.max;
  return port.min + " to " + port.max;
}

}  // namespace

std::string signatureOf(const FragmentCard& fragment) {
  std::string text = "(";
  text.append(listed(fragment.inputs)).append(")");
  if (!fragment.outputs.empty()) text.append(" -> ").append(listed(fragment.outputs));
  return text;
}

std::string describe(const FragmentCard& fragment) {
  std::string text = "**";
  text.append(fragment.name).append("**");
  if (!fragment.description.empty()) text.append("\n\n").append(fragment.description);
  appendLines(text, "Inputs", fragment.inputs);
  appendLines(text, "Outputs", fragment.outputs);
  appendLines(text, "Uniforms", fragment.uniforms);
  return text;
}

std::string describe(const PortCard& port) {
  std::string text = "`";
  text.append(typedName(port)).append("`");
  if (!port.value.empty()) text.append(" = ").append(port.value);
  if (const std::string range = rangeOf(port); !range.empty()) text.append(", ").append(range);
  if (!port.kind.empty()) text.append(", ").append(port.kind);
  if (!port.space.empty()) text.append(", ").append(port.space);
  if (!port.description.empty()) text.append(": ").append(port.description);
  return text;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

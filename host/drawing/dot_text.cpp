#include "host/drawing/dot_text.h"

#include <algorithm>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

namespace {

using DrawnKind = DrawnNode::Kind;

/// For the text of a label, which is a kind of XML: control characters cannot stand in it.
std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"') {
      out += "&quot;";
    } else {
      out += static_cast<unsigned char>(c) < 0x20 || c == 0x7f ? ' ' : c;
    }
  }
  return out;
}

/// Colours that differ in lightness, too.
const char* colorOf(std::string_view type) {
  const auto isAny = [&](std::initializer_list<const char*> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
  };
  if (isAny({"float", "half", "double"})) return "#6b7280";
  if (isAny({"int", "uint"})) return "#0f766e";
  if (type == "bool") return "#b91c1c";
  if (type.find("ampler") != type.npos) return "#c2410c";
  if (type.find('x') != type.npos) return "#78350f";
  if (type.ends_with('2')) return "#15803d";
  if (type.ends_with('3')) return "#1d4ed8";
  if (type.ends_with('4')) return "#a21caf";
  return "#111827";
}

const char* headColorOf(const DrawnNode& node) {
  if (node.isUnused) return "#f3f4f6";
  if (node.kind == DrawnKind::light) return "#fde68a";
  if (node.isLit) return "#fed7aa";
  if (node.isBelowLit) return "#fef3c7";
  return node.kind == DrawnKind::node ? "#dbeafe" : "#e5e7eb";
}

const char* noteOf(const DrawnNode& node) {
  if (node.isUnused) return "no output needs it";
  if (node.isLit) return "lit: runs for every light";
  return node.isBelowLit ? "behind the lit ones" : "";
}

/// A port that is alone in its row takes the whole of it.
void appendPort(std::string& out, const DrawnPort& port, char side, std::size_t index, bool isAlone) {
  out += "<TD PORT=\"";
  out += side;
  out += std::to_string(index);
  out += side == 'i' ? "\" ALIGN=\"LEFT\"" : "\" ALIGN=\"RIGHT\"";
  out += isAlone ? " COLSPAN=\"2\">" : ">";
  out += escaped(port.name);
  out += " <FONT COLOR=\"";
  out += colorOf(port.type);
  out += "\" POINT-SIZE=\"9\">" + escaped(port.type) + "</FONT>";
  if (!port.value.empty()) out += " <FONT POINT-SIZE=\"9\">" + escaped(port.value) + "</FONT>";
  out += "</TD>";
}

/// Behind the name, each a line: fragment, profiles, what part it plays.
void appendSmall(std::string& out, const std::string& text) {
  if (text.empty()) return;
  out += "<BR ALIGN=\"LEFT\"/><FONT POINT-SIZE=\"9\">" + escaped(text) + "</FONT>";
}

std::string labelOf(const DrawnNode& node) {
  std::string out =
      "<TABLE BORDER=\"0\" CELLBORDER=\"1\" CELLSPACING=\"0\" CELLPADDING=\"4\" COLOR=\"#9ca3af\" "
      "BGCOLOR=\"white\"><TR><TD COLSPAN=\"2\" ALIGN=\"LEFT\" BALIGN=\"LEFT\" BGCOLOR=\"";
  out += headColorOf(node);
  out += "\"><B>" + escaped(node.name) + "</B>";
  if (node.fragment != node.name) appendSmall(out, node.fragment);
  for (const std::string& profile : node.profiles) appendSmall(out, profile);
  appendSmall(out, noteOf(node));
  out += "</TD></TR>";
  if (!node.picture.empty())
    out += "<TR><TD COLSPAN=\"2\"><IMG SRC=\"" + escaped(node.picture) + "\"/></TD></TR>";
  const std::size_t rows = std::max(node.inputs.size(), node.outputs.size());
  for (std::size_t i = 0; i < rows; ++i) {
    out += "<TR>";
    if (i < node.inputs.size()) appendPort(out, node.inputs[i], 'i', i, node.outputs.empty());
    if (i >= node.inputs.size() && !node.inputs.empty()) out += "<TD></TD>";
    if (i < node.outputs.size()) appendPort(out, node.outputs[i], 'o', i, node.inputs.empty());
    if (i >= node.outputs.size() && !node.outputs.empty()) out += "<TD></TD>";
    out += "</TR>";
  }
  return out + "</TABLE>";
}

class DotWriter {
public:
  explicit DotWriter(const GraphDrawing& drawing) : drawing_(drawing) {}

  std::string write(const std::string& title) {
    out_ = "digraph sfg {\n"
           "  graph [rankdir=LR, ranksep=0.9, nodesep=0.25, labelloc=t, labeljust=l, fontname=\"Helvetica\", "
           "label=<" +
           escaped(title) +
           ">];\n"
           "  node [shape=plain, fontname=\"Helvetica\", fontsize=11];\n"
           "  edge [arrowsize=0.6, penwidth=1.6, fontname=\"Helvetica\"];\n";
    writeNodes();
    writeChain(DrawnKind::preprocess, "before the graph");
    writeChain(DrawnKind::light, "lights");
    writeChain(DrawnKind::output, "of every surface");
    writeChain(DrawnKind::postprocess, "behind the graph");
    for (const DrawnWire& wire : drawing_.wires) writeWire(wire);
    writeOutputsToChains();
    return out_ + "}\n";
  }

private:
  static bool isOfGraph(DrawnKind kind) {
    return kind == DrawnKind::node || kind == DrawnKind::graphInputs || kind == DrawnKind::graphOutputs ||
           kind == DrawnKind::graphUniforms;
  }

  void writeNode(std::size_t index, const char* indent) {
    const DrawnNode& node = drawing_.nodes[index];
    out_ += indent;
    out_ += "n" + std::to_string(index) + " [label=<" + labelOf(node) + ">, tooltip=<" + escaped(node.name);
    if (!node.fragment.empty()) out_ += ": " + escaped(node.fragment);
    out_ += ">];\n";
  }

  void writeNodes() {
    for (std::size_t i = 0; i < drawing_.nodes.size(); ++i) {
      if (isOfGraph(drawing_.nodes[i].kind)) writeNode(i, "  ");
    }
  }

  /// Lights stand beside one another; fragments of a chain run one after another.
  void writeChain(DrawnKind kind, const char* label) {
    bool isFirst = true;
    for (std::size_t i = 0; i < drawing_.nodes.size(); ++i) {
      if (drawing_.nodes[i].kind != kind) continue;
      if (isFirst) {
        out_ += std::string("  subgraph cluster_") + std::to_string(static_cast<int>(kind)) +
                " {\n    label=<" + label + ">; color=\"#9ca3af\"; style=\"rounded\";\n";
      }
      writeNode(i, "    ");
      if (!isFirst && kind != DrawnKind::light) {
        writeOrder(i - 1, i);
      }
      isFirst = false;
    }
    if (!isFirst) out_ += "  }\n";
  }

  void writeOutputsToChains() {
    std::size_t outputs = drawing_.nodes.size();
    bool isFirst = true;
    for (std::size_t i = 0; i < drawing_.nodes.size(); ++i) {
      const DrawnKind kind = drawing_.nodes[i].kind;
      if (kind == DrawnKind::graphOutputs) outputs = i;
      if (outputs < i && (kind == DrawnKind::output || (kind == DrawnKind::postprocess && isFirst)))
        writeOrder(outputs, i);
      isFirst = isFirst && kind != DrawnKind::postprocess;
    }
  }

  /// That one runs behind the other.
  void writeOrder(std::size_t from, std::size_t to) {
    out_ +=
        "  n" + std::to_string(from) + " -> n" + std::to_string(to) + " [style=dashed, color=\"#9ca3af\"];\n";
  }

  void writeWire(const DrawnWire& wire) {
    const DrawnNode& from = drawing_.nodes[wire.from];
    const DrawnNode& to = drawing_.nodes[wire.to];
    const std::string type = wire.output < from.outputs.size() ? from.outputs[wire.output].type : "";
    out_ += "  n" + std::to_string(wire.from) + ":o" + std::to_string(wire.output) + ":e -> n" +
            std::to_string(wire.to) + ":i" + std::to_string(wire.input) + ":w [color=\"" + colorOf(type) +
            "\"";
    if (to.isUnused) out_ += ", style=dashed";
    out_ += "];\n";
  }

  const GraphDrawing& drawing_;
  std::string out_;
};

}  // namespace

std::string writeDot(const GraphDrawing& drawing, const std::string& title) {
  return DotWriter(drawing).write(title);
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/drawing/dot_text.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Kind = DrawnNode::Kind;

DrawnNode node(Kind kind, const std::string& name, std::vector<DrawnPort> inputs,
               std::vector<DrawnPort> outputs) {
  DrawnNode made;
  made.kind = kind;
  made.name = name;
  made.inputs = std::move(inputs);
  made.outputs = std::move(outputs);
  return made;
}

std::string dotOf(GraphDrawing drawing) { return writeDot(drawing, "a.json"); }

/// The line that begins with this, without its indent.
std::string lineOf(const std::string& text, const std::string& start) {
  const std::size_t place = text.find(start);
  return place == text.npos ? "" : text.substr(place, text.find('\n', place) - place);
}

TEST(DotTextTest, IsEmptyButForItsTitleWithoutNodes) {
  EXPECT_EQ(dotOf({}), "digraph sfg {\n"
                       "  graph [rankdir=LR, ranksep=0.9, nodesep=0.25, labelloc=t, labeljust=l, "
                       "fontname=\"Helvetica\", label=<a.json>];\n"
                       "  node [shape=plain, fontname=\"Helvetica\", fontsize=11];\n"
                       "  edge [arrowsize=0.6, penwidth=1.6, fontname=\"Helvetica\"];\n"
                       "}\n");
}

TEST(DotTextTest, DrawsATableForEachNodeAndAWireInTheColorOfItsType) {
  GraphDrawing drawing;
  drawing.nodes = {node(Kind::node, "a", {{"x", "float", "0.5"}, {"y", "float", ""}}, {{"uv", "float2", ""}}),
                   node(Kind::graphOutputs, "outputs", {{"color", "float2", ""}}, {})};
  drawing.nodes[0].fragment = "tile";
  drawing.nodes[0].profiles = {"default, level 100"};
  drawing.wires = {{0, 0, 1, 0}};
  const std::string text = dotOf(drawing);
  EXPECT_EQ(
      lineOf(text, "n0 ["),
      "n0 [label=<<TABLE BORDER=\"0\" CELLBORDER=\"1\" CELLSPACING=\"0\" CELLPADDING=\"4\" "
      "COLOR=\"#9ca3af\" BGCOLOR=\"white\"><TR><TD COLSPAN=\"2\" ALIGN=\"LEFT\" BALIGN=\"LEFT\" "
      "BGCOLOR=\"#dbeafe\"><B>a</B><BR ALIGN=\"LEFT\"/><FONT POINT-SIZE=\"9\">tile</FONT><BR "
      "ALIGN=\"LEFT\"/><FONT POINT-SIZE=\"9\">default, level 100</FONT></TD></TR><TR><TD PORT=\"i0\" "
      "ALIGN=\"LEFT\">x <FONT COLOR=\"#6b7280\" POINT-SIZE=\"9\">float</FONT> <FONT "
      "POINT-SIZE=\"9\">0.5</FONT></TD><TD PORT=\"o0\" ALIGN=\"RIGHT\">uv <FONT COLOR=\"#15803d\" "
      "POINT-SIZE=\"9\">float2</FONT></TD></TR><TR><TD PORT=\"i1\" ALIGN=\"LEFT\">y <FONT "
      "COLOR=\"#6b7280\" POINT-SIZE=\"9\">float</FONT></TD><TD></TD></TR></TABLE>>, tooltip=<a: tile>];");
  EXPECT_EQ(lineOf(text, "n0:o0"), "n0:o0:e -> n1:i0:w [color=\"#15803d\"];");
  EXPECT_NE(text.find("<TD PORT=\"i0\" ALIGN=\"LEFT\" COLSPAN=\"2\">color "), text.npos) << text;
}

TEST(DotTextTest, SaysWhichNodesAreLitBehindLitOnesOrUnused) {
  GraphDrawing drawing;
  for (int i = 0; i < 3; ++i)
    drawing.nodes.push_back(node(Kind::node, "n", {{"x", "float", ""}}, {{"y", "float", ""}}));
  drawing.nodes[0].isLit = true;
  drawing.nodes[1].isBelowLit = true;
  drawing.nodes[2].isUnused = true;
  drawing.wires = {{0, 0, 1, 0}, {0, 0, 2, 0}};
  const std::string text = dotOf(drawing);
  EXPECT_NE(lineOf(text, "n0 [").find("lit: runs for every light"), text.npos);
  EXPECT_NE(lineOf(text, "n1 [").find("behind the lit ones"), text.npos);
  EXPECT_NE(lineOf(text, "n2 [").find("no output needs it"), text.npos);
  EXPECT_EQ(lineOf(text, "n0:o0:e -> n1"), "n0:o0:e -> n1:i0:w [color=\"#6b7280\"];");
  EXPECT_EQ(lineOf(text, "n0:o0:e -> n2"), "n0:o0:e -> n2:i0:w [color=\"#6b7280\", style=dashed];");
}

TEST(DotTextTest, OrdersChainsAndSetsLightsBesideOneAnother) {
  GraphDrawing drawing;
  for (const Kind kind :
       {Kind::graphOutputs, Kind::light, Kind::light, Kind::output, Kind::postprocess, Kind::postprocess}) {
    drawing.nodes.push_back(node(kind, "n", {{"x", "float", ""}}, {}));
  }
  const std::string text = dotOf(drawing);
  std::string order;
  for (std::size_t at = 0; (at = text.find(" -> ", at + 1)) != text.npos;) {
    order += text.substr(at - 2, text.find(' ', at + 4) - at + 2) + "\n";
  }
  EXPECT_EQ(order, "n4 -> n5\nn0 -> n3\nn0 -> n4\n");
  EXPECT_NE(text.find("label=<lights>"), text.npos);
  EXPECT_NE(text.find("label=<of every surface>"), text.npos);
  EXPECT_NE(text.find("label=<behind the graph>"), text.npos);
  EXPECT_EQ(text.find("label=<before the graph>"), text.npos);
}

TEST(DotTextTest, NamesAreTextWhateverTheyHold) {
  GraphDrawing drawing;
  drawing.nodes = {node(Kind::node, "a<b>&\"c\"\n\x01", {{"<x>", "<t>", "\"1\""}}, {})};
  const std::string text = dotOf(drawing);
  EXPECT_NE(text.find("<B>a&lt;b&gt;&amp;&quot;c&quot;  </B>"), text.npos) << text;
  EXPECT_NE(text.find("&lt;x&gt; "), text.npos);
  EXPECT_NE(text.find("&lt;t&gt;</FONT> <FONT POINT-SIZE=\"9\">&quot;1&quot;</FONT>"), text.npos);
}

TEST(DotTextTest, KindsOfTypesHaveColorsOfTheirOwn) {
  std::string colors;
  for (const char* const type :
       {"float", "int", "bool", "float2", "int2", "float3", "float4", "float4x4", "sfg_sampler2D", "Lamp"}) {
    GraphDrawing drawing;
    drawing.nodes = {node(Kind::node, "a", {}, {{"y", type, ""}}),
                     node(Kind::node, "b", {{"x", type, ""}}, {})};
    drawing.wires = {{0, 0, 1, 0}};
    const std::string line = lineOf(dotOf(drawing), "n0:o0");
    colors += line.substr(line.find('#'), 7) + " ";
  }
  EXPECT_EQ(colors, "#6b7280 #0f766e #b91c1c #15803d #15803d #1d4ed8 #a21caf #78350f #c2410c #111827 ");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host

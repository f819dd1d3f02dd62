#include "embedding.h"

// A checkered surface: `tiles` chooses between two colours, `surface` reflects light with the result.
host::Graph describe() {
  using Numbers = std::vector<double>;
  host::Graph graph;
  graph.nodes = {
      {"tiles", "checkerPattern", {{"count", host::Value(Numbers{8, 8})}}, {}},
      {"colors",
       "colorRampTwo",
       {{"low", host::Value(Numbers{0.05, 0.05, 0.05})},
        {"high", host::Value(Numbers{0.9, 0.8, 0.6})},
        {"position", host::NodeOutput{"tiles", "result"}}},
       {}},
      {"surface", "lambertSurface", {{"albedo", host::NodeOutput{"colors", "result"}}}, {}},
      {"pixel", "outputColor", {{"color", host::NodeOutput{"surface", "result"}}}, {}},
  };
  host::Parameter color;
  color.name = "color";
  color.type = "float4";
  graph.outputs = {{color, {"pixel", "result"}}};
  return graph;
}

// One sun. A light's profile is the name of the code that reads such a light.
host::Environment scene() { return {{{"sun", "directionalLight", "sfg_Light"}}, ""}; }

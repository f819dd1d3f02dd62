// A host with a graph of its own: an editor's nodes and links become a graph of the library, which is
// collapsed, assembled and compiled. No file but the fragment library's is read.
//
//   own_graph LIBRARY     prints the shader's text and the size of its module

#include <sfg/host/compile.h>
#include <sfg/host/job.h>

#include <exception>
#include <iostream>
#include <map>
#include <string>
#include <vector>

using namespace TolmSDK::Graphics::sfg;

namespace {

// The editor's own data: it knows nothing of the generator.

struct EditorNode {
  std::string fragment;
  std::map<std::string, std::vector<double>> sliders;
};

struct Link {
  std::size_t from;  // node, its first output
  std::size_t to;
  std::string input;
};

struct EditorGraph {
  std::vector<EditorNode> nodes;
  std::vector<Link> links;
  std::size_t result;  // the node whose first output is the material's color
};

/// Noise over the texture coordinates, as a color.
EditorGraph makeMaterial() {
  return {{{"texCoord", {}},
           {"valueNoise2", {}},
           {"colorRampTwo", {{"low", {0.1, 0.2, 0.4}}, {"high", {0.9, 0.9, 0.7}}}},
           {"outputColor", {}}},
          {{0, 1, "position"}, {1, 2, "position"}, {2, 3, "color"}},
          3};
}

// The way over.

std::string nameOf(std::size_t node) { return "node" + std::to_string(node); }

host::Graph translate(const EditorGraph& material) {
  host::Graph graph;
  for (std::size_t i = 0; i < material.nodes.size(); ++i) {
    host::Node node{nameOf(i), material.nodes[i].fragment, {}, {}};
    for (const auto& [input, value] : material.nodes[i].sliders) {
      node.inputs.push_back({input, host::Value(value)});
    }
    graph.nodes.push_back(std::move(node));
  }
  for (const Link& link : material.links) {
    graph.nodes.at(link.to).inputs.push_back({link.input, host::NodeOutput{nameOf(link.from), {}}});
  }
  host::Parameter color;
  color.name = "color";
  color.type = "float4";
  graph.outputs.push_back({color, {nameOf(material.result), {}}});
  return graph;
}

void run(const std::string& library) {
  const auto libraries = host::LibrarySet::load({{library}, {library}});
  host::CollapseOptions options;
  options.functionName = "shadeMaterial";

  host::Job job(libraries, host::Document::from(translate(makeMaterial())), options);
  job.collapse();
  const host::Shader shader = job.assemble();
  for (const std::string& uniform : shader.uniforms) std::cout << "// uniform " << uniform << '\n';
  std::cout << shader.text;
  if (host::hasCompilers()) {
    std::cout << "// " << host::compileToSpirv(shader).size() << " words of SPIR-V\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: own_graph LIBRARY\n";
    return 2;
  }
  try {
    run(argv[1]);
    return 0;
  } catch (const host::CollapseError& error) {
    for (const host::Diagnostic& diagnostic : error.diagnostics()) std::cerr << diagnostic.text << '\n';
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
  }
  return 1;
}

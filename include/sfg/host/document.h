#pragma once

// Graphs and environments: as files, as text in memory, or as a host's own plain data.

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "sfg/host/export.h"

namespace TolmSDK::Graphics::sfg::host {

/// A value: a boolean, a number, or the components of a vector or a matrix row by row. Numbers are finite.
using Value = std::variant<bool, double, std::vector<double>>;

/// An input, output or uniform. All texts of this file are UTF-8.
struct Parameter {
  std::string name;
  std::string type;        ///< "float3", "fvec3", .., "sampler2D", "struct"
  std::string structName;  ///< with the type "struct"
  std::optional<Value> value;
  bool isConstant = false;
  std::string semantic;
};

/// An output of another node; an empty output is its first.
struct NodeOutput {
  std::string node;
  std::string output;
};

/// An input of the graph.
struct GraphInput {
  std::string name;
};

/// A value that is written into the code.
struct Constant {
  Value value;
};

/// What one input of a node takes: an output, a graph input, a uniform's default value, or a constant.
struct NodeInput {
  std::string name;
  std::variant<NodeOutput, GraphInput, Value, Constant> source;
};

/// A value in place of what a graph gives an input of a node, a wire too; written into the code.
struct NodeConstant {
  std::string node;
  std::string input;
  Value value;

  bool operator==(const NodeConstant&) const = default;
};

/// Ports of a node in place of those of its fragment's function; an inline fragment needs them.
struct NodeInterface {
  std::vector<Parameter> inputs;
  std::vector<Parameter> outputs;
};

/// A use of a library fragment. Inputs that are not named become uniforms.
struct Node {
  std::string name;
  std::string fragment;
  std::vector<NodeInput> inputs;
  std::optional<NodeInterface> ports;
};

/// An output of the graph and where it comes from.
struct GraphOutput {
  Parameter parameter;
  NodeOutput source;
};

/// A host's own graph. Nothing in it is checked until a job reads it.
struct Graph {
  std::vector<Parameter> inputs;
  std::vector<GraphOutput> outputs;
  std::vector<Parameter> uniforms;
  std::vector<Node> nodes;
  std::vector<std::string> preprocess;   ///< names of fragments
  std::vector<std::string> postprocess;  ///< names of fragments
};

/// A light of an environment; an empty name or profile is the document's default.
struct Light {
  std::string name;
  std::string fragment;
  std::string profile;
};

/// A host's own scene.
struct Environment {
  std::vector<Light> lights;
  std::string output;  ///< name of the output fragment; empty for none
  /// The picture around the scene: a file beside the document, `studio` or `sky`; empty for none. For who
  /// renders: no code is written for it.
  std::string image = {};
};

/// The graph or environment as a document (JSON, UTF-8), as `sfg collapse` reads it. Throws InputError for a
/// number that is not finite and for a node input given twice.
SFG_HOST_API std::string toJson(const Graph& graph);
SFG_HOST_API std::string toJson(const Environment& environment);

/// A graph or environment to read. Holds its text: what is done to a graph afterwards changes nothing here. A
/// value; used by any number of threads while nobody changes it.
class SFG_HOST_API Document {
public:
  /// A JSON file, read by the job.
  static Document fromFile(std::filesystem::path file);
  /// JSON text (UTF-8); diagnostics call it by `name`.
  static Document fromText(std::string text, std::string name);
  /// A graph or environment as it is now; diagnostics call it by `name`. Throws InputError as toJson() does.
  static Document from(const Graph& graph, std::string name = "graph");
  static Document from(const Environment& environment, std::string name = "environment");

  /// The file, or the name.
  const std::string& name() const noexcept { return name_; }
  bool isFile() const noexcept { return !text_; }
  /// Empty for a file.
  const std::optional<std::string>& text() const noexcept { return text_; }
  /// Whether lines and columns mean something to a person: not in a text made of a graph.
  bool hasPlaces() const noexcept { return hasPlaces_; }

private:
  Document(std::string name, std::optional<std::string> text, bool hasPlaces);

  std::string name_;
  std::optional<std::string> text_;
  bool hasPlaces_ = true;
};

/// What a document says of its environment; defaults stay empty. Throws InputError for a malformed one.
/// Whether its fragments are known, and what is odd in it, a job tells.
SFG_HOST_API Environment readEnvironment(const Document& document);

}  // namespace TolmSDK::Graphics::sfg::host

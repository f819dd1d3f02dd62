#pragma once

// Documents in a test, with the standard definitions and a fragment for each of them.

#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "import/definitions.h"
#include "import/graph_import.h"
#include "import/value_text.h"
#include "import/xml_reader.h"

namespace TolmSDK::Graphics::sfg::materialx {

class ImportFixture {
public:
  std::map<std::string, std::string> files;  ///< that exist besides the document
  std::vector<std::string> withoutFragment;  ///< nodes

  /// The whole import as text: a line for each node, then outputs, textures and what was told.
  std::string import(const std::string& document, const std::string& graph = "g") {
    const ImportedGraph imported = importPlain(document, graph);
    return textOf(imported) + textOf(told);
  }

  std::vector<host::Diagnostic> told;  ///< by the last import

  ImportedGraph importPlain(const std::string& document, const std::string& graph) {
    ElementTree tree;
    Reports reports;
    files["doc.mtlx"] = document;
    XmlReading reading;
    reading.textOf = [&](const std::filesystem::path& file) -> std::optional<std::string> {
      const auto found = files.find(file.lexically_normal().string());
      return found == files.end() ? std::nullopt : std::optional<std::string>(found->second);
    };
    readXml("doc.mtlx", reading, tree, reports);
    Definitions definitions(tree.root(), standard(), reports);
    GraphImportOptions options;
    options.fragments = [&](const std::string& name) { return portsOf(name); };
    options.hasFile = [&](const std::string& file) { return files.count(file) > 0; };
    options.sizeOf = [&](const std::string& file) { return pictureSizeIn(files.at(file)); };
    ImportedGraph imported =
        importGraph(tree.root(), outputsOf(tree.root(), graph), definitions, standard(), options, reports);
    told = reports.take();
    return imported;
  }

  static StandardDefinitions& standard() {
    static const std::shared_ptr<StandardDefinitions> known =
        StandardDefinitions::load(SFG_REPOSITORY "/library/materialx/definitions.json");
    return *known;
  }

private:
  static std::vector<WantedOutput> outputsOf(const Element& root, const std::string& graph) {
    std::vector<WantedOutput> outputs;
    for (const Element* const element : root.children) {
      if (element->name != graph) continue;
      for (const Element* const child : element->children) {
        if (child->category == "output" || child->name == "surfaceshader") {
          outputs.push_back({child->name, child});
        }
      }
    }
    return outputs;
  }

  const FragmentPorts* portsOf(const std::string& fragment) {
    const auto [entry, isNew] = ports_.try_emplace(fragment);
    if (isNew) entry->second = makePorts(fragment);
    return entry->second.get();
  }

  std::unique_ptr<FragmentPorts> makePorts(const std::string& fragment) {
    for (const std::string& node : standard().nodes()) {
      for (const Definition& definition : standard().of(node)) {
        if (definition.fragment != fragment) continue;
        for (const std::string& without : withoutFragment) {
          if (without == node) return nullptr;
        }
        auto ports = std::make_unique<FragmentPorts>();
        for (const DefinedPort& port : definition.inputs) {
          if (isPort(port)) ports->inputs.push_back({codeName(port.name), typeOf(port.type)});
        }
        for (const DefinedPort& port : definition.outputs) {
          ports->outputs.push_back({codeName(port.name), typeOf(port.type)});
        }
        if (node == "image") ports->inputs.push_back({"texels", "float2"});
        return ports;
      }
    }
    return nullptr;
  }

  static bool isPort(const DefinedPort& port) { return port.type != "string" || !port.names.empty(); }
  static std::string codeName(const std::string& name) {
    return name == "in" || name == "out" || name == "default" ? name + "_" : name;
  }
  static std::string typeOf(const std::string& type) {
    if (type == "string") return "int";
    if (type == "filename") return "sfg_sampler2D";
    const std::string_view known = shaderType(type);
    return known.empty() ? type : std::string(known);
  }

  static std::string textOf(const host::Value& value) {
    std::string text;
    for (const double number : numbersOf(value)) {
      std::ostringstream stream;
      stream << number;
      text += (text.empty() ? "" : " ") + stream.str();
    }
    return text;
  }

  static std::string textOf(const ImportedGraph& imported) {
    std::string text;
    for (const host::Parameter& input : imported.graph.inputs) {
      text += "input " + input.type + " " + input.name + "\n";
    }
    for (const host::Node& node : imported.graph.nodes) {
      text += node.name + ": " + node.fragment;
      for (const host::NodeInput& input : node.inputs) {
        text += " " + input.name + "=";
        if (const auto* const wire = std::get_if<host::NodeOutput>(&input.source)) {
          text += wire->node + "." + wire->output;
        } else if (const auto* const graphInput = std::get_if<host::GraphInput>(&input.source)) {
          text += "<" + graphInput->name + ">";
        } else {
          text += textOf(std::get<host::Constant>(input.source).value);
        }
      }
      text += "\n";
    }
    for (const host::GraphOutput& output : imported.graph.outputs) {
      text += "output " + output.parameter.type + " " + output.parameter.name + "=" + output.source.node +
              "." + output.source.output + "\n";
    }
    for (const ImportedTexture& texture : imported.textures) {
      text += "texture " + texture.node + "." + texture.input + "=" + texture.file +
              (texture.isMissing ? " missing" : "") + "\n";
    }
    return text;
  }

  static std::string textOf(const std::vector<host::Diagnostic>& diagnostics) {
    std::string text;
    for (const host::Diagnostic& diagnostic : diagnostics) {
      constexpr const char* kWords[] = {"error", "warning", "note", "message"};
      text += diagnostic.place() + ": " + kWords[static_cast<int>(diagnostic.severity)] + ": " +
              diagnostic.text + " [" + diagnostic.identifier + "]\n";
    }
    return text;
  }

  std::map<std::string, std::unique_ptr<FragmentPorts>> ports_;
};

}  // namespace TolmSDK::Graphics::sfg::materialx

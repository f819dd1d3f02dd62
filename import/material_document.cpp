#include "import/material_document.h"

#include <set>
#include <unordered_map>
#include <utility>

#include "import/definitions.h"
#include "import/value_text.h"
#include "import/xml_reader.h"
#include "sfg/host/errors.h"
#include "sfg/host/suggest.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::materialx {

namespace {

/// Ports of the fragments of a set, each read once.
class LibraryPorts {
public:
  explicit LibraryPorts(std::shared_ptr<const host::LibrarySet> libraries)
      : libraries_(std::move(libraries)) {}

  const FragmentPorts* find(const std::string& name) {
    const auto [entry, isNew] = ports_.try_emplace(name);
    if (isNew) {
      const IShaderFragment* const fragment = libraries_->library().acquireFragment(fromUtf8(name).c_str());
      if (fragment != nullptr && fragment->getNumProfiles() > 0) {
        entry->second = portsOf(*fragment->getProfile(0)->getFunctionParameters());
      }
    }
    return entry->second.get();
  }

private:
  static std::unique_ptr<FragmentPorts> portsOf(const ITextParameterList& parameters) {
    auto ports = std::make_unique<FragmentPorts>();
    for (std::size_t i = 0; i < parameters.getNumInputs(); ++i) {
      ports->inputs.push_back({toUtf8(parameters.getInputName(i)), toUtf8(parameters.getInputType(i))});
    }
    for (std::size_t i = 0; i < parameters.getNumOutputs(); ++i) {
      ports->outputs.push_back({toUtf8(parameters.getOutputName(i)), toUtf8(parameters.getOutputType(i))});
    }
    return ports;
  }

  std::shared_ptr<const host::LibrarySet> libraries_;
  std::unordered_map<std::string, std::unique_ptr<FragmentPorts>> ports_;
};

bool isMaterial(const Element& element) {
  return element.category == "surfacematerial" || element.attribute("type") == "material";
}

bool fileExists(const std::string& file) {
  std::error_code error;
  return std::filesystem::is_regular_file(file, error);
}

}  // namespace

struct MaterialDocument::State {
  State(std::filesystem::path documentFile, std::shared_ptr<const host::LibrarySet> set,
        std::shared_ptr<StandardDefinitions> known, const Options& options, const FileText& textOf)
      : file(std::move(documentFile)), ports(std::move(set)), standard(std::move(known)),
        folders(options.folders) {
    XmlReading reading{options.folders, textOf};
    if (!readXml(file, reading, tree, reports)) {
      throw host::InputError(file.string(), {}, "there is no such file", "unreadable-file");
    }
    definitions = std::make_unique<Definitions>(tree.root(), *standard, reports);
    readDiagnostics = reports.take();
  }

  std::filesystem::path file;
  LibraryPorts ports;
  std::shared_ptr<StandardDefinitions> standard;
  std::vector<std::filesystem::path> folders;
  Reports reports;
  ElementTree tree;
  std::unique_ptr<Definitions> definitions;
  std::vector<host::Diagnostic> readDiagnostics;
};

MaterialDocument::MaterialDocument(const std::filesystem::path& file,
                                   std::shared_ptr<const host::LibrarySet> libraries, const Options& options)
    : state_(std::make_unique<State>(file, libraries, findDefinitions(*libraries), options, readFromDisk())) {
}

MaterialDocument::MaterialDocument(const std::filesystem::path& file, std::string text,
                                   std::shared_ptr<const host::LibrarySet> libraries,
                                   std::shared_ptr<StandardDefinitions> standard, const Options& options) {
  const FileText disk = readFromDisk();
  const FileText textOf = [&](const std::filesystem::path& wanted) -> std::optional<std::string> {
    return wanted == file ? text : disk(wanted);
  };
  state_ = std::make_unique<State>(file, std::move(libraries), std::move(standard), options, textOf);
}

MaterialDocument::~MaterialDocument() = default;

const std::vector<host::Diagnostic>& MaterialDocument::diagnostics() const { return state_->readDiagnostics; }

std::vector<std::string> MaterialDocument::files() const {
  std::vector<std::string> names;
  for (const SourceFile& file : state_->tree.files()) {
    if (!file.name.empty()) names.push_back(file.name);
  }
  return names;
}

std::vector<MaterialName> MaterialDocument::materials() const {
  std::vector<MaterialName> names;
  for (const Element* const element : state_->tree.root().children) {
    if (isMaterial(*element)) names.push_back({element->name, true});
  }
  if (!names.empty()) return names;
  for (const Element* const element : state_->tree.root().children) {
    if (element->category == "output") names.push_back({element->name, false});
    if (element->category != "nodegraph" || element->has("nodedef")) continue;
    for (const Element* const child : element->children) {
      if (child->category == "output") names.push_back({element->name + "/" + child->name, false});
    }
  }
  return names;
}

std::vector<MaterialAssignment> MaterialDocument::assignments() const {
  std::vector<MaterialAssignment> all;
  for (const Element* const look : state_->tree.root().children) {
    if (look->category != "look") continue;
    for (const Element* const child : look->children) {
      if (child->category != "materialassign") continue;
      std::string geometry(child->attribute("geom"));
      if (geometry.empty()) geometry = child->attribute("collection");
      all.push_back({look->name, std::move(geometry), std::string(child->attribute("material"))});
    }
  }
  return all;
}

namespace {

/// What an input of a material means for the graph.
void addMaterial(const Element& material, std::vector<WantedOutput>& outputs, Reports& reports) {
  for (const Element* const child : material.children) {
    if (child->category != "input") continue;
    if (child->name == "surfaceshader") {
      outputs.push_back({child->name, child});
    } else {
      reports.warning(*child, "`" + child->name + "` of a material is not brought", "cannot-import");
    }
  }
}

void addOutputs(const Element& graph, std::vector<WantedOutput>& outputs) {
  for (const Element* const child : graph.children) {
    if (child->category == "output") outputs.push_back({child->name, child});
  }
}

std::vector<WantedOutput> outputsOf(const Element& root, const std::string& name, Reports& reports) {
  std::vector<WantedOutput> outputs;
  const std::size_t slash = name.find('/');
  for (const Element* const element : root.children) {
    if (slash == std::string::npos && element->name == name) {
      if (isMaterial(*element)) addMaterial(*element, outputs, reports);
      if (element->category == "nodegraph") addOutputs(*element, outputs);
      if (element->category == "output") outputs.push_back({element->name, element});
    } else if (element->category == "nodegraph" && element->name == name.substr(0, slash)) {
      const Element* const output = element->child("output", name.substr(slash + 1));
      if (output != nullptr) outputs.push_back({output->name, output});
    }
  }
  return outputs;
}

/// What is listed under that name, or null.
const Element* elementCalled(const Element& root, const std::string& name,
                             const std::vector<std::string>& listed) {
  if (std::find(listed.begin(), listed.end(), name) == listed.end()) return nullptr;
  for (const Element* const child : root.children) {
    if (child->name == name) return child;
  }
  return nullptr;
}

}  // namespace

ImportedMaterial MaterialDocument::import(const std::string& name) {
  const std::vector<MaterialName> known = materials();
  std::vector<std::string> names;
  for (const MaterialName& material : known) names.push_back(material.name);
  ImportedMaterial imported;
  imported.name = name;
  if (name.empty()) {
    if (known.size() != 1) {
      std::string text = known.empty() ? "there is no material" : "there are several materials";
      for (std::size_t i = 0; i < known.size() && i < 12; ++i) {
        text.append(i == 0 ? ": `" : ", `").append(names[i]).append("`");
      }
      throw host::InputError(state_->file.string(), {}, text, "unknown-material");
    }
    imported.name = names.front();
  }
  const std::vector<WantedOutput> outputs = outputsOf(state_->tree.root(), imported.name, state_->reports);
  if (outputs.empty()) {
    if (const Element* const element = elementCalled(state_->tree.root(), imported.name, names)) {
      std::size_t line = 0;
      std::size_t column = 0;
      if (element->file != nullptr) element->file->locate(element->offset, line, column);
      throw host::InputError(state_->file.string(), {line, column},
                             "`" + imported.name + "` has no surface to bring", "cannot-import");
    }
    host::InputError error(state_->file.string(), {},
                           "there is no material `" + imported.name + "`" +
                               (host::suggest(imported.name, names).empty()
                                    ? std::string()
                                    : "; did you mean `" + host::suggest(imported.name, names) + "`?"),
                           "unknown-material");
    error.setSuggestion(host::suggest(imported.name, names));
    throw error;
  }
  GraphImportOptions options;
  options.fragments = [&](const std::string& fragment) { return state_->ports.find(fragment); };
  options.hasFile = fileExists;
  options.sizeOf = [](const std::string& file) { return pictureSizeOf(file); };
  for (const std::filesystem::path& folder : state_->folders) options.folders.push_back(folder.string());
  ImportedGraph graph = importGraph(state_->tree.root(), outputs, *state_->definitions, *state_->standard,
                                    options, state_->reports);
  imported.graph = std::move(graph.graph);
  imported.textures = std::move(graph.textures);
  imported.isLit = graph.isLit;
  imported.diagnostics = state_->reports.take();
  return imported;
}

std::filesystem::path definitionsFile(const host::LibrarySet& libraries) {
  for (const std::filesystem::path& folder : libraries.folders().libraries) {
    const std::filesystem::path file = folder / "definitions.json";
    std::error_code error;
    if (std::filesystem::is_regular_file(file, error)) return file;
  }
  throw host::InputError("no folder of the libraries has the definitions of MaterialX nodes "
                         "(`library/materialx`)");
}

std::shared_ptr<StandardDefinitions> findDefinitions(const host::LibrarySet& libraries) {
  return StandardDefinitions::load(definitionsFile(libraries));
}

}  // namespace TolmSDK::Graphics::sfg::materialx

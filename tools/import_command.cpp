#include <filesystem>
#include <set>

#include "import/material_document.h"
#include "sfg/host/errors.h"
#include "tools/command.h"
#include "tools/material_graph.h"
#include "tools/output_file.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr const char* kImportNotes =
    "Example:\n\n"
    "  sfg import chess.mtlx -o materials\n"
    "  sfg import chess.mtlx --material M_Queen_W\n\n"
    "Each material becomes a graph document of fragments, `NAME.json`, and `NAME.textures.json` says which "
    "file belongs\n"
    "to which input. What cannot be brought is told at its line. A document without materials has node "
    "graphs, which\n"
    "are brought with all their outputs.\n\n"
    "Exit status: 0 done; 1 something of the document is wrong, the rest was brought; 2 wrong usage or "
    "unreadable input.\n";

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    if (static_cast<unsigned char>(c) < 0x20) {
      constexpr const char* kDigits = "0123456789abcdef";
      result += "\\u00";
      result += kDigits[static_cast<unsigned char>(c) >> 4];
      result += kDigits[static_cast<unsigned char>(c) & 15];
    } else {
      result += c;
    }
  }
  return result + "\"";
}

/// What the inputs of a graph read, as JSON.
std::string texturesJson(const std::vector<materialx::ImportedTexture>& textures) {
  std::string text = "[";
  for (const materialx::ImportedTexture& texture : textures) {
    text += text.size() == 1 ? "\n" : ",\n";
    text += "  { \"input\": " + quoted(texture.node + "." + texture.input);
    text += ", \"file\": " + quoted(texture.file);
    if (texture.isMissing) text += ", \"missing\": true";
    text += " }";
  }
  return text + (textures.empty() ? "]\n" : "\n]\n");
}

/// A material's name as that of a file.
std::string fileNameOf(const std::string& name) {
  std::string result = name;
  for (char& c : result) {
    if (c == '/' || c == ':' || c == '\\') c = '.';
  }
  return result.empty() || result == "." || result == ".." ? "material" : result;
}

class ImportCommand : public Command {
public:
  explicit ImportCommand(CLI::App& parent)
      : Command(*parent.add_subcommand("import", "Bring the materials of a MaterialX document as graphs")) {
    app().add_option("FILE", file_, "MaterialX document (*.mtlx)")->type_name("FILE")->required();
    app()
        .add_option("-o,--output", folder_, "folder for the graph documents")
        ->type_name("DIR")
        ->default_str("standard output");
    declareMaterialOption(app(), material_);
    declareLibraryOptions(app(), libraries_);
    app().footer(kImportNotes);
  }

  int run(Diagnostics& diagnostics) override {
    const auto libraries = loadMaterialLibraries(libraries_, diagnostics);
    materialx::MaterialDocument document(file_, libraries, {});
    tell(document.diagnostics(), diagnostics);
    for (const std::string& name : wanted(document)) {
      const materialx::ImportedMaterial material = document.import(name);
      tell(material.diagnostics, diagnostics);
      write(material, diagnostics);
    }
    return hasErrors_ ? kRefused : kDone;
  }

private:
  std::vector<std::string> wanted(const materialx::MaterialDocument& document) const {
    if (!material_.empty() || folder_.empty()) return {material_};
    std::vector<std::string> names;
    for (const materialx::MaterialName& material : document.materials()) names.push_back(material.name);
    if (names.empty()) names.emplace_back();  // which import() refuses
    return names;
  }

  void tell(const std::vector<host::Diagnostic>& found, Diagnostics& diagnostics) {
    diagnostics.show(found);
    for (const host::Diagnostic& diagnostic : found) {
      hasErrors_ = hasErrors_ || diagnostic.severity == host::Severity::error;
    }
  }

  void write(const materialx::ImportedMaterial& material, Diagnostics& diagnostics) {
    const std::string graph = host::toJson(material.graph);
    if (folder_.empty()) return writeOutput({}, graph);
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    const std::filesystem::path path = std::filesystem::path(folder_) / fileNameOf(material.name);
    writeOutput(path.string() + ".json", graph);
    writeOutput(path.string() + ".textures.json", texturesJson(material.textures));
    diagnostics.note(path.string() + ".json", "written", "file-written");
  }

  std::string file_;
  std::string folder_;
  std::string material_;
  LibraryOptions libraries_;
  bool hasErrors_ = false;
};

}  // namespace

std::unique_ptr<Command> makeImportCommand(CLI::App& parent) {
  return std::make_unique<ImportCommand>(parent);
}

}  // namespace TolmSDK::Graphics::sfg::tools

#include "tools/check_materials.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "import/material_document.h"
#include "import/xml_reader.h"
#include "sfg/host/errors.h"
#include "sfg/host/job.h"
#include "tools/material_graph.h"

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

class MaterialChecker {
public:
  explicit MaterialChecker(std::shared_ptr<const host::LibrarySet> libraries)
      : libraries_(std::move(libraries)), standard_(materialx::findDefinitions(*libraries_)) {}

  void check(const std::string& file) try {
    ++found_.documents;
    const std::optional<std::string> text = materialx::readFromDisk()(file);
    if (!text) throw host::InputError(file, {}, "it cannot be read", "unreadable-file");
    materialx::MaterialDocument document(file, *text, libraries_, standard_, {});
    tell(document.diagnostics());
    for (const materialx::MaterialName& material : document.materials()) {
      ++found_.materials;
      checkMaterial(file, document.import(material.name));
    }
  } catch (const host::InputError& error) {
    tell({error.diagnostic()});
  }

  MaterialCheck take() { return std::move(found_); }

private:
  /// A material of which nothing could be brought was told of before.
  void checkMaterial(const std::string& file, const materialx::ImportedMaterial& material) {
    tell(material.diagnostics);
    if (material.graph.outputs.empty()) return;
    try {
      host::CollapseOptions options;
      if (material.isLit) options.tool = host::CollapseTool::lightLoop;
      host::Job job(libraries_, host::Document::from(material.graph, file), options);
      job.collapse();
      (void)job.assemble();
    } catch (const host::InputError& error) {
      tellFailure(file, material.name, error.what());
    } catch (const host::CollapseError& error) {
      tellFailure(file, material.name, error.what());
    } catch (const host::AssemblyError& error) {
      tellFailure(file, material.name, error.what());
    }
  }

  void tellFailure(const std::string& file, const std::string& material, const std::string& why) {
    host::Diagnostic diagnostic;
    diagnostic.file = file;
    diagnostic.text = "`" + material + "` makes no shader: ";
    diagnostic.text.append(why);
    diagnostic.identifier = "failure";
    tell({diagnostic});
  }

  void tell(const std::vector<host::Diagnostic>& diagnostics) {
    for (const host::Diagnostic& diagnostic : diagnostics) {
      const bool isNew =
          told_.emplace(diagnostic.file, diagnostic.line, diagnostic.column, diagnostic.text).second;
      if (isNew) found_.diagnostics.push_back(diagnostic);
    }
  }

  std::shared_ptr<const host::LibrarySet> libraries_;
  std::shared_ptr<materialx::StandardDefinitions> standard_;
  MaterialCheck found_;
  std::set<std::tuple<std::string, std::size_t, std::size_t, std::string>> told_;
};

/// Folders that are links are passed over, as they are for other documents.
void addDocumentsOf(const std::string& folder, std::set<std::string>& files) {
  std::error_code error;
  fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
  for (const fs::recursive_directory_iterator end; !error && entry != end; entry.increment(error)) {
    const std::string path = entry->path().string();
    std::error_code ignored;
    if (isMaterialDocument(path) && entry->is_regular_file(ignored)) files.insert(path);
  }
}

}  // namespace

std::vector<std::string> takeMaterialDocuments(std::vector<std::string>& paths) {
  std::set<std::string> files;
  std::vector<std::string> others;
  for (const std::string& path : paths) {
    std::error_code error;
    const bool isFolder = fs::is_directory(path, error);
    if (!isFolder && isMaterialDocument(path)) {
      files.insert(path);
      continue;
    }
    if (isFolder) addDocumentsOf(path, files);
    others.push_back(path);
  }
  paths = std::move(others);
  return {files.begin(), files.end()};
}

MaterialCheck checkMaterials(const std::vector<std::string>& files,
                             const std::shared_ptr<const host::LibrarySet>& libraries) {
  MaterialChecker checker(libraries);
  for (const std::string& file : files) checker.check(file);
  return checker.take();
}

}  // namespace TolmSDK::Graphics::sfg::tools

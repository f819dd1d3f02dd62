#pragma once

// Where fragments and include files are looked for, and what is there.

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "sfg/host/check.h"
#include "tools/lsp/catalog.h"
#include "tools/lsp/documents.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// What the command line, the editor's settings or its first message give; paths relative to the workspace.
struct Settings {
  std::vector<std::string> libraryFolders;
  std::vector<std::string> includeFolders;
  std::string language = "dx11";
  bool withoutStandard = false;
  /// What lights the graphs; empty without one.
  std::string environment;
};

/// The settings with what the object gives in their place: "libraries", "includes", "language",
/// "environment", "standardLibrary".
Settings withOptions(Settings settings, const Json& options);

/// The libraries, with what an editor has not saved. Loaded when they are asked for.
class Workspace {
public:
  /// Refers to the documents, which live as long as this.
  Workspace(Settings settings, const OpenDocuments& documents);

  const Settings& settings() const noexcept { return settings_; }
  void setSettings(Settings settings);
  void setRoots(std::vector<std::filesystem::path> roots);
  const std::vector<std::filesystem::path>& roots() const noexcept { return roots_; }
  /// An open library is another now.
  void invalidate();
  /// So may be what is on the disk, and which libraries are open.
  void invalidateFolders();

  /// Those that are named, or else those of the workspace that hold libraries and include files; those of
  /// open libraries; the standard one.
  const host::LibraryFolders& folders();
  /// The environment's path; empty without one.
  std::filesystem::path environment() const;
  /// Of open libraries it has what was last well-formed, so that half a document does not take its fragments
  /// away. Null when a folder is not there: problem() says which.
  const Catalog* catalog();
  /// Over the same libraries; null likewise.
  std::shared_ptr<const host::Checker> checker();
  const std::string& problem() const noexcept { return problem_; }

  /// The text of a file: that of an editor, or the saved one; null for one that cannot be read. Valid until
  /// something is invalidated.
  const ScannedText* textOf(const std::string& file);
  /// A file as it is spelled under the folders.
  std::string pathInFolders(const std::string& file);
  /// Null for a file that is not open.
  const OpenDocument* findOpen(const std::string& file) const;

private:
  std::filesystem::path base() const;
  void findFolders();
  void load();

  Settings settings_;
  const OpenDocuments& documents_;
  std::vector<std::filesystem::path> roots_;
  std::optional<host::LibraryFolders> folders_;
  std::map<std::string, std::string> texts_;
  std::map<std::string, std::unique_ptr<ScannedText>> files_;
  std::shared_ptr<host::CheckCache> cache_ = std::make_shared<host::CheckCache>();
  std::shared_ptr<const host::Checker> checker_;
  std::unique_ptr<Catalog> catalog_;
  std::string problem_;
  bool isLoaded_ = false;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

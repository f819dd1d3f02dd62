#pragma once

// Libraries, graphs and environments checked for mistakes, whether anybody uses them or not.

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"
#include "sfg/host/export.h"
#include "sfg/host/job.h"
#include "sfg/host/library_set.h"
#include "sfg/host/schema.h"

namespace TolmSDK::Graphics::sfg::host {

/// What earlier checks found out: what compilers said of a text, by its hash, and what was found in a library
/// that has not changed. Any number of threads and checkers may share one. Of more than `capacity` texts the
/// oldest are forgotten.
class SFG_HOST_API CheckCache {
public:
  explicit CheckCache(std::size_t capacity = 4096);
  CheckCache(const CheckCache&) = delete;
  CheckCache& operator=(const CheckCache&) = delete;
  ~CheckCache();

  /// How many texts were compiled so far.
  std::size_t compiledTexts() const;

  /// For this library's own use.
  class SFG_HOST_LOCAL Impl;
  Impl& impl() const noexcept { return *impl_; }

private:
  std::unique_ptr<Impl> impl_;
};

struct CheckOptions {
  /// What documents may use, and what checked libraries lie in.
  LibraryFolders folders;
  std::string language = "dx11";
  /// Texts (UTF-8) in place of library files, by the files' paths as they are under `folders`: of files that
  /// are open in an editor.
  std::map<std::string, std::string> texts;
  /// What lights the graphs; without it, lights of the libraries do.
  std::optional<Document> environment;
  /// The only tool for graphs; without it, those that a graph is meant for.
  std::optional<CollapseTool> tool;
  /// Whether to compile at all. A library without compilers never does.
  bool compiles = true;
  /// Null: one of the checker's own.
  std::shared_ptr<CheckCache> cache;
};

/// How much was looked at.
struct CheckCounts {
  std::size_t fragments = 0;
  std::size_t profiles = 0;
  std::size_t graphs = 0;
  std::size_t environments = 0;
};

/// What was found, in the order of files, lines and columns; behind each finding the notes that belong to it.
/// Each cause is told once, at the character that holds it.
struct CheckResult {
  std::vector<Diagnostic> diagnostics;
  CheckCounts counts;
};

/// Checks documents over libraries that it loads when it is made. Immutable; any number of threads may check
/// at once. Findings are data: nothing but what keeps the folders from being read is thrown.
///
/// What is an oddity to a job is an error here where nobody can have meant it: a key that no reader knows.
class SFG_HOST_API Checker {
public:
  /// Loads the libraries. Throws InputError for a folder that is not there and for an unknown language.
  explicit Checker(CheckOptions options);
  Checker(Checker&& other) noexcept;
  Checker& operator=(Checker&& other) noexcept;
  ~Checker();

  /// What was loaded: with the texts in place of files. Lives as long as it is held.
  const std::shared_ptr<const LibrarySet>& libraries() const noexcept;
  /// The library files of the folders, in the order in which they were loaded.
  std::vector<std::string> libraryFiles() const;

  /// A library file of the folders: what loading told of it, and every profile of its fragments for the
  /// language, compiled alone. Inputs that the code asks sfg_isConnected() of are connected one by one, all
  /// together, and not at all. A profile that no light can be had for is told in a note.
  CheckResult checkLibrary(const std::string& file) const;
  /// A graph: read, its wires' types checked, collapsed by the tools it is meant for, assembled as a pixel
  /// stage and compiled; with everything that a job warns of.
  CheckResult checkGraph(const Document& graph) const;
  /// An environment: read, its lights' profiles looked for, and compiled with a small lit graph.
  CheckResult checkEnvironment(const Document& environment) const;

  /// Several at once, in `threads` threads; the result is the same for any number of them. `onProgress` is
  /// told how many of how many steps are done, by one thread at a time.
  struct Files {
    std::vector<std::string> libraries;  ///< of the folders
    std::vector<std::string> graphs;
    std::vector<std::string> environments;
  };
  using OnProgress = std::function<void(std::size_t done, std::size_t all)>;
  CheckResult check(const Files& files, std::size_t threads = 1, const OnProgress& onProgress = {}) const;

  /// For this library's own use.
  struct SFG_HOST_LOCAL State;

private:
  std::unique_ptr<const State> state_;
};

/// What kind of document it is, told by a library's file name and by the keys of the others, mistyped ones
/// too; nothing for JSON of another kind, for what is no JSON, and for a file that cannot be read.
SFG_HOST_API std::optional<DocumentKind> documentKindOf(const Document& document);

/// What lies at some paths.
struct CheckPaths {
  Checker::Files files;
  LibraryFolders folders;  ///< of the libraries that were found, and of include files beside them
  /// What is named like a document and cannot be one: a link to nothing, a device, a file that cannot be
  /// read, a file that is named and is of no kind.
  std::vector<Diagnostic> problems;
};
/// Files are taken as they are, folders with all that lies in them, in the order of paths. Links to folders
/// are not followed. Throws InputError for a path that does not exist.
SFG_HOST_API CheckPaths findCheckPaths(std::span<const std::string> paths);

/// The result with these findings at their places among the others.
SFG_HOST_API CheckResult withProblems(CheckResult result, std::span<const Diagnostic> problems);

/// The result as JSON: documented in docs/manual.md.
SFG_HOST_API std::string toJson(const CheckResult& result);
/// The result as SARIF 2.1.0, with all kinds of diagnostics as its rules.
SFG_HOST_API std::string toSarif(const CheckResult& result);

}  // namespace TolmSDK::Graphics::sfg::host

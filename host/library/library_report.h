#pragma once

// What is wrong in library files, told once and where it was made.

#include <string>
#include <vector>

#include "host/documents/diagnostic_kinds.h"
#include "host/documents/key_check.h"
#include "host/library/fragment_files.h"
#include "sfg/fragment_library.h"
#include "sfg/host/diagnostic.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// Told of what loading meets, in its order; tells what a person should know of it.
class LibraryReport {
public:
  /// `files` holds the fragments of the files before.
  explicit LibraryReport(const FragmentFiles& files) : files_(files) {}

  /// Fragments of a standard folder are meant to be replaced.
  void startFolder(bool isStandard) {
    if (isStandard_) standardFiles_.merge(folderFiles_);
    folderFiles_.clear();
    isStandard_ = isStandard;
  }
  void startFile(const WString& file);
  /// In front of files_.addFragment().
  void addFragment(const WString& name, const IObjectDataNode& object);
  /// Of the fragment that was added last.
  void addPortProblem(Finding kind, TextPosition position, const std::string& text) {
    tell(kind, Severity::warning, position, text);
  }
  /// Of the fragment that was added last: it loads, but no shader can be made of it.
  void addFault(Finding kind, TextPosition position, const std::string& text);
  void addFailure(const FragmentLoadFailure& failure);
  /// Something of a library's name that is no file.
  void addNoFile(const std::string& path, const std::string& fault);

  /// In the order of files, in each in the order of its text.
  std::vector<Diagnostic> take();
  /// The fragments that no file holds in a form that loads, with their failures.
  const Map<WString, Diagnostic>& failures() const noexcept { return failures_; }
  /// The fragments that load, but of which no shader can be made.
  const Map<WString, Diagnostic>& faults() const noexcept { return faults_; }
  /// Whether a file could not be read at all.
  bool lacksFile() const noexcept { return lacksFile_; }

private:
  void finishFile();
  void tell(Finding kind, Severity severity, TextPosition position, std::string text,
            std::string suggestion = {});
  void tellRepeatedMembers(const IObjectDataNode& object);
  void tellEarlierDefinition(const WString& name, const IObjectDataNode& object);
  void tellProfile(const IObjectDataNode& profile);
  void tellNamelessIncludes(const IObjectDataNode& profile);
  void tellPlaceholders(const IObjectDataNode& code);
  void tellStatement(const IObjectDataNode& code);
  void tellPrototype(const IObjectDataNode& profile);
  void tellIgnoredKeys(const IObjectDataNode& object);
  Diagnostic describe(const FragmentLoadFailure& failure);
  Diagnostic describeMissing(const FragmentLoadFailure& failure, const IObjectDataNode& profile,
                             std::wstring_view key);

  const FragmentFiles& files_;
  Set<std::string> folderFiles_;
  Set<std::string> standardFiles_;
  bool isStandard_ = false;
  std::string file_;
  WString fragment_;                     ///< the last one's name
  bool isFirst_ = true;                  ///< whether the file has shown no fragment yet
  std::vector<UnknownKey> unknownKeys_;  ///< of the last fragment
  std::size_t fileStart_ = 0;            ///< among the problems: the first of this file
  std::size_t fragmentStart_ = 0;        ///< and of the last fragment
  std::vector<Diagnostic> problems_;
  Map<WString, Diagnostic> failures_;
  Map<WString, Diagnostic> faults_;
  bool lacksFile_ = false;
};

}  // namespace TolmSDK::Graphics::sfg::host

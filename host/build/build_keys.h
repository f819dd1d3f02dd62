#pragma once

// Hashes of what results follow from.

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/build.h"
#include "sfg/host/library_set.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Gathers parts; equal hashes, equal parts in equal order.
class KeyText {
public:
  KeyText& add(std::string_view part);
  std::string hash() const;

private:
  std::string text_;
};

/// Everything of a task that decides what its graph is collapsed to, apart from contents of files.
std::string collapseText(const BuildTask& task, const std::string& language);
/// Everything else of it that decides what its output is, apart from the output's name.
std::string outputText(const BuildTask& task);
/// What compilers make of a text follows from these of a task: the stage is the text's.
std::string moduleText(const CompileOptions& options);
std::string translationText(ShaderTarget target, const CompileOptions& options);
/// Versions of the generator, of this library and its platform, of the compilers, and of these keys.
const std::string& versionsText();

/// What graph and environment reach in the libraries.
struct Reached {
  std::string hash;
  std::vector<std::string> files;  ///< library files and include files, by name
};

/// The fragments that documents name, with their include files, over loaded libraries. Any number of threads
/// may use it.
class LibraryKeys {
public:
  explicit LibraryKeys(std::shared_ptr<const LibrarySet> libraries) : libraries_(std::move(libraries)) {}

  /// Of the texts of a graph and an environment. Documents that cannot be read reach nothing.
  Reached reached(std::string_view graph, std::string_view environment) const;

private:
  struct Part {
    std::string hash;
    std::vector<std::string> files;
  };
  const Part& fragment(const WString& name) const;
  Part makePart(const WString& name) const;
  const std::string& fragmentText(const WString& name, const std::string& file) const;
  void addIncludes(KeyText& key, std::vector<std::string>& files, const Set<WString>& names) const;

  std::shared_ptr<const LibrarySet> libraries_;
  mutable std::mutex mutex_;
  mutable Map<WString, Part> parts_;
  mutable std::set<std::string> readFiles_;
  mutable Map<WString, std::string> texts_;  // hashes of the fragments' own texts
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Fragments and their profiles as their library files spell them.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/library/loaded_libraries.h"
#include "host/lints/code_parameters.h"
#include "host/lints/plain_code.h"
#include "host/origins/fragment_code.h"
#include "sfg/shader_fragment_profile.h"

namespace TolmSDK::Graphics::sfg::host {

/// One text of a profile.
struct LintedCode {
  std::unique_ptr<FragmentCode> spelled;  ///< null without one
  PlainCode plain;

  /// The place of a token of the plain code in the file.
  TextPosition placeOf(const CodeToken& token) const { return spelled->placeOf(token.begin); }
};

struct LintedProfile {
  const IObjectDataNode* object = nullptr;
  EShaderFragmentProfileMode mode = EShaderFragmentProfileMode::Function;
  std::string name;  ///< "default" when the file gives none
  double lod = 100.0;
  std::vector<std::string> languages;
  LintedCode predefine;
  LintedCode implementation;
  /// Of a function: the parameters, and its body, without the braces, as tokens of the implementation.
  std::vector<CodeParameter> parameters;
  std::size_t bodyBegin = 0;
  std::size_t bodyEnd = 0;

  bool isInline() const { return mode == EShaderFragmentProfileMode::Inline; }
};

struct LintedFragment {
  WString name;
  const IObjectDataNode* object = nullptr;
  std::vector<LintedProfile> profiles;
};

/// A library file. Not copied or moved: its fragments refer to it.
struct LintedFile {
  LintedFile(const LoadedLibraries& libraries, const std::string& file);
  LintedFile(const LintedFile&) = delete;
  LintedFile& operator=(const LintedFile&) = delete;

  std::string name;
  JsonPlaces places;
  RefPtr<IObjectDataNode> document;
  /// Those that are loaded from this file and count, in the order of the file.
  std::vector<LintedFragment> fragments;
};

}  // namespace TolmSDK::Graphics::sfg::host

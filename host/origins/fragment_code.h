#pragma once

// The code of fragments as their library files spell it.

#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "host/library/loaded_libraries.h"
#include "host/origins/code_tokens.h"
#include "host/origins/json_places.h"

namespace TolmSDK::Graphics::sfg::host {

/// Which code of a profile.
enum class CodePart { predefine, implementation };

/// The lines of one "implementation" or "predefine", a line feed behind each.
struct FragmentCode {
  WString text;
  CodeTokens tokens;
  const std::string* file = nullptr;
  const JsonPlaces* places = nullptr;
  /// Where each element begins in the text, and its string in the file.
  std::vector<std::size_t> starts;
  std::vector<TextPosition> literals;
  TextPosition profile;   ///< of the profile's object
  TextPosition fragment;  ///< of the fragment's object

  TextPosition placeOf(std::size_t offset) const;
};

/// The objects that a fragment's profiles are loaded from, in order.
std::vector<const IObjectDataNode*> profileObjects(const IObjectDataNode& fragment);

/// The code of a profile's object, and its file's name and places, which live longer; null without that part.
std::unique_ptr<FragmentCode> readCode(const IObjectDataNode& fragment, const IObjectDataNode& profile,
                                       CodePart part, const std::string& file, const JsonPlaces& places);

/// Reads the kept texts of library files again, each once for all that ask. Used by one thread.
class FragmentCodes {
public:
  explicit FragmentCodes(const LoadedLibraries& libraries) : libraries_(libraries) {}

  /// The code of profile `index` of a fragment; null when no file holds it. Lives as long as this.
  const FragmentCode* find(const WString& fragment, std::size_t index, CodePart part);

private:
  struct File;
  const File* fileOf(const std::string& name);
  std::unique_ptr<FragmentCode> read(const WString& fragment, std::size_t index, CodePart part);

  const LoadedLibraries& libraries_;
  std::map<std::string, std::shared_ptr<const File>> files_;
  std::map<std::tuple<WString, std::size_t, CodePart>, std::unique_ptr<FragmentCode>> codes_;
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Where a host keeps the fragments it can use.

#include <functional>
#include <string_view>

#include "sfg/export.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/resource_library.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class ShaderIncludes;

/// Something that cannot be loaded. Refers to what is there during the call only.
struct FragmentLoadFailure {
  const WString& file;
  const WString* fragment = nullptr;        ///< null for a file that is no library
  const IObjectDataNode* object = nullptr;  ///< the fragment's
  std::wstring_view part;                   ///< "profile 1 (line 3, column 7)", or empty
  std::wstring_view reason;
};

/// What loading a folder uses, and whom it tells what it meets.
struct FragmentLoading {
  /// Include files for the fragments' hashes; null for the process's registry.
  ShaderIncludes* includes = nullptr;
  /// The text in place of a library file's, or null: of a file that is open in an editor. It outlives the
  /// call.
  std::function<const WString*(const WString& file)> textOf;
  /// Each library file, before it is read.
  std::function<void(const WString& file)> onFile;
  /// Each fragment object of a file, before it is loaded, whether it loads or not.
  std::function<void(const WString& file, const WString& name, const IObjectDataNode& object)> onFragment;
  /// Whether the object of that name is a fragment; without it each is.
  std::function<bool(const WString& name)> isFragment;
  /// Each fragment that did load, with its object, once the library has it.
  std::function<void(const IObjectDataNode& object, const IShaderFragment& fragment)> onLoaded;
  /// Each line about what is passed over; without it the lines go to the debug log.
  std::function<void(std::wstring_view line)> onProblem;
  /// In place of those lines: what is passed over, as data.
  std::function<void(const FragmentLoadFailure& failure)> onFailure;
};

/// Fragments by name. Filled by one thread; then read by any number. Graphs hold clones, never these.
class SFG_API FragmentLibrary : public ResourceLibrary {
public:
  FragmentLibrary();
  ~FragmentLibrary();

  /// Loads every "fraglib" file (any case) directly in the folder. A bad file or fragment never stops the
  /// others; the debug log names file, fragment, place and reason. Always true.
  bool loadFragments(const wchar_t* folder);
  /// The same; what the functions of `loading` throw passes through.
  bool loadFragments(const wchar_t* folder, const FragmentLoading& loading);
  /// Loads a library that is in memory; `name` stands for its file.
  void loadText(const WString& name, std::wstring_view text, const FragmentLoading& loading);
  /// Creates and registers a fragment with one MetaSL profile ("default", "dx11", level of detail 100).
  /// Options: "include:NAME", "predefine:TEXT" and "nonconsolidatable"; any other is ignored. Always true;
  /// the exceptions of a malformed prototype pass through.
  bool addFragment(const wchar_t* name, const wchar_t* prototype, const wchar_t* body,
                   const wchar_t* const* options, int numOptions);
  /// The fragment of that name, or null. Adds no reference.
  const IShaderFragment* acquireFragment(const wchar_t* name) const;
};

}  // namespace TolmSDK::Graphics::sfg

#pragma once

// Temporaries: the variables that take the outputs which a use of a shader function (sfg_shader) does not
// name. Every call that replaces a use declares its own, so that two uses in one block of braces would
// declare the same name twice. They are numbered when the text that the calls stand in is complete.

#include <cstddef>
#include <string_view>

#include "sfg/fragment_profile_instance.h"
#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// The text that replaces one use: a declaration of each temporary, one a line, then the call.
struct ShaderCallText {
  struct Temporary {
    WString name;
    std::size_t last = 0;  ///< place of the name's last character in its declaration
  };

  /// Appends the declaration of a temporary.
  void declare(std::wstring_view type, const WString& name) {
    text += type;
    text += L' ';
    text += name;
    temporaries.push_back({name, text.size() - 1});
    text += L";\n";
  }

  WString text;
  Array<Temporary> temporaries;
};

/// A place at which a text names a temporary.
struct TemporaryPlace {
  std::size_t last = 0;  ///< of the name's last character
  std::size_t name = 0;  ///< number of the name among those of one caller
  bool isDeclaration = false;
};

/// The text of a caller, with its temporaries in the order in which it names them.
struct CallerText {
  /// Appends a part of another caller's text, and what it names.
  void append(const CallerText& from, std::wstring_view part);
  /// Drops what stands behind the first `length` characters.
  void cut(std::size_t length);

  WString code;
  Array<TemporaryPlace> places;
};

/// What the calls in the shader replace pattern of one caller are made of.
class ShaderTemporaries {
public:
  bool empty() const noexcept { return calls_.empty(); }

  /// Records the text that replaces a use, instead of what was recorded for the same use before. A temporary
  /// is named in its declaration and wherever its name is a whole word of the call.
  void record(const WString& use, ShaderCallText call);

  /// The temporaries of the calls among the placed replacements. A rule of the pattern that was given another
  /// text since has none.
  Array<TemporaryPlace> find(const Array<PlacedReplacement>& placed,
                             const KeywordReplacePattern& pattern) const;

private:
  struct Call {
    WString text;
    Array<TemporaryPlace> places;
  };

  std::size_t numberOf(const WString& name);

  Map<WString, std::size_t> names_;
  Map<WString, Call> calls_;  // by the text of the use
};

/// Appends `text` with the replacer's rules applied, which are those of the instance and others; finds the
/// temporaries of the calls that replace uses. `out` holds none yet.
void appendWithCalls(CallerText& out, const KeywordReplacer& replacer, const ScopedText& text,
                     FragmentProfileInstance& instance);

/// Gives a temporary whose name was declared in the same block of braces before the first free number from 2
/// on, behind its name, in its declaration and in the call. The text begins at `from`, outside of any braces;
/// a closing brace too many closes nothing. A declaration in a comment or a preprocessor line keeps its name
/// and does not count. The places are not those of the changed text. Throws the size error.
void numberTemporaries(CallerText& text, std::size_t from = 0);

}  // namespace TolmSDK::Graphics::sfg

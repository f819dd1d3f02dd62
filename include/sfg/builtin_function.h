#pragma once

// Pseudo-functions that fragment authors call in bodies and that the collapse replaces by their values.

#include <cstddef>
#include <cstdint>

#include "sfg/export.h"
#include "sfg/scoped_text.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

enum EBuiltinFunctionId : std::uint32_t {
  eBuiltinFunctionUnknown = 0,
  eBuiltinFunctionIsConnected = 1,
  eBuiltinFunctionIsNotConnected = 2,
  eBuiltinFunctionShader = 3,
  eBuiltinFunctionIsFinalOutput = 4,
};

/// The names of the built-in functions. sfg_isNotConnected holds the text of sfg_isConnected.
SFG_API extern const UString sfg_isConnected;
SFG_API extern const UString sfg_isNotConnected;
SFG_API extern const UString sfg_shader;
SFG_API extern const UString sfg_isFinalOutput;

/// The id of a name; eBuiltinFunctionUnknown for any other. Case-sensitive; never answers IsNotConnected,
/// whose text is IsConnected's.
SFG_API EBuiltinFunctionId getBuiltinFunctionId(const UString& name);
/// The text of an id, "sfg_unkown" for 0; empty for a value that is no id.
SFG_API WString getBuiltinFunctionString(EBuiltinFunctionId id);

/// One call. The views point into the code it was found in.
struct SFG_API BuiltinFunction {
  EBuiltinFunctionId id = eBuiltinFunctionUnknown;
  /// The arguments, split at every comma. An argument is meant to be one identifier or literal: its view
  /// starts at its first character and is as long as it has characters that are not whitespace.
  Array<ScopedText> arguments;
  /// The whole call, from the name to behind the closing parenthesis; empty without an argument list.
  ScopedText range;

  /// Reads the argument list of a call whose name starts at `start` and ends at `pos`, which then stands
  /// behind the list. Any blanks and comments may stand between name and list. A list that is not closed runs
  /// to the end of the text, whose last character then counts as the parenthesis. False when no list follows;
  /// the id is stored in any case.
  bool parse(EBuiltinFunctionId id, const ScopedText& text, std::size_t start, std::size_t& pos);
};

}  // namespace TolmSDK::Graphics::sfg

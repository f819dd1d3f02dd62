#pragma once

// What shader text declares at its top level.

#include <string_view>
#include <vector>

#include "host/lints/plain_code.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Views point into the text.
struct Declarations {
  struct Structure {
    std::size_t token = 0;  ///< of the name
    std::size_t begin = 0;  ///< of the tokens between its braces
    std::size_t end = 0;
    std::vector<std::wstring_view> members;
    bool isPlain = true;  ///< no base, and no preprocessor lines inside
  };
  struct Macro {
    Set<std::wstring_view> names;  ///< in what it stands for, but its own parameters
    bool isExpression = true;      ///< it assigns nothing, and ends and opens no statement
  };

  /// For each parameter position of a function whether any of that name writes it.
  Map<std::wstring_view, std::vector<bool>> functions;
  Map<std::wstring_view, Structure> structures;
  Map<std::wstring_view, Macro> macros;
  /// All of these, members of structures and buffers, and variables; without include guards.
  Set<std::wstring_view> names;
  /// False where brackets do not close, so that something may be missing.
  bool isCertain = true;
};

Declarations declarationsOf(const PlainCode& code);

/// Whether the text switches parts of itself on and off.
bool hasConditions(const PlainCode& code);

}  // namespace TolmSDK::Graphics::sfg::host

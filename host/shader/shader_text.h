#pragma once

// The text of a complete shader, with a record of what its lines are.

#include <string_view>
#include <vector>

#include "tolmsdk/exception.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// What some lines of an assembled shader are.
struct ShaderSection {
  enum class Kind {
    declarations,  ///< of this host: state structure, buffers, textures, entry point
    include,       ///< text of the include file `name`
    symbol,        ///< the function, structure or variable `name` of the predefines
    function,      ///< the collapsed function
  };
  Kind kind = Kind::declarations;
  WString name;
  /// Where its text begins in the predefines; the not-found value for text from anywhere else.
  std::size_t predefine = kNotFound;
  std::size_t firstLine = 0;  ///< counted from 1
  std::size_t lastLine = 0;
};

/// A text that grows by sections. Each starts a line; one without text leaves no record.
class ShaderText {
public:
  void section(ShaderSection::Kind kind, std::wstring_view name = {}, std::size_t predefine = kNotFound);

  /// Text of one or more lines.
  void write(std::wstring_view text);
  template <class... Arguments>
  void writef(std::wstring_view format, const Arguments&... arguments) {
    write(formatted(format, arguments...));
  }
  /// A line feed where the last line has none.
  void endLine();

  WString takeText() { return std::move(text_); }
  /// In order of lines, without gaps.
  std::vector<ShaderSection> takeSections();

private:
  void closeSection();

  WString text_;
  std::size_t line_ = 1;
  std::vector<ShaderSection> sections_;
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Top-level symbols of shader text: functions, structures, uniforms and techniques, and the built-in calls in
// them.

#include <cstddef>
#include <cstdint>

#include "sfg/builtin_function.h"
#include "sfg/export.h"
#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

enum class EShaderSymbolType : std::uint32_t {
  unknown = 0,    ///< raw text, or nothing parsed
  structure = 1,  ///< also sampler-state blocks
  uniform = 2,
  function = 3,
  technique = 4,
};

/// One symbol. Its views point into the text it was parsed from, whose owner outlives it. Parsing never
/// throws: what is not recognised is consumed by at least one character and leaves the symbol empty.
class SFG_API ShaderSymbol {
public:
  ShaderSymbol() = default;
  ShaderSymbol(const ShaderSymbol&) = default;
  ShaderSymbol& operator=(const ShaderSymbol&) = default;
  ShaderSymbol(ShaderSymbol&&) = default;
  ShaderSymbol& operator=(ShaderSymbol&&) = default;
  virtual ~ShaderSymbol();
  virtual void clear();

  /// Parses the next symbol at or after `pos`; true when `s` now holds one.
  static bool findFirstSymbol(ShaderSymbol& s, const ScopedText& text, std::size_t& pos);
  /// The same from the start of `text`, which then starts behind everything consumed. True when anything was
  /// consumed, recognised or not: test getRange() for emptiness.
  static bool findFirstSymbol(ShaderSymbol& s, ScopedText& text);

  void constructFunction(const ScopedText& returnType, const ScopedText& name, const ScopedText& parameters,
                         const ScopedText& body);
  /// The body is not looked at.
  void constructStruct(const ScopedText& name, const ScopedText& body, const ScopedText& range);
  void constructTechnique(const ScopedText& name, const ScopedText& range);
  void constructUniform(const ScopedText& name, const ScopedText& range);

  /// Collects the state variables and built-in calls of a body; the shader-function array is appended to.
  void parseKeywords(const ScopedText& body);

  EShaderSymbolType getType() const noexcept { return type_; }
  /// "Unknown Symbol", "struct", "uniform", "function" or "technique".
  const wchar_t* getTypeString() const;
  /// The text that tells this symbol from others: for a function its signature without whitespace, the length
  /// of its body and the SHA-1 of its whole text; for a structure or uniform the declaration without
  /// whitespace; for a technique its name; empty for raw text.
  const WString& getKey() const noexcept { return key_; }
  const ScopedText& getRange() const noexcept { return range_; }
  const ScopedText& getName() const noexcept { return name_; }
  const Set<UString>& getStateVariables() const noexcept { return stateVariables_; }
  /// Calls of sfg_isConnected and sfg_isFinalOutput.
  const Array<BuiltinFunction>& getBuiltinFunctions() const noexcept { return builtinFunctions_; }
  /// Calls of sfg_shader.
  const Array<BuiltinFunction>& getShaderFunctions() const noexcept { return shaderFunctions_; }

  void setKey(const WString& key) { key_ = key; }
  void setName(const ScopedText& name) { name_ = name; }
  void setRange(const ScopedText& range) { range_ = range; }
  void setStateVariables(const Set<UString>& variables) { stateVariables_ = variables; }
  void setBuiltinFunctions(const Array<BuiltinFunction>& functions) { builtinFunctions_ = functions; }

protected:
  /// Classifies one word that ends at `pos`: a state variable, a built-in call (whose arguments are then
  /// taken), or nothing of ours.
  void parseKeyword(const ScopedText& word, const ScopedText& text, std::size_t& pos);
  void clearThis();
  void zeroThis() noexcept { type_ = EShaderSymbolType::unknown; }

private:
  EShaderSymbolType type_ = EShaderSymbolType::unknown;
  WString key_;
  ScopedText range_;
  ScopedText name_;
  Set<UString> stateVariables_;
  Array<BuiltinFunction> builtinFunctions_;
  Array<BuiltinFunction> shaderFunctions_;
};

/// A symbol as one fragment instance uses it: with renames of its built-in calls. Points at the symbol, which
/// belongs to a snippet that outlives this.
class SFG_API ShaderSymbolInstance {
public:
  /// Takes one rename per built-in call of the symbol, from `renames[firstRename]` on. A call without a
  /// rename stays as written and adds nothing to the key; one without an argument list adds its rename to the
  /// key and stays as written. A null symbol empties the instance.
  void construct(const ShaderSymbol* symbol, const Array<WString>& renames, std::size_t firstRename);

  /// The symbol's key followed by the renames.
  const WString& getInstanceKey() const { return instanceKey_.empty() ? getKey() : instanceKey_; }
  /// The symbol's key, name and text; empty without a symbol.
  const WString& getKey() const;
  ScopedText getName() const;
  ScopedText getText() const;
  /// Positional rules that rename the built-in calls, relative to getText().
  const KeywordReplacePattern& getKeywordReplacePattern() const noexcept { return keywordReplacePattern_; }

private:
  WString instanceKey_;  // empty when it is the symbol's key
  const ShaderSymbol* symbol_ = nullptr;
  KeywordReplacePattern keywordReplacePattern_;
};

}  // namespace TolmSDK::Graphics::sfg

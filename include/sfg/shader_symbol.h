#pragma once

// Top-level symbols of shader text: functions, structures, uniforms and techniques, and the built-in calls in
// them.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

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

/// One symbol. Its views point into the text it was parsed from, whose owner outlives it. A copy has its key
/// as a text of its own, which stays when that text is gone. Parsing never throws: what is not recognised is
/// consumed by at least one character and leaves the symbol empty. Views handed in may be those of the symbol
/// itself.
class SFG_API ShaderSymbol {
public:
  ShaderSymbol() = default;
  ShaderSymbol(const ShaderSymbol& other);
  ShaderSymbol& operator=(const ShaderSymbol& other);
  ShaderSymbol(ShaderSymbol&&) noexcept = default;
  ShaderSymbol& operator=(ShaderSymbol&&) noexcept = default;
  virtual ~ShaderSymbol();
  virtual void clear();

  /// Parses the next symbol at or after `pos`; true when `s` now holds one.
  static bool findFirstSymbol(ShaderSymbol& s, ScopedText text, std::size_t& pos);
  /// The same from the start of `text`, which then starts behind everything consumed. True when anything was
  /// consumed, recognised or not: test getRange() for emptiness.
  static bool findFirstSymbol(ShaderSymbol& s, ScopedText& text);

  void constructFunction(ScopedText returnType, ScopedText name, ScopedText parameters, ScopedText body);
  /// Takes the parts of one function as they are parsed, with a body that is known to hold nothing to
  /// collect.
  void constructPlainFunction(ScopedText returnType, ScopedText name, ScopedText parameters, ScopedText body);
  /// The body is not looked at.
  void constructStruct(ScopedText name, ScopedText body, ScopedText range);
  void constructTechnique(ScopedText name, ScopedText range);
  void constructUniform(ScopedText name, ScopedText range);

  /// Collects the state variables and built-in calls of a body; the shader-function array is appended to.
  void parseKeywords(ScopedText body);

  EShaderSymbolType getType() const noexcept { return type_; }
  /// "Unknown Symbol", "struct", "uniform", "function" or "technique".
  const wchar_t* getTypeString() const;
  /// The text that tells this symbol from others: for a function its signature without whitespace, the length
  /// of its body and the SHA-1 of its whole text; for a structure or uniform the declaration without
  /// whitespace; for a technique its name; empty for raw text. A function's is made at the first call, from
  /// the text it was parsed from; safe in several threads.
  const WString& getKey() const { return key_.isPending() ? makeKey() : key_.text; }
  /// Whether getKey() answers a text, without making it.
  bool hasKey() const noexcept { return key_.isPending() || !key_.text.empty(); }
  /// Whether the key was not found by parsing: it was set, or the symbol was put together by hand or is a
  /// copy of a parsed function. Whether such a symbol is the same as another is told by their keys alone.
  bool hasOwnKey() const noexcept { return hasOwnKey_; }
  /// A text that is at hand without making a key: a parsed function's whole text, any other's key. Of two
  /// keyed symbols of which neither has a key of its own, it is equal exactly when the keys are. When
  /// either has, compare getKey() instead, for which a function's may have to be made.
  std::wstring_view getIdentity() const noexcept {
    return keyedText_.empty() ? std::wstring_view(key_.text) : keyedText_.view();
  }
  /// A hash of getIdentity(), taken at the first call; safe in several threads.
  std::size_t getIdentityHash() const noexcept;
  const ScopedText& getRange() const noexcept { return range_; }
  const ScopedText& getName() const noexcept { return name_; }
  const Set<UString>& getStateVariables() const noexcept { return stateVariables_; }
  /// Calls of sfg_isConnected and sfg_isFinalOutput.
  const Array<BuiltinFunction>& getBuiltinFunctions() const noexcept { return builtinFunctions_; }
  /// Calls of sfg_shader.
  const Array<BuiltinFunction>& getShaderFunctions() const noexcept { return shaderFunctions_; }

  void setKey(const WString& key);
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
  /// The key, and the hash of the identity. Both are made when they are asked for, which another thread may
  /// do at the same time.
  struct Key {
    WString text;
    std::atomic<bool> pending{false};          // the text is to be made
    std::atomic<std::size_t> identityHash{0};  // 0 until it is taken

    Key() = default;
    Key(Key&& other) noexcept : text(std::move(other.text)), pending(other.isPending()) {}
    Key& operator=(Key&& other) noexcept {
      text = std::move(other.text);
      setPending(other.isPending());
      return *this;
    }
    ~Key() = default;
    bool isPending() const noexcept { return pending.load(std::memory_order_acquire); }
    /// For a key that changes, which no other thread sees.
    void setPending(bool isPending) noexcept {
      pending.store(isPending, std::memory_order_relaxed);
      identityHash.store(0, std::memory_order_relaxed);
    }
  };

  const WString& makeKey() const;

  static bool parseFirstSymbol(ShaderSymbol& s, const ScopedText& text, std::size_t& pos);

  EShaderSymbolType type_ = EShaderSymbolType::unknown;
  bool hasOwnKey_ = false;
  mutable Key key_;
  ScopedText keyedText_;  // a function as it was parsed: what its key is made of
  std::size_t signatureLength_ = 0;
  std::size_t bodyLength_ = 0;
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

  /// The symbol's key followed by the renames. Made at the first call; for one thread.
  const WString& getInstanceKey() const;
  /// Whether getInstanceKey() answers a text, without making it.
  bool hasInstanceKey() const { return symbol_ != nullptr && (symbol_->hasKey() || !renames_.empty()); }
  /// See ShaderSymbol::hasOwnKey. When it holds for either of two, they are compared by getInstanceKey().
  bool hasOwnKey() const { return symbol_ != nullptr && symbol_->hasOwnKey(); }
  /// Else getIdentity() and getRenames() are together equal exactly when the instance keys are: see
  /// ShaderSymbol::getIdentity.
  std::wstring_view getIdentity() const {
    return symbol_ == nullptr ? std::wstring_view() : symbol_->getIdentity();
  }
  /// See ShaderSymbol::getIdentityHash. Of a symbol there is.
  std::size_t getIdentityHash() const noexcept { return symbol_->getIdentityHash(); }
  const WString& getRenames() const noexcept { return renames_; }
  /// Unknown without a symbol.
  EShaderSymbolType getType() const noexcept {
    return symbol_ == nullptr ? EShaderSymbolType::unknown : symbol_->getType();
  }
  /// The symbol's key, name and text; empty without a symbol.
  const WString& getKey() const;
  ScopedText getName() const;
  ScopedText getText() const;
  /// Positional rules that rename the built-in calls, relative to getText().
  const KeywordReplacePattern& getKeywordReplacePattern() const noexcept { return keywordReplacePattern_; }

private:
  WString renames_;
  mutable WString instanceKey_;  // empty until asked for
  const ShaderSymbol* symbol_ = nullptr;
  KeywordReplacePattern keywordReplacePattern_;
};

}  // namespace TolmSDK::Graphics::sfg

#pragma once

// Pieces of shader code with their parse, and their use by one fragment instance.

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <ostream>
#include <string_view>

#include "sfg/builtin_function.h"
#include "sfg/export.h"
#include "sfg/scoped_text.h"
#include "sfg/shader_symbol.h"
#include "tolmsdk/heap.h"
#include "tolmsdk/types.h"
#include "tolmsdk/ustring.h"

namespace TolmSDK::Graphics::sfg {

class SymbolRings;
struct SymbolGroups;

/// Owns code and its ordered list of top-level symbols. Text between recognised symbols is kept as raw-text
/// symbols; the first construct the parser cannot classify turns everything behind the previous symbol into
/// one. All views of the parse point into the code, so a snippet is neither copied nor moved. Parsed once,
/// then read by any number of instances and threads.
class SFG_API CodeSnippet : public HeapObject {
public:
  CodeSnippet();
  ~CodeSnippet();
  CodeSnippet(const CodeSnippet&) = delete;
  CodeSnippet& operator=(const CodeSnippet&) = delete;

  /// Appends code; null is ignored. Views of an earlier parse stay valid, but the code added is not parsed
  /// yet.
  void addCode(const wchar_t* code);
  void addCode(const WString& code);
  /// Parses the code anew. False when symbols overlap; those before then stay.
  bool parse();

  /// Takes code that is known to be one function and nothing else, `nameLength` characters of name at `name`,
  /// the parameters in parentheses behind it, and from `body` on a body without built-in calls; the same as
  /// adding and parsing it, but for the state variables, which are not collected.
  void takePlainFunction(WString&& code, std::size_t name, std::size_t nameLength, std::size_t body);

  /// Appends a raw-text symbol; empty text is ignored.
  void addSymbol(ScopedText text);
  /// Appends a copy of a symbol and gathers its state variables and built-in calls; one without a range is
  /// ignored.
  void addSymbol(const ShaderSymbol& symbol);

  /// Index of the last symbol with that key, which may be empty, or the not-found value. Raw-text symbols
  /// have no key to be found by. Safe in several threads.
  std::size_t findSymbol(std::wstring_view key) const;
  std::size_t getNumSymbols() const noexcept { return symbols_.size(); }
  const ShaderSymbol& getSymbol(std::size_t index) const { return symbols_[index]; }

  const Set<UString>& getStateVariables() const noexcept { return stateVariables_; }
  /// All calls of sfg_isConnected and sfg_isFinalOutput, in symbol order.
  const Array<BuiltinFunction>& getBuiltinFunctions() const noexcept { return builtinFunctions_; }
  /// All calls of sfg_shader, in symbol order.
  const Array<BuiltinFunction>& getShaderFunctions() const noexcept { return shaderFunctions_; }

  const WString& getCode() const noexcept { return *code_; }
  /// The code as a shared text: whoever keeps views of the parse longer than the snippet keeps this too.
  std::shared_ptr<const WString> shareCode() const noexcept { return code_; }

  /// Empties the code and the parse.
  void clear();
  /// Writes each symbol's kind and key (raw text: the text itself).
  void dump(std::wostream& os) const;

private:
  friend class SymbolRings;

  /// The groups of the symbols that were kept; null without any. Safe in several threads, as the next one is.
  const SymbolGroups* findGroups() const noexcept { return groups_.load(std::memory_order_acquire); }
  /// Keeps a copy of the groups, from the second call on: most snippets are used once.
  void keepGroups(const SymbolGroups& groups) const;

  void addCode(std::wstring_view code);
  void takeSymbol(ShaderSymbol&& symbol);
  void forgetLookups() noexcept;
  void clearParse();

  using SymbolIndex = Map<std::wstring_view, std::size_t>;
  const SymbolIndex& symbolIndex() const;

  Set<UString> stateVariables_;
  Array<BuiltinFunction> builtinFunctions_;
  Array<BuiltinFunction> shaderFunctions_;
  std::shared_ptr<WString> code_;
  Array<std::shared_ptr<const WString>> retiredCode_;  // texts that symbols of the present parse still view
  Array<ShaderSymbol> symbols_;
  Array<std::size_t> rawTexts_;  // those of the symbols above, in order
  mutable std::mutex indexMutex_;
  mutable std::unique_ptr<const SymbolIndex> index_;  // made by the first look-up behind a change
  mutable std::atomic<bool> wasGrouped_{false};
  mutable std::atomic<const SymbolGroups*> groups_{nullptr};
  mutable std::unique_ptr<const SymbolGroups> keptGroups_;
};

/// A snippet as one fragment instance uses it. Owns the snippet, alone or with others, when told so. Neither
/// copied nor moved.
class SFG_API CodeSnippetInstance {
public:
  CodeSnippetInstance();
  ~CodeSnippetInstance();
  CodeSnippetInstance(const CodeSnippetInstance&) = delete;
  CodeSnippetInstance& operator=(const CodeSnippetInstance&) = delete;

  /// Releases the content and takes a snippet (null: none), with one rename per built-in call of the whole
  /// snippet in its order. With `ownsSnippet` the snippet, made by `new`, is destroyed with this instance.
  void construct(const CodeSnippet* snippet, const Array<WString>& renames, bool ownsSnippet);
  /// The same for a snippet that others may keep too (null: none) and that nobody changes any more.
  void construct(std::shared_ptr<const CodeSnippet> snippet, const Array<WString>& renames);
  /// The snippet that the form above took; null behind the other one.
  const std::shared_ptr<const CodeSnippet>& getSharedSnippet() const noexcept { return shared_; }

  std::size_t getNumSymbols() const noexcept { return symbols_.size(); }
  const ShaderSymbolInstance& getSymbol(std::size_t index) const { return symbols_[index]; }

private:
  void constructSymbols(const CodeSnippet* snippet, const Array<WString>& renames);

  std::unique_ptr<const CodeSnippet> owned_;
  std::shared_ptr<const CodeSnippet> shared_;
  Array<ShaderSymbolInstance> symbols_;
};

}  // namespace TolmSDK::Graphics::sfg

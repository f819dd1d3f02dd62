#pragma once

// Shader text as plain data: rules for replacing, top-level symbols, built-in calls, indentation. Slow and
// literal; nothing here is shared with the generator that the tests compare it with.

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/model/scanner.h"

namespace TolmSDK::Graphics::sfg::model {

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

/// A range of a text that a NUL ends somewhere: searches look behind the range's end.
struct View {
  const wchar_t* text = nullptr;
  std::size_t length = 0;

  std::wstring str() const { return {text, length}; }
};

/// The first occurrence that starts at or behind `from` and inside the view; it may end behind the view.
std::size_t find(const View& text, const std::wstring& needle, std::size_t from);

/// A span of the text that is copied; at one position the longer span comes first.
struct Span {
  std::size_t position;
  std::size_t length;

  friend bool operator==(const Span&, const Span&) = default;
  friend bool operator<(const Span& a, const Span& b) {
    return a.position != b.position ? a.position < b.position : a.length > b.length;
  }
};

using Rule = std::pair<std::wstring, std::wstring>;

/// Rules of one origin: keywords in the order added, spans in the order of the text.
struct Pattern {
  std::vector<Rule> keywords;
  std::map<Span, std::wstring> spans;

  bool empty() const { return keywords.empty() && spans.empty(); }
  void add(const std::wstring& keyword, const std::wstring& text) { keywords.emplace_back(keyword, text); }
  /// Changes the text of every equal keyword; adds the rule when there is none.
  void overrideText(const std::wstring& keyword, const std::wstring& text);
};

/// Copies a text with the rules of several patterns applied.
class Replacer {
public:
  void add(const Pattern& pattern);
  /// Keywords do not match where they would touch one of these spans.
  void protect(std::vector<Span> spans) { protected_ = std::move(spans); }
  /// Appends when there are no rules; otherwise replaces what `out` holds.
  void appendAndReplace(std::wstring& out, const View& text) const;
  std::wstring replaced(const std::wstring& text) const;

private:
  using Matches = std::map<Span, std::wstring>;

  bool scan(Matches& matches, const View& text, std::size_t from) const;
  std::size_t findUnprotected(const View& text, const std::wstring& keyword, std::size_t from) const;

  std::vector<Rule> keywords_;
  Matches spans_;
  std::vector<Span> protected_;
};

enum class BuiltinId { isConnected, shader, isFinalOutput };

/// A call of a built-in function. Without an argument list the range is empty.
struct BuiltinCall {
  BuiltinId id = BuiltinId::isConnected;
  std::vector<std::wstring> arguments;
  std::size_t start = 0;  ///< of the range, in the text scanned
  std::wstring text;      ///< of the range
};

/// What a body mentions, in the order of the text.
struct Keywords {
  std::set<std::wstring> stateVariables;
  std::vector<BuiltinCall> builtins;  ///< all but the calls of shaders
  std::vector<BuiltinCall> shaders;
};

Keywords parseKeywords(const std::wstring& body);

enum class SymbolKind { raw, structure, uniform, function, technique };

struct Symbol {
  SymbolKind kind = SymbolKind::raw;
  std::wstring key;  ///< empty for raw text
  std::wstring name;
  std::size_t start = 0;  ///< in the snippet's code
  std::size_t length = 0;
  std::size_t parametersEnd = 0;  ///< of a function, from the symbol's start
  Keywords keywords;              ///< of a function; starts count from the symbol's start
};

struct Snippet {
  std::wstring code;
  std::vector<Symbol> symbols;

  View view(const Symbol& symbol) const { return {code.c_str() + symbol.start, symbol.length}; }
  /// All calls of the symbols, but those of shaders.
  std::vector<BuiltinCall> builtins() const;
  std::vector<BuiltinCall> shaders() const;
  std::set<std::wstring> stateVariables() const;
};

Snippet parseSnippet(std::wstring code);

/// A symbol as one fragment instance uses it.
struct SymbolInstance {
  std::wstring key;
  const Symbol* symbol = nullptr;
  Pattern spans;
};

/// The symbols of a snippet, which has to outlive them. `renames` holds one text for each built-in call.
std::vector<SymbolInstance> instantiate(const Snippet& snippet, const std::vector<std::wstring>& renames);

/// Lines indented by the depth of their braces.
class Formatter {
public:
  explicit Formatter(int indent = 0) : indent_(indent < 0 ? 0 : indent) {}
  void addLine(std::wstring line);
  const std::wstring& text() const { return text_; }

private:
  std::wstring text_;
  int indent_;
};

}  // namespace TolmSDK::Graphics::sfg::model

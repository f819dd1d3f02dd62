#include "tests/model/model_text.h"

#include <algorithm>
#include <optional>

#include "tolmsdk/state_variables.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::model {
namespace {

/// Marks around the text of a function inside its key, in place of a hash.
constexpr wchar_t kTextBegin = 0xE010;
constexpr wchar_t kTextEnd = 0xE011;

void appendRange(std::wstring& out, const View& text, std::size_t from, std::size_t to) {
  for (std::size_t i = from; i < to && i < text.length; ++i) out += text.text[i];
}

bool touches(const Span& a, const Span& b) {
  return a.position < b.position + b.length && b.position < a.position + a.length;
}

std::wstring withoutBlanks(const std::wstring& text) { return Scanner(text).buildKey(); }

std::vector<std::wstring> splitArguments(const std::wstring& inside) {
  std::vector<std::wstring> arguments;
  std::size_t start = kNone;
  std::size_t count = 0;
  const auto end = [&] {
    arguments.push_back(start == kNone ? L"" : inside.substr(start, count));
    start = kNone;
    count = 0;
  };
  for (std::size_t i = 0; i < inside.size(); ++i) {
    const wchar_t c = inside[i];
    if (c == L' ' || c == L'\t' || c == L'\r' || c == L'\n') continue;
    if (c == L',') {
      end();
      continue;
    }
    if (start == kNone) start = i;
    count += 1;
  }
  if (start != kNone && count != 0) end();
  return arguments;
}

std::optional<BuiltinId> findBuiltin(const std::wstring& word) {
  if (word == L"sfg_isConnected") return BuiltinId::isConnected;
  if (word == L"sfg_shader") return BuiltinId::shader;
  if (word == L"sfg_isFinalOutput") return BuiltinId::isFinalOutput;
  return std::nullopt;
}

/// `pos` is behind the name, and moves behind the argument list.
BuiltinCall parseCall(BuiltinId id, const std::wstring& text, const Scanner& scanner, std::size_t start,
                      std::size_t& pos) {
  BuiltinCall call;
  call.id = id;
  scanner.skipWhitespaces(pos);
  const Part body = scanner.getBracketBody(pos, L'(', L')');
  if (body.length < 2) return call;
  call.arguments = splitArguments(text.substr(body.start + 1, body.length - 2));
  call.start = start;
  call.text = text.substr(start, pos - start);
  return call;
}

/// Reads one symbol at a time off the front of a text.
class SymbolParser {
public:
  explicit SymbolParser(const std::wstring& text) : text_(text), scanner_(text) {}

  /// The next symbol, its starts counting from the text's; none when what comes next is no symbol. Moves
  /// behind what was looked at either way.
  std::optional<Symbol> next() {
    scanner_.skipNonKeywords(pos_);
    if (atEnd()) return std::nullopt;
    if (scanner_.isEqual(pos_, L"struct") || scanner_.isEqual(pos_, L"samplerstate")) return parseStruct();
    if (scanner_.isEqual(pos_, L"technique")) return parseTechnique();
    collectWords();
    if (atEnd()) return std::nullopt;
    if (text_[pos_] == L'(') return parseFunction();
    if (std::wstring(L":;<=[").find(text_[pos_]) != std::wstring::npos) return parseUniform();
    pos_ += 1;
    return std::nullopt;
  }

  std::size_t consumed() const { return pos_; }

private:
  bool atEnd() const { return pos_ >= text_.size(); }
  std::wstring textOf(const Part& part) const { return text_.substr(part.start, part.length); }
  std::wstring between(std::size_t from, std::size_t to) const { return text_.substr(from, to - from); }

  Part word() {
    const Part found = scanner_.getKeyword(pos_);
    scanner_.skipWhitespaces(pos_);
    return found;
  }

  void collectWords() {
    words_.clear();
    for (;;) {
      const Part found = scanner_.getKeyword(pos_);
      if (found.length == 0) return;
      words_.push_back(found);
      scanner_.skipWhitespaces(pos_);
    }
  }

  Symbol make(SymbolKind kind, const Part& name, std::size_t start, std::size_t end) const {
    Symbol symbol;
    symbol.kind = kind;
    symbol.name = textOf(name);
    symbol.start = start;
    symbol.length = end - start;
    symbol.key = withoutBlanks(between(start, end));
    return symbol;
  }

  std::optional<Symbol> parseStruct() {
    const std::size_t start = word().start;
    const Part name = word();
    if (atEnd()) return std::nullopt;
    if (text_[pos_] == L';') {
      pos_ += 1;
      return make(SymbolKind::structure, name, start, pos_);
    }
    scanner_.getBracketBody(pos_, L'{', L'}');
    return make(SymbolKind::structure, name, start, closingEnd());
  }

  /// Behind an optional semicolon and then an optional line feed.
  std::size_t closingEnd() {
    scanner_.getOptionalSemiColon(pos_);
    scanner_.getOptionalReturn(pos_);
    return pos_;
  }

  std::optional<Symbol> parseTechnique() {
    const std::size_t start = word().start;
    const Part name = word();
    const Part body = scanner_.getBracketBody(pos_, L'{', L'}');
    Symbol symbol = make(SymbolKind::technique, name, start, body.start + body.length);
    symbol.key = withoutBlanks(symbol.name);
    return symbol;
  }

  std::optional<Symbol> parseFunction() {
    if (words_.size() < 2) return std::nullopt;
    const std::size_t start = words_.front().start;
    const Part parameters = scanner_.getBracketBody(pos_, L'(', L')');
    const std::size_t parametersEnd = parameters.start + parameters.length;
    const Part body = parseBody();
    Symbol symbol = make(SymbolKind::function, words_.back(), start, body.start + body.length);
    symbol.parametersEnd = parametersEnd - start;
    symbol.key = withoutBlanks(between(start, parametersEnd)) + std::to_wstring(body.length) + kTextBegin +
                 between(start, body.start + body.length) + kTextEnd;
    symbol.keywords = parseKeywords(textOf(body));
    for (auto* calls : {&symbol.keywords.builtins, &symbol.keywords.shaders})
      for (BuiltinCall& call : *calls) call.start += body.start - start;
    return symbol;
  }

  /// The end of a prototype, or the body with what closes it.
  Part parseBody() {
    const Part semicolon = scanner_.getOptionalSemiColon(pos_);
    if (semicolon.length != 0) {
      const Part lineFeed = scanner_.getOptionalReturn(pos_);
      return lineFeed.length != 0 ? lineFeed : semicolon;
    }
    const std::size_t start = scanner_.getBracketBody(pos_, L'{', L'}').start;
    return {start, closingEnd() - start};
  }

  std::optional<Symbol> parseUniform() {
    const std::size_t count = words_.size();
    std::size_t qualifiers = 0;
    while (qualifiers < count && isQualifier(words_[qualifiers])) qualifiers += 1;
    if (qualifiers + 1 != count && qualifiers + 2 != count) return std::nullopt;
    Part name = words_.back();
    if (qualifiers + 1 == count) {
      if (text_[pos_] == L'<') {
        scanner_.getBracketBody(pos_, L'<', L'>');
        scanner_.skipWhitespaces(pos_);
      }
      name = scanner_.getKeyword(pos_);
    }
    if (!skipToSemicolon()) return std::nullopt;
    return make(SymbolKind::uniform, name, words_.front().start, closingEnd());
  }

  bool isQualifier(const Part& part) const {
    const Scanner scanner(textOf(part));
    return scanner.isEqual(0, L"uniform") || scanner.isEqual(0, L"extern");
  }

  /// Passes over annotations, array sizes, semantics and the value. False without a semicolon.
  bool skipToSemicolon() {
    for (;;) {
      scanner_.skipWhitespaces(pos_);
      if (atEnd()) return false;
      switch (text_[pos_]) {
      case L';': return true;
      case L'<': scanner_.getBracketBody(pos_, L'<', L'>'); break;
      case L'(': scanner_.getBracketBody(pos_, L'(', L')'); break;
      case L'[': scanner_.getBracketBody(pos_, L'[', L']'); break;
      case L':':
        pos_ += 1;
        scanner_.skipWhitespaces(pos_);
        scanner_.getKeyword(pos_);
        break;
      case L'=': skipValue(); break;
      default: return false;
      }
    }
  }

  void skipValue() {
    pos_ += 1;
    while (!atEnd() && text_[pos_] != L';') {
      const std::size_t before = pos_;
      scanner_.skipComment(pos_);
      if (pos_ == before) pos_ += 1;
    }
  }

  const std::wstring& text_;
  Scanner scanner_;
  std::size_t pos_ = 0;
  std::vector<Part> words_;
};

/// Raw text, without the blanks in front of it.
void addGap(Snippet& snippet, std::size_t start, std::size_t end) {
  const std::wstring gap = snippet.code.substr(start, end - start);
  const std::wstring trimmed = Scanner(gap).trimmed();
  if (trimmed.empty()) return;
  Symbol symbol;
  symbol.start = end - trimmed.size();
  symbol.length = trimmed.size();
  snippet.symbols.push_back(symbol);
}

}  // namespace

std::size_t find(const View& text, const std::wstring& needle, std::size_t from) {
  if (needle.empty()) return from < text.length ? from : kNone;
  if (text.length == 0) return kNone;
  const std::wstring copy(text.text);
  const std::size_t found = copy.find(needle, from);
  return found < text.length ? found : kNone;
}

void Pattern::overrideText(const std::wstring& keyword, const std::wstring& text) {
  bool isFound = false;
  for (auto& [known, replacement] : keywords) {
    if (known != keyword) continue;
    replacement = text;
    isFound = true;
  }
  if (!isFound) add(keyword, text);
}

void Replacer::add(const Pattern& pattern) {
  keywords_.insert(keywords_.end(), pattern.keywords.begin(), pattern.keywords.end());
  for (const auto& [span, text] : pattern.spans) spans_[span] = text;
}

void Replacer::appendAndReplace(std::wstring& out, const View& text) const {
  if (text.length == 0) return;
  if (keywords_.empty() && spans_.empty()) {
    out.append(text.text, text.length);
    return;
  }
  out.clear();
  Matches matches = spans_;
  scan(matches, text, 0);
  bool isRescanned = true;
  std::size_t cursor = 0;
  while (!matches.empty()) {
    const auto [span, replacement] = *matches.begin();
    if (span.position >= cursor) {
      appendRange(out, text, cursor, span.position);
      out += replacement;
      // A span that ends behind the largest position ends there.
      cursor = span.length > kNone - span.position ? kNone : span.position + span.length;
    }
    matches.erase(matches.begin());
    if (isRescanned) isRescanned = scan(matches, text, cursor);
  }
  appendRange(out, text, cursor, kNone);
}

std::wstring Replacer::replaced(const std::wstring& text) const {
  std::wstring out;
  appendAndReplace(out, {text.c_str(), text.size()});
  return out;
}

bool Replacer::scan(Matches& matches, const View& text, std::size_t from) const {
  bool isFound = false;
  for (const auto& [keyword, replacement] : keywords_) {
    if (keyword.empty()) continue;
    const std::size_t at = findUnprotected(text, keyword, from);
    if (at == kNone) continue;
    matches[{at, keyword.size()}] = replacement;
    isFound = true;
  }
  return isFound;
}

std::size_t Replacer::findUnprotected(const View& text, const std::wstring& keyword, std::size_t from) const {
  std::size_t at = find(text, keyword, from);
  while (at != kNone && std::any_of(protected_.begin(), protected_.end(), [&](const Span& span) {
           return touches(span, {at, keyword.size()});
         })) {
    at = find(text, keyword, at + 1);
  }
  return at;
}

Keywords parseKeywords(const std::wstring& body) {
  Keywords found;
  const Scanner scanner(body);
  for (std::size_t pos = 0; pos < body.size();) {
    scanner.skipNonKeywords(pos);
    const std::size_t start = pos;
    const bool isState = scanner.isEqual(pos, L"state.");
    const bool isOurs = isState || scanner.isEqual(pos, L"sfg_") || scanner.isEqual(pos, L"__");
    if (isState) pos += 6;
    scanner.getKeyword(pos);
    if (!isOurs) continue;
    const std::wstring word = body.substr(start, pos - start);
    if (isStateVariable(UString(word))) {
      found.stateVariables.insert(word);
    } else if (const auto id = findBuiltin(word)) {
      auto& calls = *id == BuiltinId::shader ? found.shaders : found.builtins;
      calls.push_back(parseCall(*id, body, scanner, start, pos));
    }
  }
  return found;
}

std::vector<BuiltinCall> Snippet::builtins() const {
  std::vector<BuiltinCall> all;
  for (const Symbol& symbol : symbols)
    all.insert(all.end(), symbol.keywords.builtins.begin(), symbol.keywords.builtins.end());
  return all;
}

std::vector<BuiltinCall> Snippet::shaders() const {
  std::vector<BuiltinCall> all;
  for (const Symbol& symbol : symbols)
    all.insert(all.end(), symbol.keywords.shaders.begin(), symbol.keywords.shaders.end());
  return all;
}

std::set<std::wstring> Snippet::stateVariables() const {
  std::set<std::wstring> all;
  for (const Symbol& symbol : symbols)
    all.insert(symbol.keywords.stateVariables.begin(), symbol.keywords.stateVariables.end());
  return all;
}

Snippet parseSnippet(std::wstring code) {
  Snippet snippet;
  snippet.code = std::move(code);
  std::size_t gapStart = 0;
  for (;;) {
    // The rest of the code is a text of its own, so that no test sees what lies in front of it.
    const std::wstring rest = snippet.code.substr(gapStart);
    SymbolParser parser(rest);
    std::optional<Symbol> symbol = parser.next();
    if (!symbol || symbol->length == 0) break;
    symbol->start += gapStart;
    addGap(snippet, gapStart, symbol->start);
    snippet.symbols.push_back(*symbol);
    gapStart += parser.consumed();
  }
  addGap(snippet, gapStart, snippet.code.size());
  return snippet;
}

std::vector<SymbolInstance> instantiate(const Snippet& snippet, const std::vector<std::wstring>& renames) {
  std::vector<SymbolInstance> instances;
  std::size_t used = 0;
  for (const Symbol& symbol : snippet.symbols) {
    SymbolInstance instance;
    instance.symbol = &symbol;
    instance.key = symbol.key;
    for (const BuiltinCall& call : symbol.keywords.builtins) {
      // A call for which no text is left stays as it is written.
      if (used < renames.size()) {
        instance.key += renames[used];
        if (!call.text.empty()) instance.spans.spans[{call.start, call.text.size()}] = renames[used];
      }
      used += 1;
    }
    instances.push_back(std::move(instance));
  }
  return instances;
}

void Formatter::addLine(std::wstring line) {
  line = Scanner(line).trimmed();
  const auto opened = static_cast<int>(std::count(line.begin(), line.end(), L'{'));
  const auto closed = static_cast<int>(std::count(line.begin(), line.end(), L'}'));
  const int next = indent_ + opened - closed;
  const int tabs = std::min(indent_, next);
  for (int i = 0; i < tabs; ++i) text_ += L'\t';
  text_ += line + L'\n';
  indent_ = next;
}

}  // namespace TolmSDK::Graphics::sfg::model

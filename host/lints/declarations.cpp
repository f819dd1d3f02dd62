#include "host/lints/declarations.h"

#include <algorithm>

#include "host/lints/code_parameters.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

bool isOneOf(std::wstring_view word, std::initializer_list<std::wstring_view> words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

bool isCondition(const PlainCode::Directive& directive) {
  return isOneOf(directive.name, {L"if", L"ifdef", L"ifndef", L"elif", L"else", L"endif"});
}

class Reader {
public:
  explicit Reader(const PlainCode& code) : code_(code) { found_.isCertain = code.isCertain; }

  Declarations run() {
    for (const PlainCode::Directive& directive : code_.directives) {
      if (directive.name == L"define") addMacro(directive);
    }
    for (const std::wstring_view guard : guards()) found_.names.erase(guard);
    while (next_ < code_.tokens.size()) readNext();
    return std::move(found_);
  }

private:
  /// One token, or a whole declaration.
  void readNext() {
    if (code_.is(next_, L'[')) {
      next_ = behind(next_);
    } else if (code_.is(next_, L'=')) {
      skipValue();
    } else if (!code_.isName(next_)) {
      ++next_;
    } else if (isOneOf(code_.word(next_), {L"struct", L"class", L"interface", L"enum"})) {
      readStructure(true);
    } else if (isOneOf(code_.word(next_), {L"cbuffer", L"tbuffer"})) {
      readStructure(false);
    } else if (code_.is(next_ + 1, L'(')) {
      readFunction();
    } else {
      readWord();
    }
  }

  /// A name in front of one of these is declared here; what is behind a colon or assigned is not.
  void readWord() {
    const std::size_t behindName = next_ + 1;
    const bool isDeclared = behindName >= code_.tokens.size() || code_.is(behindName, L';') ||
                            code_.is(behindName, L',') || code_.is(behindName, L'[') ||
                            code_.is(behindName, L'=') || code_.is(behindName, L':');
    if (isDeclared) found_.names.insert(code_.word(next_));
    next_ = behindName;
    if (code_.is(next_, L'=') || code_.is(next_, L':')) skipValue();
  }

  /// Up to the comma or semicolon that ends the declaration.
  void skipValue() {
    while (next_ < code_.tokens.size() && !code_.is(next_, L';') && !code_.is(next_, L',')) {
      // A `{` behind a semantic is a function's or buffer's.
      if (code_.is(next_, L'(') || code_.is(next_, L'[') || code_.is(next_, L'{')) {
        next_ = behind(next_);
      } else {
        ++next_;
      }
    }
  }

  void readStructure(bool isStructure) {
    const std::size_t keyword = next_++;
    if (!code_.isName(next_)) return;
    const std::size_t name = next_++;
    found_.names.insert(code_.word(name));
    Declarations::Structure structure;
    structure.token = name;
    while (next_ < code_.tokens.size() && !code_.is(next_, L'{') && !code_.is(next_, L';') &&
           !code_.is(next_, L'(') && !code_.is(next_, L'=')) {
      structure.isPlain = false;
      ++next_;
    }
    if (!code_.is(next_, L'{')) return;
    const std::size_t end = behind(next_);
    structure.begin = next_ + 1;
    structure.end = end - 1;
    structure.members = readMembers(structure.begin, structure.end);
    for (const std::wstring_view member : structure.members) found_.names.insert(member);
    if (hasConditionsInside(keyword, end)) structure.isPlain = false;
    if (isStructure) found_.structures.emplace(code_.word(name), std::move(structure));
    next_ = end;
  }

  std::vector<std::wstring_view> readMembers(std::size_t begin, std::size_t end) {
    std::vector<std::wstring_view> members;
    for (std::size_t i = begin; i < end;) {
      if (code_.is(i, L'(') || code_.is(i, L'[') || code_.is(i, L'{')) {
        i = behind(i);
        continue;
      }
      const bool endsName = code_.is(i + 1, L';') || code_.is(i + 1, L',') || code_.is(i + 1, L'[') ||
                            code_.is(i + 1, L':') || code_.is(i + 1, L'=') || code_.is(i + 1, L'(') ||
                            i + 1 == end;
      if (code_.isName(i) && endsName) {
        members.push_back(code_.word(i));
        const bool hasMore = code_.is(i + 1, L':') || code_.is(i + 1, L'=');
        while (hasMore && i + 1 < end && !code_.is(i + 1, L';') && !code_.is(i + 1, L',')) ++i;
      }
      ++i;
    }
    return members;
  }

  bool hasConditionsInside(std::size_t first, std::size_t last) const {
    const std::size_t begin = code_.tokens[first].begin;
    const std::size_t end = code_.tokens[std::min(last, code_.tokens.size()) - 1].end;
    const auto isBefore = [](const PlainCode::Directive& directive, std::size_t place) {
      return directive.begin < place;
    };
    const auto from = std::lower_bound(code_.directives.begin(), code_.directives.end(), begin, isBefore);
    return from != code_.directives.end() && from->begin < end;
  }

  void readFunction() {
    const std::wstring_view name = code_.word(next_);
    const std::size_t close = behind(next_ + 1);
    found_.names.insert(name);
    std::vector<bool>& writes = found_.functions[name];
    const std::vector<CodeParameter> parameters = readParameters(code_, next_ + 1, close - 1);
    if (writes.size() < parameters.size()) writes.resize(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i)
      writes[i] = writes[i] || parameters[i].isOutput || parameters[i].isInout;
    next_ = close;
    if (code_.is(next_, L':')) next_ += 2;
    if (code_.is(next_, L'{')) next_ = behind(next_);
  }

  void addMacro(const PlainCode::Directive& directive) {
    const CodeTokens& tokens = directive.tokens;
    if (tokens.empty() || !tokens[0].isName) return;
    const auto isSign = [&](std::size_t i, wchar_t c) { return code_.text[tokens[i].begin] == c; };
    Set<std::wstring_view> parameters;
    std::size_t i = 1;
    if (i < tokens.size() && isSign(i, L'(') && tokens[i].begin == tokens[0].end) {
      while (i < tokens.size() && !isSign(i, L')')) parameters.insert(tokens[i++].in(code_.text));
      ++i;
    }
    Declarations::Macro& macro = found_.macros[tokens[0].in(code_.text)];
    for (; i < tokens.size(); ++i) {
      const std::wstring_view word = tokens[i].in(code_.text);
      if (tokens[i].isName && !parameters.contains(word)) macro.names.insert(word);
      const bool isSteering =
          isOneOf(word, {L"{", L"}", L";", L"=", L"#", L"+", L"-"})
              ? isStatementSign(tokens, i)
              : isOneOf(word, {L"if", L"else", L"for", L"while", L"do", L"switch", L"case", L"default",
                               L"break", L"continue", L"return", L"discard"});
      if (isSteering) macro.isExpression = false;
    }
    found_.names.insert(tokens[0].in(code_.text));
  }

  /// Of comparisons the `=`, and of sums the sign, stand in expressions.
  bool isStatementSign(const CodeTokens& tokens, std::size_t i) const {
    const wchar_t c = code_.text[tokens[i].begin];
    const auto isNear = [&](std::size_t other, std::wstring_view signs) {
      return other < tokens.size() && signs.find(code_.text[tokens[other].begin]) != signs.npos;
    };
    if (c == L'=') return !isNear(i + 1, L"=") && !(i > 0 && isNear(i - 1, L"=!<>"));
    if (c == L'+' || c == L'-') {
      return i + 1 < tokens.size() && code_.text[tokens[i + 1].begin] == c &&
             tokens[i + 1].begin == tokens[i].end;
    }
    return true;
  }

  /// Names that stand for nothing and keep a text from being read twice.
  std::vector<std::wstring_view> guards() const {
    Set<std::wstring_view> asked;
    std::vector<std::wstring_view> found;
    for (const PlainCode::Directive& directive : code_.directives) {
      if (directive.tokens.size() != 1) continue;
      const std::wstring_view name = directive.tokens[0].in(code_.text);
      if (directive.name == L"ifndef") asked.insert(name);
      if (directive.name == L"define" && asked.contains(name)) found.push_back(name);
    }
    return found;
  }

  /// Behind the bracket that closes the one at `open`.
  std::size_t behind(std::size_t open) {
    const std::size_t end = behindBrackets(code_.text, code_.tokens, open);
    if (end == code_.tokens.size()) {
      const wchar_t last = code_.text[code_.tokens.back().begin];
      if (last != L')' && last != L'}' && last != L']') found_.isCertain = false;
    }
    return std::max(end, open + 1);
  }

  const PlainCode& code_;
  Declarations found_;
  std::size_t next_ = 0;
};

}  // namespace

Declarations declarationsOf(const PlainCode& code) { return Reader(code).run(); }

bool hasConditions(const PlainCode& code) {
  return std::any_of(code.directives.begin(), code.directives.end(), isCondition);
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/origins/token_origins.h"

#include <algorithm>
#include <unordered_map>

namespace TolmSDK::Graphics::sfg::host {

namespace {

using OriginKind = TokenOrigin::Kind;

/// Where a definition's code is cut: its parameters end, its body begins and ends.
struct FunctionTokens {
  std::size_t headEnd = 0;  ///< behind the parenthesis that closes the parameters
  std::size_t bodyBegin = 0;
  std::size_t bodyEnd = 0;
};

FunctionTokens functionTokens(std::wstring_view code, const CodeTokens& tokens) {
  std::size_t open = 0;
  while (open < tokens.size() && tokens[open].in(code) != L"(") ++open;
  FunctionTokens function;
  function.headEnd = std::min(behindBrackets(code, tokens, open), tokens.size());
  function.bodyBegin = std::min(function.headEnd + 1, tokens.size());
  function.bodyEnd = std::max(function.bodyBegin, tokens.size() - (tokens.empty() ? 0 : 1));
  return function;
}

}  // namespace

const TokenOrigin* OriginText::find(std::size_t begin) const {
  const auto found = std::lower_bound(begins.begin(), begins.end(), begin);
  if (found == begins.end() || *found != begin) return nullptr;
  return &origins[static_cast<std::size_t>(found - begins.begin())];
}

const FragmentCode* TokenOrigins::codeOf(std::size_t writer, CodePart part) {
  const CollapseRecord::Writer& from = record_.writers()[writer];
  return codes_.find(from.fragment->key(), from.profileIndex, part);
}

// Predefines.

OriginText TokenOrigins::ofPredefines(std::wstring_view predefines) {
  OriginText text;
  for (std::size_t i = 0; i < record_.codes().size(); ++i) {
    const CollapseRecord::Code& written = record_.codes()[i];
    const CodeTokens tokens = tokensOf(written.text);
    const std::vector<TokenOrigin> origins = ofCode(i, tokens);
    for (const WrittenSymbol& symbol : written.symbols) {
      if (symbol.end > predefines.size()) continue;
      const TokenRange from{written.text, &tokens, tokenAt(tokens, symbol.codeBegin),
                            tokenAt(tokens, symbol.codeEnd)};
      const CodeTokens made = tokensOf(predefines.substr(0, symbol.end), symbol.begin);
      const std::vector<TokenSource> sources = alignTokens(from, allOf(predefines, made));
      for (std::size_t k = 0; k < made.size(); ++k) {
        TokenOrigin origin;
        if (sources[k].token < origins.size()) origin = origins[sources[k].token];
        origin.isExact = origin.isExact && sources[k].isExact;
        text.begins.push_back(made[k].begin);
        text.origins.push_back(origin);
      }
    }
  }
  return text;
}

/// Origins of the tokens of a piece of code as it was given to the result.
std::vector<TokenOrigin> TokenOrigins::ofCode(std::size_t record, const CodeTokens& tokens) {
  const CollapseRecord::Code& written = record_.codes()[record];
  const CodePart part = written.isDefinition ? CodePart::implementation : CodePart::predefine;
  TokenOrigin origin{OriginKind::node, false, written.writer, nullptr, part, 0, record};
  std::vector<TokenOrigin> origins(tokens.size(), origin);
  const FragmentCode* const code = codeOf(written.writer, part);
  if (code == nullptr) return origins;
  const std::vector<TokenSource> sources =
      written.isDefinition
          ? alignDefinition(*code, written, tokens)
          : alignTokens(allOf(code->text, code->tokens), allOf(written.text, tokens), numLights_);
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (sources[i].token >= code->tokens.size()) continue;
    origins[i].kind = OriginKind::code;
    origins[i].code = code;
    origins[i].isExact = sources[i].isExact;
    origins[i].offset = code->tokens[sources[i].token].begin;
  }
  return origins;
}

/// The head by its parameters, the body token by token. The body of the source goes from the first brace to
/// the last one.
std::vector<TokenSource> TokenOrigins::alignDefinition(const FragmentCode& code,
                                                       const CollapseRecord::Code& written,
                                                       const CodeTokens& tokens) const {
  const std::size_t brace = code.text.find(L'{');
  const std::size_t lastBrace = code.text.rfind(L'}');
  if (brace == WString::npos) return std::vector<TokenSource>(tokens.size());
  const std::size_t bodyBegin = tokenAt(code.tokens, brace + 1);
  const std::size_t bodyEnd =
      lastBrace == WString::npos || lastBrace < brace ? code.tokens.size() : tokenAt(code.tokens, lastBrace);
  const std::size_t sourceBrace = tokenAt(code.tokens, brace);
  const FunctionTokens cut = functionTokens(written.text, tokens);

  const TokenRange head{code.text, &code.tokens, 0, sourceBrace};
  std::vector<TokenSource> sources = alignHeads(head, {written.text, &tokens, 0, cut.headEnd});
  if (cut.headEnd < cut.bodyBegin) sources.push_back({sourceBrace, true});
  const TokenRange body{code.text, &code.tokens, bodyBegin, std::max(bodyBegin, bodyEnd)};
  const std::vector<TokenSource> inside =
      alignTokens(body, {written.text, &tokens, cut.bodyBegin, cut.bodyEnd}, numLights_);
  sources.insert(sources.end(), inside.begin(), inside.end());
  if (cut.bodyEnd < tokens.size()) sources.push_back({std::min(bodyEnd, code.tokens.size() - 1), true});
  sources.resize(tokens.size());
  return sources;
}

// The body.

/// Reads the body from its start to its end.
class TokenOrigins::BodyReader {
public:
  BodyReader(TokenOrigins& owner, std::wstring_view body)
      : owner_(owner), record_(owner.record_), body_(body), tokens_(tokensOf(body)),
        origins_(tokens_.size()) {
    for (std::size_t i = 0; i < record_.writers().size(); ++i) {
      const CollapseRecord::Writer& writer = record_.writers()[i];
      for (const WString& name : writer.outputs) variables_.emplace(name, i);
      for (std::size_t k = 0; k < writer.fragment->getNumOutputs(); ++k) {
        WString sum = L"accumulate_" + writer.fragment->instanceName() + L"_";
        sum += writer.fragment->getOutputName(k);
        variables_.emplace(std::move(sum), i);
      }
    }
  }

  OriginText read() {
    std::size_t begin = 0;
    for (const CollapseRecord::Call& call : record_.calls()) {
      if (call.place < begin) continue;
      readLines(begin, call.place);
      readCall(call);
      begin = call.place + call.text.size();
    }
    readLines(begin, body_.size());
    OriginText text;
    for (const CodeToken& token : tokens_) text.begins.push_back(token.begin);
    text.origins = std::move(origins_);
    return text;
  }

private:
  /// A value to look into: the tokens of one input's value.
  struct Value {
    std::size_t writer;
    std::size_t input;
    const WString* text;
    std::size_t first;  // token
    std::size_t last;
  };

  /// What stands between calls: declarations and assignments, each in its line.
  void readLines(std::size_t begin, std::size_t end) {
    while (begin < end) {
      const std::size_t lineEnd = std::min(body_.find(L'\n', begin), end);
      readLine(begin, lineEnd);
      begin = lineEnd + 1;
    }
  }

  void readLine(std::size_t begin, std::size_t end) {
    const std::wstring_view line = body_.substr(begin, end - begin);
    std::size_t token = tokenAt(tokens_, begin);
    const std::size_t behind = tokenAt(tokens_, end);
    constexpr std::wstring_view kAssigns = L" = ";
    const std::size_t assigns = line.find(kAssigns);
    if (assigns != line.npos && line.ends_with(L';')) {
      const std::size_t value = assigns + kAssigns.size();
      const WString text(line.substr(value, line.size() - 1 - value));
      if (const CollapseRecord::Expression* const found = record_.findExpression(text)) {
        const std::size_t first = tokenAt(tokens_, begin + value);
        readNames(token, first);
        readExpression(*found, first, behind - 1);
        readValues();
        return;
      }
    }
    readNames(token, behind);
  }

  /// A line that names a variable of an instance is of that instance.
  void readNames(std::size_t first, std::size_t last) {
    std::size_t owner = kNotFound;
    for (std::size_t i = first; i < last; ++i) {
      if (!tokens_[i].isName) continue;
      const auto found = variables_.find(WString(tokens_[i].in(body_)));
      if (found == variables_.end()) continue;
      set(i, OriginKind::node, found->second, 0, true);
      if (owner == kNotFound) owner = found->second;
    }
    for (std::size_t i = first; i < last && owner != kNotFound; ++i)
      if (origins_[i].kind == OriginKind::none) set(i, OriginKind::node, owner, 0, false);
  }

  void readCall(const CollapseRecord::Call& call) {
    const std::size_t first = tokenAt(tokens_, call.place);
    const std::size_t last = tokenAt(tokens_, call.place + call.text.size());
    for (std::size_t i = first; i < last; ++i) set(i, OriginKind::node, call.writer, 0, i == first);
    std::size_t at = call.text.find(L'(');
    if (at == WString::npos) return;
    ++at;
    for (std::size_t input = 0; input < call.inputs.size(); ++input) {
      while (at < call.text.size() &&
             (call.text[at] == L',' || call.text[at] == L'\n' || call.text[at] == L' '))
        ++at;
      const WString& value = call.inputs[input];
      if (call.text.compare(at, value.size(), value) != 0) break;
      values_.push_back({call.writer, input, &value, tokenAt(tokens_, call.place + at),
                         tokenAt(tokens_, call.place + at + value.size())});
      at += value.size();
    }
    readValues();
  }

  /// Values of expressions hold values again.
  void readValues() {
    while (!values_.empty()) {
      const Value value = values_.back();
      values_.pop_back();
      if (const CollapseRecord::Expression* const found = record_.findExpression(*value.text)) {
        readExpression(*found, value.first, value.last);
        continue;
      }
      for (std::size_t i = value.first; i < value.last; ++i)
        set(i, OriginKind::input, value.writer, value.input, true);
    }
  }

  /// The first line of an inline profile, in parentheses, with values in place of its placeholders.
  void readExpression(const CollapseRecord::Expression& expression, std::size_t first, std::size_t last) {
    const FragmentCode* const code = owner_.codeOf(expression.writer, CodePart::implementation);
    if (code == nullptr || code->tokens.empty()) {
      for (std::size_t i = first; i < last; ++i) set(i, OriginKind::node, expression.writer, 0, false);
      return;
    }
    const std::size_t lineEnd = code->starts.size() > 1 ? code->starts[1] : code->text.size();
    const std::size_t end = tokenAt(code->tokens, lineEnd);
    const auto at = [&](std::size_t source) { return code->tokens[std::min(source, end - 1)].begin; };
    const auto setCode = [&](std::size_t token, std::size_t source, bool isExact) {
      set(token, OriginKind::code, expression.writer, at(source), isExact);
      origins_[token].code = code;
    };

    std::size_t j = first;
    std::size_t behind = last;
    if (!code->text.starts_with(L'(') && j < behind) {
      setCode(j++, 0, false);
      if (j < behind) setCode(--behind, end - 1, false);
    }
    std::unordered_map<std::wstring_view, std::size_t> inputs;
    std::size_t i = 0;
    for (; i < end && j < behind; ++i) {
      const std::size_t begin = code->tokens[i].begin;
      const std::wstring_view text = code->text;
      if (text.substr(begin, 2) == L"{{") {
        const std::size_t close = text.find(L"}}", begin);
        if (close == text.npos) break;
        const std::wstring_view name = text.substr(begin, close + 2 - begin);
        const std::size_t input = inputs.emplace(name, inputs.size()).first->second;
        if (input >= expression.inputs.size()) break;
        const WString& value = expression.inputs[input];
        const std::size_t valueEnd = std::min(j + tokensOf(value).size(), behind);
        values_.push_back({expression.writer, input, &value, j, valueEnd});
        j = valueEnd;
        i = tokenAt(code->tokens, close + 2) - 1;
        continue;
      }
      const std::wstring_view source = code->tokens[i].in(text);
      if (source != tokens_[j].in(body_) && !(code->tokens[i].isName && tokens_[j].isName)) break;
      setCode(j++, i, true);
    }
    while (j < behind) setCode(j++, i, false);
  }

  void set(std::size_t token, OriginKind kind, std::size_t writer, std::size_t offset, bool isExact) {
    origins_[token] = {kind, isExact, writer, nullptr, CodePart::implementation, offset, kNotFound};
  }

  struct HashText {
    std::size_t operator()(const WString& text) const noexcept {
      return std::hash<std::wstring_view>()(text);
    }
  };

  TokenOrigins& owner_;
  const CollapseRecord& record_;
  const std::wstring_view body_;
  const CodeTokens tokens_;
  std::vector<TokenOrigin> origins_;
  std::unordered_map<WString, std::size_t, HashText> variables_;
  std::vector<Value> values_;
};

OriginText TokenOrigins::ofBody(std::wstring_view body) { return BodyReader(*this, body).read(); }

}  // namespace TolmSDK::Graphics::sfg::host

#include "tolmsdk/text_parameter_list.h"

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

#include "tolmsdk/read_limits.h"

namespace TolmSDK::Graphics {

namespace {

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r'; }

bool isLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; }

bool isWordCharacter(wchar_t c) { return isLetter(c) || (c >= L'0' && c <= L'9'); }

/// Position behind a line comment: a line that ends in a backslash, optionally followed by carriage returns,
/// goes on in the next one.
std::size_t endOfLineComment(std::wstring_view text, std::size_t pos) {
  while (pos < text.size()) {
    const std::size_t end = std::min(text.find(L'\n', pos), text.size());
    const std::wstring_view line = text.substr(pos, end - pos);
    const std::size_t last = line.find_last_not_of(L'\r');
    pos = std::min(end + 1, text.size());
    if (last == std::wstring_view::npos || line[last] != L'\\') break;
  }
  return pos;
}

/// The text with each run of blanks and comments as one blank, none at its ends. A comment that is not closed
/// runs to the end of the text.
WString withoutComments(std::wstring_view text) {
  WString out;
  bool pending = false;
  for (std::size_t pos = 0; pos < text.size();) {
    const std::wstring_view rest = text.substr(pos);
    if (rest.starts_with(L"//")) {
      pos = endOfLineComment(text, pos + 2);
      pending = true;
    } else if (rest.starts_with(L"/*")) {
      const std::size_t end = text.find(L"*/", pos + 2);
      pos = end == std::wstring_view::npos ? text.size() : end + 2;
      pending = true;
    } else if (isBlank(text[pos])) {
      ++pos;
      pending = true;
    } else {
      if (pending && !out.empty()) out += L' ';
      pending = false;
      out += text[pos++];
    }
  }
  return out;
}

enum class Direction { input, output, both };

struct Parameter {
  Direction direction = Direction::input;
  std::wstring_view type;
  std::wstring_view name;
};

/// Reads a list of parameters whose comments are gone and whose blanks are single.
class ParameterReader {
public:
  explicit ParameterReader(std::wstring_view text) : text_(text) {}

  bool atEnd() const { return pos_ == text_.size(); }

  /// True when a comma was passed.
  bool passComma() { return pass(L','); }

  /// The parameter at the position, up to its comma or the end; nothing when it is malformed.
  std::optional<Parameter> readParameter() {
    Parameter parameter;
    skipQualifiers(parameter.direction);
    if (!readTypeAndName(parameter)) return {};
    if (pass(L':') && !skipSemantic()) return {};
    if (!atEnd() && text_[pos_] != L',') return {};
    return parameter;
  }

private:
  void skipBlank() {
    if (!atEnd() && isBlank(text_[pos_])) ++pos_;
  }

  bool pass(wchar_t c) {
    if (atEnd() || text_[pos_] != c) return false;
    ++pos_;
    skipBlank();
    return true;
  }

  /// The word at the position, empty when there is none; the position moves to its end.
  std::wstring_view readWord() {
    const std::size_t start = pos_;
    if (atEnd() || !isLetter(text_[pos_])) return {};
    while (!atEnd() && isWordCharacter(text_[pos_])) ++pos_;
    return text_.substr(start, pos_ - start);
  }

  static bool isQualifier(std::wstring_view word) {
    return word == L"in" || word == L"out" || word == L"inout" || word == L"const" || word == L"uniform";
  }

  void skipQualifiers(Direction& direction) {
    for (;;) {
      const std::size_t start = pos_;
      const std::wstring_view word = readWord();
      if (!isQualifier(word)) {
        pos_ = start;
        return;
      }
      if (word == L"inout") direction = Direction::both;
      if (word == L"out" && direction == Direction::input) direction = Direction::output;
      skipBlank();
    }
  }

  /// Reads words, each with template arguments or without; the last, which has none, is the name.
  bool readTypeAndName(Parameter& parameter) {
    const std::size_t start = pos_;
    std::size_t typeEnd = start;  // behind the last word but one
    std::size_t wordEnd = start;  // behind the last word
    bool lastHasArguments = false;
    for (;;) {
      const std::wstring_view word = readWord();
      if (word.empty()) break;
      typeEnd = wordEnd;
      parameter.name = word;
      wordEnd = pos_;
      skipBlank();
      lastHasArguments = !atEnd() && text_[pos_] == L'<';
      if (lastHasArguments) {
        if (!skipTemplateArguments()) return false;
        wordEnd = pos_;
        skipBlank();
      }
    }
    parameter.type = text_.substr(start, typeEnd - start);
    return !parameter.type.empty() && !lastHasArguments && !isQualifier(parameter.name);
  }

  bool skipTemplateArguments() {
    std::size_t depth = 0;
    for (; !atEnd(); ++pos_) {
      const wchar_t c = text_[pos_];
      if (c == L'<') {
        ++depth;
      } else if (c == L'>') {
        if (--depth == 0) {
          ++pos_;
          return true;
        }
      } else if (!isWordCharacter(c) && c != L',' && c != L' ') {
        return false;
      }
    }
    return false;
  }

  /// A word, optionally with arguments in parentheses, as `register(t0, space1)`.
  bool skipSemantic() {
    if (readWord().empty()) return false;
    skipBlank();
    if (atEnd() || text_[pos_] != L'(') return true;
    const std::size_t end = text_.find(L')', pos_);
    if (end == std::wstring_view::npos) return false;
    pos_ = end + 1;
    skipBlank();
    return true;
  }

  std::wstring_view text_;
  std::size_t pos_ = 0;
};

/// All parameters of a list; nothing when one is malformed, a name is given twice, or they are too many.
std::optional<std::vector<Parameter>> readParameters(std::wstring_view text) {
  std::vector<Parameter> parameters;
  ParameterReader reader(text);
  if (reader.atEnd()) return parameters;
  std::set<std::wstring_view> names;
  const std::size_t most = readLimits().parameters;
  do {
    const std::optional<Parameter> parameter = reader.readParameter();
    if (!parameter || !names.insert(parameter->name).second || parameters.size() == most) return {};
    parameters.push_back(*parameter);
  } while (reader.passComma());
  return parameters;
}

}  // namespace

ATextParameterList::ATextParameterList() = default;

ATextParameterList::ATextParameterList(const ATextParameterList&) = default;

ATextParameterList::ATextParameterList(const ITextParameterList& other) {
  for (std::size_t index = 0; index < other.getNumInputs(); ++index) {
    addInput(other.getInputType(index), other.getInputName(index));
  }
  for (std::size_t index = 0; index < other.getNumOutputs(); ++index) {
    addOutput(other.getOutputType(index), other.getOutputName(index));
  }
}

ATextParameterList& ATextParameterList::operator=(const ATextParameterList&) = default;

ATextParameterList::~ATextParameterList() = default;

void ATextParameterList::addInput(std::wstring_view type, std::wstring_view name) {
  inputs_.push_back({UString(type), WString(name)});
}

void ATextParameterList::addOutput(std::wstring_view type, std::wstring_view name) {
  outputs_.push_back({UString(type), WString(name)});
}

void ATextParameterList::clear() {
  inputs_.clear();
  outputs_.clear();
}

bool ATextParameterList::parseParameters(std::wstring_view text) {
  // The text may be one of this list's own: read it before the list is emptied.
  const WString plain = withoutComments(text);
  clear();
  const std::optional<std::vector<Parameter>> parameters = readParameters(plain);
  if (!parameters) return false;
  for (const Parameter& parameter : *parameters) {
    switch (parameter.direction) {
    case Direction::input: addInput(parameter.type, parameter.name); break;
    case Direction::output: addOutput(parameter.type, parameter.name); break;
    case Direction::both: addInput(WString(L"inout ").append(parameter.type), parameter.name); break;
    }
  }
  return true;
}

void ATextParameterList::writeParameters(WString& out, std::wstring_view prefix, bool declaration) const {
  bool isFirst = true;
  const auto write = [&](const Item& item, std::wstring_view direction) {
    if (!isFirst) out += L',';
    isFirst = false;
    out += L'\n';
    out += prefix;
    if (declaration) {
      out += direction;
      out += item.type.view();
      if (!item.type.empty()) out += L' ';
    }
    out += item.name;
  };
  for (const Item& item : inputs_) write(item, L"");
  for (const Item& item : outputs_) write(item, L"out ");
}

}  // namespace TolmSDK::Graphics

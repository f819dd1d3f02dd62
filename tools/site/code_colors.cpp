#include "tools/site/code_colors.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace TolmSDK::Graphics::sfg::site {

namespace {

bool isWordStart(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }
bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }
bool isWordPart(char c) { return isWordStart(c) || isDigit(c); }

bool isKeyword(std::string_view word) {
  constexpr std::array<std::string_view, 24> kWords = {
      "break",  "case",   "const", "continue", "default", "discard", "do",     "else",
      "false",  "for",    "if",    "in",       "inout",   "out",     "return", "static",
      "struct", "switch", "true",  "typedef",  "uniform", "unroll",  "while",  "loop"};
  return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

/// "float", "int3", "float4x4".
bool isType(std::string_view word) {
  for (const std::string_view base : {"float", "half", "double", "int", "uint", "bool"}) {
    if (!word.starts_with(base)) continue;
    const std::string_view rest = word.substr(base.size());
    const auto isSide = [](char c) { return c >= '1' && c <= '4'; };
    if (rest.empty() || (rest.size() == 1 && isSide(rest[0])) ||
        (rest.size() == 3 && isSide(rest[0]) && rest[1] == 'x' && isSide(rest[2])))
      return true;
  }
  return word == "void" || word.starts_with("Texture") || word.starts_with("Sampler");
}

const char* classOf(std::string_view word) {
  if (isKeyword(word)) return "keyword";
  if (isType(word)) return "type";
  return word.starts_with("sfg_") ? "ours" : nullptr;
}

class Painter {
public:
  explicit Painter(std::string_view code) : code_(code) {}

  Markup paint() {
    while (at_ < code_.size()) step();
    flush();
    return std::move(markup_);
  }

private:
  void step() {
    const std::string_view rest = code_.substr(at_);
    if (rest.starts_with("//")) return add("comment", lineEnd());
    if (rest.starts_with("/*")) return add("comment", behind("*/", at_ + 2));
    if (rest.front() == '"') return add("string", std::min(behind("\"", at_ + 1), lineEnd()));
    if (rest.front() == '#' && isLineStart_) return add("directive", lineEnd());
    const bool isNumber =
        isDigit(rest.front()) || (rest.front() == '.' && rest.size() > 1 && isDigit(rest[1]));
    if (isNumber) return add("number", numberEnd());
    if (isWordStart(rest.front())) {
      std::size_t end = at_;
      while (end < code_.size() && isWordPart(code_[end])) ++end;
      return add(classOf(code_.substr(at_, end - at_)), end);
    }
    if (rest.front() == '\n') {
      isLineStart_ = true;
    } else if (rest.front() != ' ' && rest.front() != '\t') {
      isLineStart_ = false;
    }
    ++at_;
  }

  std::size_t lineEnd() const { return std::min(code_.find('\n', at_), code_.size()); }
  std::size_t behind(std::string_view end, std::size_t from) const {
    const std::size_t found = code_.find(end, from);
    return found == code_.npos ? code_.size() : found + end.size();
  }
  std::size_t numberEnd() const {
    std::size_t end = at_;
    while (end < code_.size() &&
           (isWordPart(code_[end]) || code_[end] == '.' ||
            ((code_[end] == '-' || code_[end] == '+') && (code_[end - 1] == 'e' || code_[end - 1] == 'E'))))
      ++end;
    return end;
  }

  /// Up to `end` is of the class; of none where it is null.
  void add(const char* kind, std::size_t end) {
    isLineStart_ = false;
    if (kind != nullptr) {
      flush();
      markup_ << element("span", {{"class", kind}}, code_.substr(at_, end - at_));
      flushed_ = end;
    }
    at_ = end;
  }
  void flush() {
    markup_ << code_.substr(flushed_, at_ - flushed_);
    flushed_ = at_;
  }

  std::string_view code_;
  std::size_t at_ = 0;
  std::size_t flushed_ = 0;
  bool isLineStart_ = true;
  Markup markup_;
};

}  // namespace

Markup coloredCode(std::string_view code) { return Painter(code).paint(); }

}  // namespace TolmSDK::Graphics::sfg::site

#include "host/modules/token_lines.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace TolmSDK::Graphics::sfg::host {

bool isWordPart(char c) noexcept { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

class Splitter {
public:
  explicit Splitter(std::string_view text) : text_(text) {}

  TokenLines split() {
    bool startsLine = true;
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (c == '\n') {
        startsLine = true;
        step();
      } else if (std::isspace(static_cast<unsigned char>(c)) != 0) {
        step();
      } else if (const std::size_t comment = commentLength(pos_); comment != 0) {
        skip(comment);
      } else if (c == '#' && startsLine) {
        take(directiveLength());
      } else {
        startsLine = false;
        take(tokenLength());
      }
    }
    return std::move(lines_);
  }

private:
  /// Of the comment there; zero when there is none.
  std::size_t commentLength(std::size_t at) const {
    const std::string_view rest = text_.substr(at);
    if (rest.starts_with("//")) return std::min(rest.find('\n'), rest.size());
    if (!rest.starts_with("/*")) return 0;
    const std::size_t end = rest.find("*/", 2);
    return end == rest.npos ? rest.size() : end + 2;
  }

  /// Up to the end of the line, with lines that continue it and comments that begin in it.
  std::size_t directiveLength() const {
    std::size_t end = pos_;
    while (end < text_.size() && text_[end] != '\n') {
      if (text_.substr(end, 2) == "\\\n") {
        end += 2;
      } else if (text_.substr(end, 2) == "/*") {
        end += commentLength(end);
      } else {
        ++end;
      }
    }
    return end - pos_;
  }

  std::size_t tokenLength() const {
    const std::string_view rest = text_.substr(pos_);
    if (isDigit(rest[0]) || (rest[0] == '.' && rest.size() > 1 && isDigit(rest[1])))
      return numberLength(rest);
    if (isWordPart(rest[0])) {
      const auto end = std::find_if_not(rest.begin(), rest.end(), isWordPart);
      return static_cast<std::size_t>(end - rest.begin());
    }
    if (rest[0] == '"') return std::min({rest.find('"', 1), rest.find('\n'), rest.size() - 1}) + 1;
    constexpr std::array<std::string_view, 22> kOperators = {
        "<<=", ">>=", "...", "++", "--", "+=", "-=", "*=", "/=", "%=", "&=",
        "|=",  "^=",  "<<",  ">>", "<=", ">=", "==", "!=", "&&", "||", "::"};
    for (const std::string_view known : kOperators)
      if (rest.starts_with(known)) return known.size();
    std::size_t end = 1;
    while (end < rest.size() && (static_cast<unsigned char>(rest[end]) & 0xC0u) == 0x80u) ++end;
    return end;
  }

  static std::size_t numberLength(std::string_view rest) {
    const bool isHexadecimal = rest.size() > 1 && (rest[1] == 'x' || rest[1] == 'X');
    std::size_t end = 1;
    for (; end < rest.size(); ++end) {
      const bool isSign = rest[end] == '+' || rest[end] == '-';
      const bool isExponent = rest[end - 1] == 'e' || rest[end - 1] == 'E';
      if (isSign && isExponent && !isHexadecimal) continue;
      if (!isWordPart(rest[end]) && rest[end] != '.') break;
    }
    return end;
  }

  /// Every line of what is taken is a line of the result.
  void take(std::size_t length) {
    const std::string_view token = text_.substr(pos_, length);
    const auto more = static_cast<std::size_t>(std::count(token.begin(), token.end(), '\n'));
    for (std::size_t i = 0; i <= more; ++i) lines_.places.push_back({line_ + i, i == 0 ? column_ : 1});
    lines_.text += token;
    lines_.text += '\n';
    skip(length);
  }

  void skip(std::size_t length) {
    for (; length != 0; --length) step();
  }
  void step() {
    const auto c = static_cast<unsigned char>(text_[pos_++]);
    if (c == '\n') {
      ++line_;
      column_ = 1;
    } else if ((c & 0xC0u) != 0x80u) {
      ++column_;
    }
  }

  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t line_ = 1;
  std::size_t column_ = 1;
  TokenLines lines_;
};

}  // namespace

TokenLines onTokenLines(std::string_view shader) { return Splitter(shader).split(); }

}  // namespace TolmSDK::Graphics::sfg::host

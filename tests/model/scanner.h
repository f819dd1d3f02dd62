#pragma once

// The scanning functions as they are described, one step after the other and over a text alone: what the real
// ones are compared with. An empty answer is told by its start.

#include <cctype>
#include <cstddef>
#include <string>

namespace TolmSDK::Graphics::sfg::model {

struct Part {
  std::size_t start;
  std::size_t length;
  friend bool operator==(const Part&, const Part&) = default;
};

class Scanner {
public:
  explicit Scanner(std::wstring text) : text_(std::move(text)) {}

  void skipLine(std::size_t& pos) const {
    bool isContinued = false;
    while (has(pos)) {
      const wchar_t c = text_[pos];
      if (c == L'\n') {
        pos += 1;
        if (!isContinued) return;
        isContinued = false;
        continue;
      }
      if (c == L'\\') isContinued = true;
      if (c != L'\\' && c != L'\r') isContinued = false;
      pos += 1;
    }
  }

  void skipComment(std::size_t& pos) const {
    if (!hasTwo(pos) || text_[pos] != L'/') return;
    if (text_[pos + 1] == L'/') {
      skipLine(pos);
    } else if (text_[pos + 1] == L'*') {
      const std::size_t end = text_.find(L"*/", pos);
      pos = end == std::wstring::npos ? text_.size() : end + 2;
    }
  }

  void skipMacros(std::size_t& pos) const {
    if (has(pos) && text_[pos] == L'#') skipLine(pos);
  }

  void skipWhitespaces(std::size_t& pos) const {
    for (;;) {
      skipComment(pos);
      if (!has(pos)) return;
      if (!isBlank(text_[pos])) return;
      pos += 1;
    }
  }

  void skipNonKeywords(std::size_t& pos) const {
    for (;;) {
      const std::size_t before = pos;
      skipWhitespaces(pos);
      skipMacros(pos);
      if (pos != before) continue;
      if (!has(pos) || isToken(text_[pos])) return;
      pos += 1;
    }
  }

  Part getBracketBody(std::size_t& pos, wchar_t open, wchar_t close) const {
    skipWhitespaces(pos);
    if (!has(pos) || text_[pos] != open) return emptyAt(pos);
    const std::size_t start = pos;
    std::size_t depth = 1;
    pos += 1;
    while (depth > 0) {
      skipComment(pos);
      skipMacros(pos);
      if (!has(pos)) break;
      if (text_[pos] == open) depth += 1;
      if (text_[pos] == close) depth -= 1;
      pos += 1;
    }
    return {start, pos - start};
  }

  Part getKeyword(std::size_t& pos) const {
    if (!has(pos)) return {text_.size(), 0};
    const std::size_t start = pos;
    while (has(pos) && isToken(text_[pos])) pos += 1;
    return {start, pos - start};
  }

  Part getOptionalReturn(std::size_t& pos) const {
    if (!has(pos) || text_[pos] != L'\n') return emptyAt(pos);
    pos += 1;
    return {pos - 1, 1};
  }

  Part getOptionalSemiColon(std::size_t& pos) const {
    skipWhitespaces(pos);
    if (!has(pos) || text_[pos] != L';') return emptyAt(pos);
    pos += 1;
    return {pos - 1, 1};
  }

  /// The length is tested against the whole view, but nothing is read behind it.
  bool isEqual(std::size_t pos, const std::wstring& literal) const {
    if (text_.size() < literal.size()) return false;
    for (std::size_t i = 0; i < literal.size(); ++i) {
      if (!has(pos) || !has(pos + i)) return false;
      const wchar_t a = text_[pos + i];
      const wchar_t b = literal[i];
      if (isAscii(a) && isAscii(b) ? std::tolower(static_cast<int>(a)) != std::tolower(static_cast<int>(b))
                                   : a != b)
        return false;
    }
    return true;
  }

  std::wstring buildKey() const {
    std::wstring key;
    for (const wchar_t c : text_)
      if (!isBlank(c)) key += c;
    return key;
  }

  std::wstring trimmed() const {
    std::wstring text = text_;
    while (!text.empty() && isBlank(text[0])) text.erase(0, 1);
    return text;
  }

private:
  bool has(std::size_t pos) const { return pos < text_.size(); }
  bool hasTwo(std::size_t pos) const { return has(pos) && has(pos + 1); }
  Part emptyAt(std::size_t pos) const { return {has(pos) ? pos : text_.size(), 0}; }
  static bool isAscii(wchar_t c) { return c >= 0 && c < 128; }
  static bool isBlank(wchar_t c) { return c == L'\t' || c == L'\n' || c == L'\r' || c == L' '; }
  static bool isToken(wchar_t c) {
    return isAscii(c) && (std::isalnum(static_cast<int>(c)) != 0 || c == L'_');
  }

  std::wstring text_;
};

}  // namespace TolmSDK::Graphics::sfg::model

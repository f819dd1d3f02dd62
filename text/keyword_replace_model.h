#pragma once

// The replacement as it is described, step by step and slowly: what the fast one is compared with.

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"

namespace TolmSDK::Graphics::sfg::model {

/// The search in a copy of the underlying text, which ends at its first NUL.
inline std::size_t find(const ScopedText& text, const std::wstring& needle, std::size_t from) {
  if (needle.empty()) return from < text.length ? from : kNotFound;
  if (text.length == 0) return kNotFound;
  const std::wstring copy(text.text);
  const std::size_t found = copy.find(needle, from);
  return found < text.length ? found : kNotFound;
}

class Replacer {
public:
  void add(const KeywordReplacePattern& pattern) {
    for (std::size_t i = 0; i < pattern.getKeywords().size(); ++i)
      keywords_.emplace_back(std::wstring(pattern.getKeywords()[i]),
                             std::wstring(pattern.getReplacements()[i]));
    for (const auto& [key, replacement] : pattern.getPositionalReplacements()) positional_[key] = replacement;
  }

  void appendAndReplace(std::wstring& out, const ScopedText& text) const {
    if (text.length == 0) return;
    if (keywords_.empty() && positional_.empty()) {
      out.append(text.text, text.length);
      return;
    }
    out.clear();
    Matches matches = positional_;
    bool isRescanned = true;
    scan(matches, text, 0);
    std::size_t cursor = 0;
    while (!matches.empty()) {
      const auto [key, replacement] = *matches.begin();
      if (key.position >= cursor) {
        append(out, text, cursor, key.position);
        out += replacement;
        // A span that ends behind the largest position ends there.
        cursor = key.length > kNotFound - key.position ? kNotFound : key.position + key.length;
      }
      matches.erase(matches.begin());
      if (isRescanned) isRescanned = scan(matches, text, cursor);
    }
    append(out, text, cursor, kNotFound);
  }

private:
  using Matches = std::map<KeywordPosKey, std::wstring>;

  bool scan(Matches& matches, const ScopedText& text, std::size_t from) const {
    bool isFound = false;
    for (const auto& [keyword, replacement] : keywords_) {
      if (keyword.empty()) continue;
      const std::size_t at = find(text, keyword, from);
      if (at == kNotFound) continue;
      matches[{at, keyword.size()}] = replacement;
      isFound = true;
    }
    return isFound;
  }

  static void append(std::wstring& out, const ScopedText& text, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to && i < text.length; ++i) out += text.text[i];
  }

  std::vector<std::pair<std::wstring, std::wstring>> keywords_;
  Matches positional_;
};

}  // namespace TolmSDK::Graphics::sfg::model

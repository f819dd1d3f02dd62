#pragma once

// Rules of the library's patterns as rules of the model.

#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"
#include "tests/model/model_text.h"

namespace TolmSDK::Graphics::sfg::model {

inline Pattern patternOf(const KeywordReplacePattern& real) {
  Pattern pattern;
  for (std::size_t i = 0; i < real.getKeywords().size(); ++i)
    pattern.add(std::wstring(real.getKeywords()[i]), std::wstring(real.getReplacements()[i]));
  for (const auto& [key, replacement] : real.getPositionalReplacements())
    pattern.spans[{key.position, key.length}] = std::wstring(replacement);
  return pattern;
}

inline View viewOf(const ScopedText& text) { return {text.text, text.length}; }

}  // namespace TolmSDK::Graphics::sfg::model

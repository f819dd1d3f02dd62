#include "sfg/keyword_replace.h"

#include "sfg/size_limit.h"
#include "text/keyword_rules.h"

namespace TolmSDK::Graphics::sfg {

void KeywordReplacePattern::addReplacePattern(const WString& keyword, const WString& replacement) {
  keywords_.push_back(keyword);
  replacements_.push_back(replacement);
}

void KeywordReplacePattern::addReplacePattern(const Array<WString>& keywords,
                                              const Array<WString>& replacements) {
  keywords_.insert(keywords_.end(), keywords.begin(), keywords.end());
  replacements_.insert(replacements_.end(), replacements.begin(), replacements.end());
}

void KeywordReplacePattern::addReplacePattern(const KeywordPosKey& key, const WString& replacement) {
  positionalReplacements_[key] = replacement;
}

void KeywordReplacePattern::overrideReplacePattern(const WString& keyword, const WString& replacement) {
  bool isKnown = false;
  for (std::size_t i = 0; i < keywords_.size(); ++i) {
    if (keywords_[i] != keyword) continue;
    replacements_[i] = replacement;
    isKnown = true;
  }
  if (!isKnown) addReplacePattern(keyword, replacement);
}

void KeywordReplacePattern::clearReplacePattern() {
  keywords_.clear();
  replacements_.clear();
  positionalReplacements_.clear();
}

KeywordReplacer::KeywordReplacer() = default;
KeywordReplacer::~KeywordReplacer() = default;

void KeywordReplacer::addReplacePattern(const KeywordReplacePattern& pattern) {
  if (!pattern.getKeywords().empty()) {
    if (!rules_) rules_ = std::make_unique<KeywordRules>();
    rules_->add(pattern);
  }
  for (const auto& [key, replacement] : pattern.getPositionalReplacements())
    positionalReplacements_[key] = &replacement;
}

void KeywordReplacer::clearReplacePattern() {
  rules_.reset();
  positionalReplacements_.clear();
}

void KeywordReplacer::appendAndReplace(WString& out, const ScopedText& text) const {
  if (text.empty()) return;
  if (empty()) {
    checkTextLength(out.size() + text.length);
    appendString(out, text);
    return;
  }
  // Built apart from `out`, which the text may view. The buffer is a new one then too, so nothing is gained
  // by reuse.
  WString result;
  appendReplaced(result, text);
  out.swap(result);
}

void KeywordReplacer::appendReplaced(WString& out, const ScopedText& text) const {
  static const KeywordRules none;
  static const ProtectedSpans nothing;
  sfg::appendReplaced(out, text, rules_ ? *rules_ : none, positionalReplacements_, nothing);
}

Array<PlacedReplacement> KeywordReplacer::appendAndLocate(WString& out, const ScopedText& text) const {
  static const KeywordRules none;
  static const ProtectedSpans nothing;
  Array<PlacedReplacement> placed;
  sfg::appendReplaced(out, text, rules_ ? *rules_ : none, positionalReplacements_, nothing,
                      [&placed](std::size_t position, const WString& replacement) {
                        placed.push_back({position, &replacement});
                      });
  return placed;
}

}  // namespace TolmSDK::Graphics::sfg

#include "sfg/keyword_replace.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

#include "sfg/size_limit.h"
#include "text/keyword_rules.h"
#include "text/text_hash.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

/// Room for `count` more. Grown at least by half: many small additions stay linear.
void reserveFor(Array<WString>& texts, std::size_t count) {
  const std::size_t needed = texts.size() + count;
  if (needed > texts.capacity()) texts.reserve(std::max(needed, texts.size() + texts.size() / 2));
}

void checkPairs(const Array<WString>& keywords, const Array<WString>& replacements) {
  if (keywords.size() != replacements.size())
    throw Exception(L"sfgError : keywords and replacements should be the same in number!");
}

}  // namespace

void KeywordReplacePattern::addReplacePattern(const WString& keyword, const WString& replacement) {
  WString own(replacement);  // it may be one of the keywords, which move
  keywords_.push_back(keyword);
  replacements_.push_back(std::move(own));
  if (byHash_.places) indexKeywords();
}

void KeywordReplacePattern::addReplacePattern(const Array<WString>& keywords,
                                              const Array<WString>& replacements) {
  checkPairs(keywords, replacements);
  // Neither array moves once the first pair is added: they may be those that pairs are taken from.
  const std::size_t count = keywords.size();
  reserveFor(keywords_, count);
  reserveFor(replacements_, count);
  for (std::size_t i = 0; i < count; ++i) {
    keywords_.push_back(keywords[i]);
    replacements_.push_back(replacements[i]);
  }
  if (byHash_.places) indexKeywords();
}

void KeywordReplacePattern::addReplacePattern(const KeywordPosKey& key, const WString& replacement) {
  positionalReplacements_[key] = replacement;
}

void KeywordReplacePattern::overrideReplacePattern(const WString& keyword, const WString& replacement) {
  constexpr std::size_t kFew = 16;
  const WString sought(keyword);  // it may be one of the replacements, which change
  bool isKnown = false;
  const auto override = [&](std::size_t i) {
    if (keywords_[i] != sought) return;
    replacements_[i] = replacement;
    isKnown = true;
  };
  if (keywords_.size() <= kFew) {
    for (std::size_t i = 0; i < keywords_.size(); ++i) override(i);
  } else {
    indexKeywords();
    const auto [first, last] = byHash_.places->equal_range(hashOfText(sought));
    for (auto place = first; place != last; ++place) override(place->second);
  }
  if (!isKnown) addReplacePattern(sought, replacement);
}

/// Adds the keywords that are not in the index yet, which are the last ones.
void KeywordReplacePattern::indexKeywords() {
  if (!byHash_.places) byHash_.places = std::make_unique<std::unordered_multimap<std::size_t, std::size_t>>();
  for (std::size_t i = byHash_.places->size(); i < keywords_.size(); ++i)
    byHash_.places->emplace(hashOfText(keywords_[i]), i);
}

void KeywordReplacePattern::clearReplacePattern() {
  keywords_.clear();
  replacements_.clear();
  positionalReplacements_.clear();
  byHash_.places.reset();
}

KeywordReplacer::KeywordReplacer() = default;
KeywordReplacer::~KeywordReplacer() = default;

void KeywordReplacer::addReplacePattern(const KeywordReplacePattern& pattern) {
  addReplacePattern(pattern.getKeywords(), pattern.getReplacements());
  for (const auto& [key, replacement] : pattern.getPositionalReplacements())
    positionalReplacements_[key] = &replacement;
}

void KeywordReplacer::addReplacePattern(const Array<WString>& keywords, const Array<WString>& replacements) {
  checkPairs(keywords, replacements);
  if (keywords.empty()) return;
  if (!rules_) rules_ = std::make_unique<KeywordRules>();
  rules_->add(keywords, replacements);
}

std::size_t KeywordReplacer::countRules() const noexcept { return rules_ ? rules_->count() : 0; }
const WString& KeywordReplacer::getKeyword(std::size_t rule) const { return rules_->keyword(rule); }
const WString& KeywordReplacer::getReplacement(std::size_t rule) const { return rules_->replacement(rule); }

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

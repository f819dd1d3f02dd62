#include "text/keyword_rules.h"

#include "text/scan.h"

namespace TolmSDK::Graphics::sfg {

void KeywordRules::add(const Array<WString>& keywords, const Array<WString>& replacements) {
  if (keywords.empty()) return;
  for (const WString& keyword : keywords) {
    keywords_.push_back(&keyword);
    totalLength_ += keyword.size();
    longest_ = std::max(longest_, keyword.size());
    shortest_ = std::min(shortest_, keyword.size());
  }
  for (const WString& replacement : replacements) replacements_.push_back(&replacement);
  automaton_.reset();
  searched_ = 0;
}

/// Few short keywords are searched one by one. Many are too, until that has cost as much as an automaton.
const KeywordAutomaton* KeywordRules::automatonFor(std::size_t textLength) const {
  constexpr std::size_t kLong = KeywordAutomaton::kLong;
  // In steps of a search, which has a price of its own however short the text.
  constexpr std::size_t kCostOfState = 64;
  constexpr std::size_t kCostOfSearch = 200;
  if (automaton_) return automaton_.get();
  if (keywords_.size() <= KeywordAutomaton::kFew && longest_ <= kLong) return nullptr;
  searched_ += keywords_.size() * (textLength + kCostOfSearch);
  if (searched_ <= kCostOfState * totalLength_ && longest_ <= kLong) return nullptr;
  Array<std::wstring_view> keywords;
  keywords.reserve(keywords_.size());
  for (const WString* keyword : keywords_) keywords.emplace_back(*keyword);
  automaton_ = std::make_unique<const KeywordAutomaton>(keywords);
  return automaton_.get();
}

/// An occurrence that starts in the text may end behind it, up to the NUL there.
bool KeywordRules::mayOccurIn(const ScopedText& text) const {
  std::size_t length = text.length;
  if (keywords_.empty()) return false;
  if (shortest_ <= length) return true;
  length = scan::lengthBeforeNul(text);
  while (length < shortest_ && text.text[length] != L'\0') ++length;
  return length == shortest_;
}

KeywordMatches::KeywordMatches(const KeywordRules& rules, const ScopedText& text, const ProtectedSpans& spans)
    : rules_(rules), text_(text), spans_(spans) {
  if (!rules.mayOccurIn(text)) return;
  automaton_ = rules.automatonFor(text.length);
  if (automaton_ != nullptr) {
    collect(*automaton_);
    return;
  }

  limit_ = scan::lengthBeforeNul(text);
  if (rules.keywords_.size() > few_.size()) {
    many_.resize(rules.keywords_.size());
    next_ = many_.data();
  }
  for (std::size_t i = 0; i < rules.keywords_.size(); ++i) {
    if (!scan::isSearchable(*rules.keywords_[i])) continue;
    const std::size_t at = findOccurrence(i, 0);
    if (at != kNotFound) next_[count_++] = {at, i, rules.keywords_[i]->size()};
  }
}

/// The first occurrence at or behind `from` that touches no protected span.
std::size_t KeywordMatches::findOccurrence(std::size_t rule, std::size_t from) const {
  const WString& keyword = *rules_.keywords_[rule];
  for (;;) {
    const std::size_t at = scan::findOccurrence(text_.text, limit_, keyword, from);
    if (at == kNotFound || spans_.empty() || !spans_.touch(at, keyword.size())) return at;
    from = at + 1;
  }
}

void KeywordMatches::collect(const KeywordAutomaton& automaton) {
  automaton.scan(text_, [&](std::size_t position, KeywordAutomaton::Found found) {
    while (found != KeywordAutomaton::kNothing && !spans_.empty() &&
           spans_.touch(position, automaton.length(found)))
      found = automaton.shorter(found);
    if (found != KeywordAutomaton::kNothing)
      matches_.push_back({position, automaton.keyword(found), automaton.length(found)});
  });
}

const KeywordMatches::Match* KeywordMatches::findNext(std::size_t cursor) {
  if (automaton_ == nullptr) return count_ == 0 ? nullptr : findNextOfFew(cursor);
  while (!matches_.empty() && matches_.back().position < cursor) matches_.pop_back();
  return matches_.empty() ? nullptr : &matches_.back();
}

const KeywordMatches::Match* KeywordMatches::findNextOfFew(std::size_t cursor) {
  const auto comesBefore = [](const Match& a, const Match& b) {
    return a.position != b.position ? a.position < b.position : a.length > b.length;
  };
  const Match* best = nullptr;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < count_; ++i) {
    Match match = next_[i];
    if (match.position < cursor) match.position = findOccurrence(match.rule, cursor);
    if (match.position == kNotFound) continue;
    next_[kept] = match;
    if (best == nullptr || !comesBefore(*best, match)) best = &next_[kept];
    ++kept;
  }
  count_ = kept;
  return best;
}

}  // namespace TolmSDK::Graphics::sfg

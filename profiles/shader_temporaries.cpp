#include "profiles/shader_temporaries.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "sfg/size_limit.h"
#include "text/scan.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

namespace {

std::wstring_view lastWord(std::wstring_view text) {
  std::size_t begin = text.size();
  while (begin > 0 && scan::isTokenChar(text[begin - 1])) --begin;
  return text.substr(begin);
}

/// Whether the name stands there, its last character at `last`, and is not the end of a longer word.
bool isNamedAt(std::wstring_view text, std::size_t last, std::wstring_view name) {
  if (last >= text.size() || last + 1 < name.size()) return false;
  const std::size_t begin = last + 1 - name.size();
  return text.substr(begin, name.size()) == name && (begin == 0 || !scan::isTokenChar(text[begin - 1]));
}

/// Finds names in a text in one pass, each by its last word: names may hold other characters too.
class NameFinder {
public:
  void add(const WString& name, std::size_t number) {
    entries_.push_back({lastWord(name), name, number});
    isSorted_ = false;
  }

  /// Appends where the text names them from `pos` on.
  void find(Array<TemporaryPlace>& places, const ScopedText& text, std::size_t pos) {
    sort();
    while (pos < text.length) {
      const std::wstring_view word = scan::getKeyword(text, pos).view();
      if (const Entry* found = word.empty() ? nullptr : longestAt(text.view(), pos - 1, word))
        places.push_back({pos - 1, found->number, false});
      if (word.empty()) ++pos;
    }
  }

private:
  struct Entry {
    std::wstring_view word;
    std::wstring_view name;
    std::size_t number;
  };
  struct ByWord {
    bool operator()(const Entry& entry, std::wstring_view word) const { return entry.word < word; }
    bool operator()(std::wstring_view word, const Entry& entry) const { return word < entry.word; }
  };

  /// By last word, equal names once.
  void sort() {
    if (std::exchange(isSorted_, true)) return;
    const auto key = [](const Entry& entry) { return std::pair(entry.word, entry.name); };
    std::sort(entries_.begin(), entries_.end(),
              [&](const Entry& a, const Entry& b) { return key(a) < key(b); });
    const auto same = [](const Entry& a, const Entry& b) { return a.name == b.name; };
    entries_.erase(std::unique(entries_.begin(), entries_.end(), same), entries_.end());
  }

  const Entry* longestAt(std::wstring_view text, std::size_t last, std::wstring_view word) const {
    const Entry* longest = nullptr;
    const auto [first, behind] = std::equal_range(entries_.begin(), entries_.end(), word, ByWord());
    for (auto entry = first; entry != behind; ++entry) {
      const bool isLonger = longest == nullptr || entry->name.size() > longest->name.size();
      if (isLonger && isNamedAt(text, last, entry->name)) longest = &*entry;
    }
    return longest;
  }

  Array<Entry> entries_;
  bool isSorted_ = false;
};

/// Walks through text from place to place and knows the block of braces that it is in.
class BlockWalk {
public:
  struct Block {
    std::size_t depth = 0;
    std::size_t number = 0;  // in the order in which blocks open
  };

  /// The text begins at `from`, in a block of its own.
  BlockWalk(const ScopedText& text, std::size_t from) : text_(text), pos_(from) {}

  /// Walks behind the character. False when it stands in a comment or a preprocessor line.
  bool reach(std::size_t last) {
    while (pos_ <= last && pos_ < text_.length) step();
    return !isSkipped_;
  }

  Block block() const { return {open_.size() - 1, open_.back()}; }
  bool isOpen(const Block& block) const {
    return block.depth < open_.size() && open_[block.depth] == block.number;
  }

private:
  void step() {
    isSkipped_ = true;
    if (scan::startsComment(text_, pos_)) return scan::skipStartedComment(text_, pos_);
    const wchar_t c = text_.text[pos_];
    if (c == L'#') return scan::skipLine(text_, pos_);
    isSkipped_ = false;
    ++pos_;
    if (c == L'{') open_.push_back(++lastNumber_);
    if (c == L'}' && open_.size() > 1) open_.pop_back();
  }

  const ScopedText text_;
  std::size_t pos_;
  bool isSkipped_ = false;  // the last step passed over a comment or a preprocessor line
  std::size_t lastNumber_ = 0;
  Array<std::size_t> open_{0};  // numbers of the open blocks, the outermost first
};

/// How often each name was declared in each open block.
class Declarations {
public:
  explicit Declarations(std::size_t numNames) : names_(numNames) {}

  /// Counts a declaration in the walk's block and answers its number there. A number behind a name never
  /// spells another name, which ends in letters: the next one is always free.
  std::size_t add(std::size_t name, const BlockWalk& walk) {
    Array<InBlock>& blocks = names_[name];
    while (!blocks.empty() && !walk.isOpen(blocks.back().block)) blocks.pop_back();
    const BlockWalk::Block block = walk.block();
    if (blocks.empty() || blocks.back().block.number != block.number) blocks.push_back({block, 0});
    return ++blocks.back().count;
  }

private:
  struct InBlock {
    BlockWalk::Block block;
    std::size_t count;
  };
  Array<Array<InBlock>> names_;  // by name: the blocks that declare it, the innermost last
};

std::size_t countNames(const Array<TemporaryPlace>& places) {
  std::size_t count = 0;
  for (const TemporaryPlace& place : places) count = std::max(count, place.name + 1);
  return count;
}

/// Without any there is nothing to number.
bool hasRepeatedDeclaration(const Array<TemporaryPlace>& places, std::size_t numNames) {
  Array<bool> isDeclared(numNames, false);
  for (const TemporaryPlace& place : places) {
    if (!place.isDeclaration) continue;
    if (isDeclared[place.name]) return true;
    isDeclared[place.name] = true;
  }
  return false;
}

}  // namespace

void CallerText::cut(std::size_t length) {
  code.resize(length);
  while (!places.empty() && places.back().last >= length) places.pop_back();
}

void CallerText::append(const CallerText& from, std::wstring_view part) {
  if (!from.places.empty()) {
    const auto begin = static_cast<std::size_t>(part.data() - from.code.data());
    const auto isBefore = [](const TemporaryPlace& place, std::size_t at) { return place.last < at; };
    auto place = std::lower_bound(from.places.begin(), from.places.end(), begin, isBefore);
    for (; place != from.places.end() && place->last < begin + part.size(); ++place)
      places.push_back({code.size() + (place->last - begin), place->name, place->isDeclaration});
  }
  code += part;
}

std::size_t ShaderTemporaries::numberOf(const WString& name) {
  return names_.emplace(name, names_.size()).first->second;
}

void ShaderTemporaries::record(const WString& use, ShaderCallText call) {
  Call made;
  NameFinder names;
  std::size_t callBegin = 0;
  for (const ShaderCallText::Temporary& temporary : call.temporaries) {
    // A writer of the host's own may have changed what stands in front of its call.
    if (!isNamedAt(call.text, temporary.last, temporary.name)) continue;
    const std::size_t number = numberOf(temporary.name);
    made.places.push_back({temporary.last, number, true});
    names.add(temporary.name, number);
    callBegin = temporary.last + 1;
  }
  if (made.places.empty()) {
    calls_.erase(use);
    return;
  }
  names.find(made.places, call.text, callBegin);
  made.text = std::move(call.text);
  calls_[use] = std::move(made);
}

Array<TemporaryPlace> ShaderTemporaries::find(const Array<PlacedReplacement>& placed,
                                              const KeywordReplacePattern& pattern) const {
  const Array<WString>& replacements = pattern.getReplacements();
  const std::less<const WString*> isBefore;
  Array<TemporaryPlace> places;
  for (const PlacedReplacement& replaced : placed) {
    const WString* const first = replacements.data();
    if (isBefore(replaced.replacement, first) || !isBefore(replaced.replacement, first + replacements.size()))
      continue;
    const auto rule = static_cast<std::size_t>(replaced.replacement - first);
    const auto call = calls_.find(pattern.getKeywords()[rule]);
    if (call == calls_.end() || call->second.text != *replaced.replacement) continue;
    for (const TemporaryPlace& place : call->second.places)
      places.push_back({replaced.position + place.last, place.name, place.isDeclaration});
  }
  return places;
}

void appendWithCalls(CallerText& out, const KeywordReplacer& replacer, const ScopedText& text,
                     FragmentProfileInstance& instance) {
  const ShaderTemporaries* temporaries = instance.findShaderTemporaries();
  if (temporaries == nullptr) return replacer.appendReplaced(out.code, text);
  out.places =
      temporaries->find(replacer.appendAndLocate(out.code, text), instance.getShaderReplacePattern());
}

void numberTemporaries(CallerText& text, std::size_t from) {
  const std::size_t numNames = countNames(text.places);
  if (!hasRepeatedDeclaration(text.places, numNames)) return;

  BlockWalk walk(text.code, from);
  Declarations declarations(numNames);
  Array<std::size_t> numbers(numNames, 1);  // that the names have now
  WString out;
  std::size_t cursor = 0;
  for (const TemporaryPlace& place : text.places) {
    std::size_t& number = numbers[place.name];
    if (place.isDeclaration) number = walk.reach(place.last) ? declarations.add(place.name, walk) : 1;
    if (number == 1) continue;
    out.append(text.code, cursor, place.last + 1 - cursor);
    appendDecimal(out, number);
    cursor = place.last + 1;
    checkTextLength(out.size() + (text.code.size() - cursor));
  }
  out.append(text.code, cursor);
  text.code.swap(out);
}

}  // namespace TolmSDK::Graphics::sfg

#pragma once

// Many keywords found in one pass over a text.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "sfg/scoped_text.h"
#include "text/scan.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// The automaton of Aho and Corasick over the reversed keywords. It reads a text from its end to its start,
/// so that at each place it knows every keyword that starts there, the longest first. Building takes time and
/// memory in proportion to the keywords' characters, a scan time in proportion to the text and to what it
/// finds. Does not keep the keywords.
class KeywordAutomaton {
public:
  /// Up to so many keywords of up to that length are found as fast one by one.
  static constexpr std::size_t kFew = 8;
  static constexpr std::size_t kLong = 128;

  /// A keyword that was found.
  using Found = std::uint32_t;
  static constexpr Found kNothing = 0;

  /// Numbers are places in `keywords`. Of equal ones the last counts; those that no text can hold (empty, or
  /// with a NUL in them) are passed over.
  explicit KeywordAutomaton(const Array<std::wstring_view>& keywords);

  /// Calls `visit(position, found)` for every place of the text where a keyword starts, the last place first;
  /// `found` is the longest one. As ScopedText::find does it reads on behind the end of the text, up to the
  /// NUL there.
  template <class Visit>
  void scan(const ScopedText& text, Visit&& visit) const {
    if (text.empty()) return;
    const std::size_t limit = scan::lengthBeforeNul(text);
    std::size_t end = limit;
    if (limit == text.length) {
      while (end - limit + 1 < longest_ && text.text[end] != L'\0') ++end;
    }
    State state = kStart;
    for (std::size_t i = end; i-- > 0;) {
      state = next(state, text.text[i]);
      const Found found = states_[state].found;
      if (found != kNothing && i < limit) visit(i, found);
    }
  }

  /// Of what a scan found or shorter() answered.
  std::size_t keyword(Found found) const { return ends_[found].keyword; }
  std::size_t length(Found found) const { return ends_[found].length; }
  /// The next shorter keyword that starts at the same place; kNothing without one.
  Found shorter(Found found) const { return ends_[found].shorter; }
  std::size_t countStates() const noexcept { return states_.size(); }

private:
  using State = std::uint32_t;
  static constexpr State kStart = 0;

  /// A text, read backwards, that a keyword ends with. The states of a keyword stand one behind the other but
  /// where it shares those of another one: then it branches off.
  struct StateData {
    State fallback = kStart;  // the longest other state whose text this one's begins with, read backwards
    Found found = kNothing;   // the longest keyword that this text, read backwards, ends with
    wchar_t character = 0;    // the last one that was read
    bool follows = false;     // the state in front is the one that it was read in
    bool branches = false;    // states that stand elsewhere come behind this one too
  };
  struct Branch {
    State from = kStart;
    State to = kStart;  // kStart in a free place
    wchar_t character = 0;
  };
  /// Where a keyword is read to its first character.
  struct End {
    std::uint32_t keyword = 0;
    std::uint32_t length = 0;
    Found shorter = kNothing;
  };

  State step(State from, wchar_t character) const {
    if (from == kStart && codeOf(character) < starts_.size()) return starts_[codeOf(character)];
    const State behind = from + 1;
    if (behind < states_.size() && states_[behind].follows && states_[behind].character == character)
      return behind;
    return states_[from].branches ? findBranch(from, character) : kStart;
  }
  State next(State from, wchar_t character) const {
    for (;;) {
      const State to = step(from, character);
      if (to != kStart || from == kStart) return to;
      from = states_[from].fallback;
    }
  }
  static std::size_t codeOf(wchar_t character) noexcept {
    return static_cast<std::make_unsigned_t<wchar_t>>(character);
  }
  std::size_t homeOf(State from, wchar_t character) const noexcept;
  State findBranch(State from, wchar_t character) const;
  void addBranch(const Branch& branch);
  State addState(State from, wchar_t character);
  void add(std::wstring_view keyword, std::uint32_t number);
  void link();

  Array<StateData> states_;
  Array<Branch> branches_;  // a hash table with free places; at most one branch for each keyword
  std::size_t numBranches_ = 0;
  Array<End> ends_;                  // the first one is none
  std::array<State, 128> starts_{};  // the first steps of most keywords
  std::size_t longest_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg

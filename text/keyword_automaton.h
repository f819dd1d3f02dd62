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

  using State = std::uint32_t;
  static constexpr State kStart = 0;

  /// Numbers are places in `keywords`. Of equal ones the last counts; those that no text can hold (empty, or
  /// with a NUL in them) are passed over.
  explicit KeywordAutomaton(const Array<std::wstring_view>& keywords);

  /// Calls `visit(position, state)` for every place of the text where a keyword starts, the last place first;
  /// `state` is that of the longest one. As ScopedText::find does it reads on behind the end of the text, up
  /// to the NUL there.
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
      const State found = states_[state].found;
      if (found != kStart && i < limit) visit(i, found);
    }
  }

  /// Of a state that a scan visited or shorter() answered.
  std::size_t keyword(State state) const { return states_[state].keyword; }
  std::size_t length(State state) const { return states_[state].depth; }
  /// The next shorter keyword that starts at the same place; kStart without one.
  State shorter(State state) const { return states_[states_[state].fallback].found; }
  std::size_t countStates() const noexcept { return states_.size(); }

private:
  struct StateData {
    State fallback = kStart;  // the longest other state whose text this one's begins with, read backwards
    State found = kStart;     // this state or the first on the way of fallbacks at which a keyword ends
    std::uint32_t depth = 0;
    std::uint32_t keyword = 0;
    bool isKeyword = false;
  };
  struct Step {
    State from = kStart;
    State to = kStart;  // kStart in a free place
    wchar_t character = 0;
  };

  State step(State from, wchar_t character) const;
  State next(State from, wchar_t character) const {
    for (;;) {
      if (from == kStart && !mayStart(character)) return kStart;
      const State to = step(from, character);
      if (to != kStart || from == kStart) return to;
      from = states_[from].fallback;
    }
  }
  bool mayStart(wchar_t character) const {
    const auto code = static_cast<std::make_unsigned_t<wchar_t>>(character);
    return code >= starts_.size() || starts_[code];
  }
  std::size_t homeOf(State from, wchar_t character) const;
  void addStep(Step step);
  void add(std::wstring_view keyword, std::uint32_t number);
  void link();

  Array<StateData> states_;
  Array<Step> steps_;  // a hash table with free places
  Array<Step> made_;   // the same in the order in which they were made; only while the automaton is built
  std::array<bool, 128> starts_{};
  std::size_t longest_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg

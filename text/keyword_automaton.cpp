#include "text/keyword_automaton.h"

#include <algorithm>
#include <numeric>

#include "text/text_hash.h"

namespace TolmSDK::Graphics::sfg {

KeywordAutomaton::KeywordAutomaton(const Array<std::wstring_view>& keywords) {
  std::size_t characters = 0;
  for (const std::wstring_view keyword : keywords) characters += keyword.size();
  states_.reserve(characters + 1);
  ends_.reserve(keywords.size() + 1);
  states_.emplace_back();
  ends_.emplace_back();
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    if (scan::isSearchable(keywords[i])) add(keywords[i], static_cast<std::uint32_t>(i));
  }
  link();
}

std::size_t KeywordAutomaton::hashOf(State from, wchar_t character) noexcept {
  return static_cast<std::size_t>(
      mixHash(from, static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<wchar_t>>(character))));
}

KeywordAutomaton::State KeywordAutomaton::findBranch(State from, wchar_t character) const {
  const std::size_t found = branchesByStep_.find(hashOf(from, character), [&](std::size_t i) {
    return branches_[i].from == from && branches_[i].character == character;
  });
  return found != kNotFound ? branches_[found].to : kStart;
}

KeywordAutomaton::State KeywordAutomaton::addState(State from, wchar_t character) {
  const auto added = static_cast<State>(states_.size());
  states_.push_back({.character = character, .follows = from + 1 == added});
  if (from + 1 != added) {
    states_[from].branches = true;
    branches_.push_back({from, added, character});
    branchesByStep_.add(hashOf(from, character), branches_.size() - 1);
  }
  return added;
}

void KeywordAutomaton::add(std::wstring_view keyword, std::uint32_t number) {
  const auto last = static_cast<std::make_unsigned_t<wchar_t>>(keyword.back());
  if (last < starts_.size()) starts_[last] = true;
  longest_ = std::max(longest_, keyword.size());
  State state = kStart;
  for (auto character = keyword.rbegin(); character != keyword.rend(); ++character) {
    const State to = step(state, *character);
    state = to != kStart ? to : addState(state, *character);
  }
  Found& found = states_[state].found;
  if (found == kNothing) {
    found = static_cast<Found>(ends_.size());
    ends_.push_back({.length = static_cast<std::uint32_t>(keyword.size())});
  }
  ends_[found].keyword = number;
}

/// Gives every state its fallback, those of shorter texts first: each follows from that of the state before.
void KeywordAutomaton::link() {
  // The states in front of all, and how many there are of each length.
  Array<State> before(states_.size(), kStart);
  Array<std::uint32_t> depths(states_.size(), 0);
  Array<std::uint32_t> firstOfDepth(longest_ + 2, 0);
  auto branch = branches_.begin();
  for (State state = 1; state < states_.size(); ++state) {
    before[state] = states_[state].follows ? state - 1 : (branch++)->from;
    depths[state] = depths[before[state]] + 1;
    ++firstOfDepth[depths[state] + 1];
  }
  std::partial_sum(firstOfDepth.begin(), firstOfDepth.end(), firstOfDepth.begin());
  Array<State> byDepth(states_.size() - 1);
  for (State state = 1; state < states_.size(); ++state) byDepth[firstOfDepth[depths[state]]++] = state;

  for (const State number : byDepth) {
    StateData& state = states_[number];
    const State from = before[number];
    if (from != kStart) state.fallback = next(states_[from].fallback, state.character);
    const Found shorter = states_[state.fallback].found;
    if (state.found == kNothing) {
      state.found = shorter;
    } else {
      ends_[state.found].shorter = shorter;
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg

#include "text/keyword_automaton.h"

#include <algorithm>
#include <numeric>

namespace TolmSDK::Graphics::sfg {

KeywordAutomaton::KeywordAutomaton(const Array<std::wstring_view>& keywords) {
  states_.emplace_back();
  for (std::size_t i = 0; i < keywords.size(); ++i) {
    if (scan::isSearchable(keywords[i])) add(keywords[i], static_cast<std::uint32_t>(i));
  }
  link();
  made_ = {};
}

std::size_t KeywordAutomaton::homeOf(State from, wchar_t character) const {
  const auto code = static_cast<std::make_unsigned_t<wchar_t>>(character);
  const std::uint64_t key = (std::uint64_t{from} << 32) | std::uint64_t{code};
  return static_cast<std::size_t>((key * std::uint64_t{0x9e3779b97f4a7c15u}) >> 32) & (steps_.size() - 1);
}

KeywordAutomaton::State KeywordAutomaton::step(State from, wchar_t character) const {
  if (steps_.empty()) return kStart;
  for (std::size_t at = homeOf(from, character); steps_[at].to != kStart;
       at = (at + 1) & (steps_.size() - 1)) {
    if (steps_[at].from == from && steps_[at].character == character) return steps_[at].to;
  }
  return kStart;
}

void KeywordAutomaton::addStep(Step step) {
  constexpr std::size_t kSmallest = 64;
  const auto put = [this](const Step& entry) {
    std::size_t at = homeOf(entry.from, entry.character);
    while (steps_[at].to != kStart) at = (at + 1) & (steps_.size() - 1);
    steps_[at] = entry;
  };
  made_.push_back(step);
  if (2 * made_.size() > steps_.size()) {
    steps_.assign(std::max(kSmallest, 2 * steps_.size()), {});
    std::for_each(made_.begin(), made_.end(), put);
  } else {
    put(step);
  }
}

void KeywordAutomaton::add(std::wstring_view keyword, std::uint32_t number) {
  const auto last = static_cast<std::make_unsigned_t<wchar_t>>(keyword.back());
  if (last < starts_.size()) starts_[last] = true;
  longest_ = std::max(longest_, keyword.size());
  State state = kStart;
  for (auto character = keyword.rbegin(); character != keyword.rend(); ++character) {
    State to = step(state, *character);
    if (to == kStart) {
      to = static_cast<State>(states_.size());
      states_.push_back({.depth = states_[state].depth + 1});
      addStep({state, to, *character});
    }
    state = to;
  }
  states_[state].keyword = number;
  states_[state].isKeyword = true;
}

/// Gives every state its fallback, those of shorter texts first: each follows from that of the state before.
void KeywordAutomaton::link() {
  Array<std::uint32_t> firstOfDepth(longest_ + 2, 0);
  for (const Step& step : made_) ++firstOfDepth[states_[step.to].depth + 1];
  std::partial_sum(firstOfDepth.begin(), firstOfDepth.end(), firstOfDepth.begin());
  Array<Step> byDepth(made_.size());
  for (const Step& step : made_) byDepth[firstOfDepth[states_[step.to].depth]++] = step;

  for (const Step& step : byDepth) {
    StateData& state = states_[step.to];
    if (step.from != kStart) state.fallback = next(states_[step.from].fallback, step.character);
    state.found = state.isKeyword ? step.to : states_[state.fallback].found;
  }
}

}  // namespace TolmSDK::Graphics::sfg

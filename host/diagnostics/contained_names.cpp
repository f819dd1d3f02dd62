#include "host/diagnostics/contained_names.h"

#include <algorithm>
#include <utility>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kSampler = L"sampler_";

bool isSamplerOf(std::wstring_view identifier, std::wstring_view name) {
  return identifier.size() == kSampler.size() + name.size() && identifier.starts_with(kSampler) &&
         identifier.ends_with(name);
}

}  // namespace

ContainedNames::ContainedNames(std::vector<Name> names)
    : names_(std::move(names)), nextEqual_(names_.size()), foundIn_(names_.size()) {
  for (std::size_t i = 0; i < names_.size(); ++i) addName(i);
  linkSuffixes();
}

std::vector<ContainedNames::Found> ContainedNames::find(const Set<std::wstring_view>& identifiers) {
  ++search_;
  std::vector<Found> found;
  if (names_.empty()) return found;
  for (const std::wstring_view identifier : identifiers) {
    std::uint32_t state = 0;
    for (const wchar_t c : identifier) {
      state = step(state, c);
      // The names that end here. One that is found is not looked at again.
      for (std::uint32_t name = firstOpen(state); name != 0;) {
        const std::uint32_t next = states_[states_[name].suffix].ending;
        if (takeNames(name, identifier, found)) openOf(name) = next;
        name = firstOpen(next);
      }
    }
  }
  std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.name < b.name; });
  return found;
}

std::uint64_t ContainedNames::stepKey(std::uint32_t state, wchar_t c) {
  return (std::uint64_t{state} << 32) | static_cast<std::uint32_t>(c);
}

/// The state to which the step leads, or the not-found value.
std::size_t ContainedNames::findStep(std::uint64_t key) const {
  return next_.find(key, [&](std::size_t state) { return steps_[state] == key; });
}

void ContainedNames::addName(std::size_t name) {
  std::uint32_t state = 0;
  for (const wchar_t c : names_[name].text) {
    const std::uint64_t key = stepKey(state, c);
    const std::size_t known = findStep(key);
    state = static_cast<std::uint32_t>(known != kNotFound ? known : states_.size());
    if (known != kNotFound) continue;
    states_.emplace_back();
    steps_.push_back(key);
    next_.add(key, state);
  }
  nextEqual_[name] = std::exchange(states_[state].firstName, static_cast<std::uint32_t>(name + 1));
}

/// Shorter states first: a state's suffix follows from those of the states before it.
void ContainedNames::linkSuffixes() {
  std::vector<std::uint32_t> depths(states_.size());
  std::vector<std::uint32_t> order;
  for (std::uint32_t i = 1; i < states_.size(); ++i) {
    depths[i] = depths[steps_[i] >> 32] + 1;
    order.push_back(i);
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return depths[a] < depths[b]; });
  for (const std::uint32_t i : order) {
    State& state = states_[i];
    const auto parent = static_cast<std::uint32_t>(steps_[i] >> 32);
    const auto c = static_cast<wchar_t>(static_cast<std::uint32_t>(steps_[i]));
    if (parent != 0) state.suffix = step(states_[parent].suffix, c);
    state.ending = state.firstName != 0 ? i : states_[state.suffix].ending;
  }
}

std::uint32_t ContainedNames::step(std::uint32_t state, wchar_t c) const {
  for (;;) {
    const std::size_t found = findStep(stepKey(state, c));
    if (found != kNotFound) return static_cast<std::uint32_t>(found);
    if (state == 0) return 0;
    state = states_[state].suffix;
  }
}

std::uint32_t& ContainedNames::openOf(std::uint32_t state) {
  State& entry = states_[state];
  if (entry.search != search_) {
    entry.search = search_;
    entry.open = entry.ending;
  }
  return entry.open;
}

/// The longest name at the state's end that is not found yet; 0 for none. Shortens the way for those behind.
std::uint32_t ContainedNames::firstOpen(std::uint32_t state) {
  while (openOf(state) != state) {
    std::uint32_t& open = openOf(state);
    open = openOf(open);
    state = open;
  }
  return state;
}

/// Whether all names of the state are found.
bool ContainedNames::takeNames(std::uint32_t state, std::wstring_view identifier, std::vector<Found>& found) {
  bool hasOpen = false;
  for (std::uint32_t next = states_[state].firstName; next != 0; next = nextEqual_[next - 1]) {
    const std::size_t name = next - 1;
    const Name& sought = names_[name];
    if (foundIn_[name] == search_) continue;
    if (identifier.size() == sought.text.size() ||
        (sought.isSampler && isSamplerOf(identifier, sought.text))) {
      hasOpen = true;
      continue;
    }
    foundIn_[name] = search_;
    found.push_back({name, identifier});
  }
  return !hasOpen;
}

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// "Did you mean": the known name that is nearest to a mistyped one.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// Compares one mistyped name with any number of known ones. Letters that were changed, added, left out or
/// exchanged with their neighbour count one each, a letter of the other case counts less than any of them; a
/// name that takes more than a third of its letters (three at most) is another name, unless it only lacks
/// some (kMostAdded at most). Each comparison takes time in proportion to the names. Names of more than
/// kLongest bytes are near to nothing.
class NearName {
public:
  static constexpr std::size_t kLongest = 128;

  /// The texts given live as long as this.
  explicit NearName(std::string_view name);
  void offer(std::string_view known);
  /// The nearest of the names offered, of equally near ones the first; empty when none is near.
  std::string_view nearest() const noexcept { return near_.empty() ? longer_ : near_; }

private:
  static constexpr std::size_t kMostChanges = 3;
  static constexpr std::size_t kMostAdded = 5;
  static constexpr std::size_t kLeastCut = 5;
  using Letters = std::uint64_t;  ///< a bit for each that occurs

  static Letters lettersOf(std::string_view name);
  void offerLonger(std::string_view known);
  std::size_t countChanges(std::string_view known, std::size_t most) const;

  std::string_view name_;
  Letters letters_;
  std::size_t limit_ = 0;  ///< of the cost of what may still be offered
  std::string_view near_;
  std::string_view longer_;  ///< that only has more letters
};

/// The nearest name of many; empty when none is near.
template <class Names>
std::string_view nearestName(std::string_view name, const Names& known) {
  NearName search(name);
  for (const auto& other : known) search.offer(other);
  return search.nearest();
}

/// "; did you mean `octaves`?", or nothing for an empty name.
std::string didYouMean(std::string_view nearest);

/// Of a name that is not the only known one: that, if it is near, or what is known.
std::string knownNameHint(std::string_view name, std::string_view known);
/// Of a name that is not among the known ones: the nearest of them if it is near, and all of them, a dozen at
/// most.
std::string knownNamesHint(const std::string& name, const std::vector<std::string>& known);

}  // namespace TolmSDK::Graphics::sfg::host

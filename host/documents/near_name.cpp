#include "host/documents/near_name.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "sfg/host/suggest.h"
#include "text/ascii.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kMostNamesTold = 12;

/// What one change costs: more than letters of another case in the longest name.
constexpr std::size_t kChange = 2 * NearName::kLongest;
constexpr std::size_t kOtherCase = 1;
constexpr std::size_t kTooMuch = std::numeric_limits<std::size_t>::max() / 2;

std::size_t costOf(char a, char b) {
  if (a == b) return 0;
  return toLowerAscii(a) == toLowerAscii(b) ? kOtherCase : kChange;
}

}  // namespace

NearName::NearName(std::string_view name) : name_(name), letters_(lettersOf(name)) {
  if (name.empty() || name.size() > kLongest) return;
  const std::size_t changes = std::clamp<std::size_t>(name.size() / 3, 1, kMostChanges);
  limit_ = (changes + 1) * kChange;
}

NearName::Letters NearName::lettersOf(std::string_view name) {
  Letters letters = 0;
  for (const char c : name) letters |= Letters{1} << (static_cast<unsigned char>(toLowerAscii(c)) & 63);
  return letters;
}

void NearName::offer(std::string_view known) {
  if (limit_ == 0 || known.empty() || known.size() > kLongest) return;
  offerLonger(known);
  // What cannot be near is seen without a comparison: a change alters the length by one and two letters.
  const std::size_t most = (limit_ - 1) / kChange;
  const std::size_t longer = std::max(name_.size(), known.size());
  if (longer - std::min(name_.size(), known.size()) > most) return;
  if (static_cast<std::size_t>(std::popcount(letters_ ^ lettersOf(known))) > 2 * most) return;
  const std::size_t cost = countChanges(known, most);
  // Another name altogether: nothing of it stays.
  if (cost >= limit_ || cost / kChange >= longer) return;
  limit_ = cost;
  near_ = known;
  if (limit_ == 0) limit_ = 1;  // an equal name stays the nearest
}

/// Of a name that was cut short: "const" of "constant".
void NearName::offerLonger(std::string_view known) {
  if (name_.size() < kLeastCut || known.size() <= name_.size()) return;
  const std::size_t added = known.size() - name_.size();
  if (added > kMostAdded || (!longer_.empty() && longer_.size() <= known.size())) return;
  std::size_t found = 0;
  for (const char c : known) found += found < name_.size() && name_[found] == c ? 1 : 0;
  if (found == name_.size()) longer_ = known;
}

/// The cost of the cheapest changes that make one name of the other, along the diagonal only: `most` letters
/// to each side of it.
std::size_t NearName::countChanges(std::string_view known, std::size_t most) const {
  using Row = std::array<std::size_t, 2 * (kMostChanges + 1) + 3>;
  // Cell `k` of row `i` is for the first i letters of the name and the first i + k - most - 1 of the other;
  // the cells at both ends are walls.
  const std::size_t width = 2 * most + 3;
  Row before;
  Row last;
  Row row;
  before.fill(kTooMuch);
  last.fill(kTooMuch);
  for (std::size_t i = 0; i <= name_.size(); ++i) {
    row.fill(kTooMuch);
    for (std::size_t k = 1; k + 1 < width; ++k) {
      if (i + k < most + 1) continue;
      const std::size_t j = i + k - most - 1;
      if (j > known.size()) break;
      if (i == 0) {
        row[k] = j * kChange;
        continue;
      }
      std::size_t cost = last[k + 1] + kChange;
      cost = std::min(cost, row[k - 1] + kChange);
      if (j != 0) cost = std::min(cost, last[k] + costOf(name_[i - 1], known[j - 1]));
      const bool isExchanged = i > 1 && j > 1 && name_[i - 1] == known[j - 2] && name_[i - 2] == known[j - 1];
      if (isExchanged) cost = std::min(cost, before[k] + kChange);
      row[k] = cost;
    }
    before = last;
    last = row;
  }
  const std::size_t end = known.size() + most + 1 - name_.size();
  return end < width ? last[end] : kTooMuch;
}

std::string suggest(std::string_view name, std::span<const std::string> known) {
  return std::string(nearestName(name, known));
}

std::string didYouMean(std::string_view nearest) {
  if (nearest.empty()) return std::string();
  std::string text = "; did you mean `";
  text.append(nearest).append("`?");
  return text;
}

std::string knownNameHint(std::string_view name, std::string_view known) {
  NearName search(name);
  search.offer(known);
  return search.nearest().empty() ? "; known is `" + std::string(known) + "`" : didYouMean(known);
}

std::string knownNamesHint(const std::string& name, const std::vector<std::string>& known) {
  const std::string_view nearest = nearestName(name, known);
  std::string hint = didYouMean(nearest);
  if (known.empty()) return hint + "; none are known";
  hint += nearest.empty() ? "; known are " : " Known are ";
  for (std::size_t i = 0; i < known.size() && i < kMostNamesTold; ++i) {
    hint.append(i == 0 ? "`" : ", `").append(known[i]).append("`");
  }
  if (known.size() > kMostNamesTold) {
    hint.append(" and ").append(std::to_string(known.size() - kMostNamesTold)).append(" more");
  }
  return hint;
}

}  // namespace TolmSDK::Graphics::sfg::host

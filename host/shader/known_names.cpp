#include "host/shader/known_names.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kMostNamesTold = 12;
constexpr std::size_t kLongestCompared = 64;

std::string ticked(const std::string& text) { return "`" + text + "`"; }

/// How many characters must be changed, added or taken away.
std::size_t distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t k = 0; k <= b.size(); ++k) row[k] = k;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t k = 1; k <= b.size(); ++k) {
      const std::size_t changed = diagonal + (a[i - 1] == b[k - 1] ? 0 : 1);
      diagonal = row[k];
      row[k] = std::min({changed, row[k] + 1, row[k - 1] + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

std::string knownNamesHint(const std::string& name, const std::vector<std::string>& known) {
  const std::string* nearest = nullptr;
  std::size_t least = name.size() / 3 + 1;  // more changes make another name
  for (const std::string& other : known) {
    if (name.size() > kLongestCompared || other.size() > kLongestCompared) continue;
    const std::size_t changes = distance(name, other);
    if (changes <= least && (nearest == nullptr || changes < least)) {
      nearest = &other;
      least = changes;
    }
  }
  std::string hint = nearest != nullptr ? "; did you mean " + ticked(*nearest) + "?" : "";
  if (known.empty()) return hint + "; none are known";
  hint += nearest != nullptr ? " Known are " : "; known are ";
  for (std::size_t i = 0; i < known.size() && i < kMostNamesTold; ++i) {
    hint += (i == 0 ? "" : ", ") + ticked(known[i]);
  }
  if (known.size() > kMostNamesTold) {
    hint += " and " + std::to_string(known.size() - kMostNamesTold) + " more";
  }
  return hint;
}

}  // namespace TolmSDK::Graphics::sfg::host

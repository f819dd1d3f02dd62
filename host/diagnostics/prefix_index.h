#pragma once

// Texts that other texts begin with.

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Finds those of many texts with which a text begins, in time in proportion to it and to what is found,
/// however many texts there are. Immutable.
class PrefixIndex {
public:
  PrefixIndex() = default;
  explicit PrefixIndex(Map<WString, std::size_t> texts) : texts_(std::move(texts)) {
    for (const auto& [text, number] : texts_) entries_.push_back({text, number, linkOf(text)});
  }
  PrefixIndex(PrefixIndex&&) = default;
  PrefixIndex& operator=(PrefixIndex&&) = default;

  /// Calls `visit(prefix, number)` for each, the longest first.
  template <class Visit>
  void forEachPrefix(std::wstring_view text, Visit&& visit) const {
    // The greatest text that is not above this one begins with each of its prefixes.
    const auto behind =
        std::upper_bound(entries_.begin(), entries_.end(), text,
                         [](std::wstring_view sought, const Entry& entry) { return sought < entry.text; });
    std::size_t next =
        behind == entries_.begin() ? kNotFound : static_cast<std::size_t>(behind - entries_.begin()) - 1;
    if (next == kNotFound) return;
    const std::wstring_view nearest = entries_[next].text;
    const auto common = static_cast<std::size_t>(
        std::mismatch(nearest.begin(), nearest.end(), text.begin(), text.end()).first - nearest.begin());
    for (; next != kNotFound; next = entries_[next].shorter) {
      if (entries_[next].text.size() <= common) visit(entries_[next].text, entries_[next].number);
    }
  }

private:
  struct Entry {
    std::wstring_view text;
    std::size_t number = 0;
    std::size_t shorter = kNotFound;  ///< the longest other text that this one begins with
  };

  /// For a text behind all entries.
  std::size_t linkOf(std::wstring_view text) const {
    std::size_t link = entries_.empty() ? kNotFound : entries_.size() - 1;
    while (link != kNotFound && !text.starts_with(entries_[link].text)) link = entries_[link].shorter;
    return link;
  }

  Map<WString, std::size_t> texts_;  // which the entries show
  std::vector<Entry> entries_;       // in ascending order
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Names that occur inside identifiers.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "text/hash_index.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Searches identifiers for many names at once, in time in proportion to the identifiers, however many names
/// there are. The names' texts must live as long as this.
class ContainedNames {
public:
  struct Name {
    std::wstring_view text;  ///< not empty
    bool isSampler = false;  ///< `sampler_` and the name is made of the name on purpose
  };
  struct Found {
    std::size_t name = 0;  ///< its place among the names
    std::wstring_view inside;
  };

  /// Equal names need not be told apart: each gets the answer.
  explicit ContainedNames(std::vector<Name> names);

  /// For every name that occurs in an identifier other than itself, the first such identifier. In the order
  /// of the names.
  std::vector<Found> find(const Set<std::wstring_view>& identifiers);

private:
  /// A beginning of names; number 0 is the empty one.
  struct State {
    std::uint32_t suffix = 0;     ///< of its proper suffixes that are states, the longest
    std::uint32_t ending = 0;     ///< itself, if it is a name, else the longest suffix that is; 0 for none
    std::uint32_t firstName = 0;  ///< plus one; 0 for none
    std::uint32_t search = 0;     ///< the search for which `open` holds
    std::uint32_t open = 0;       ///< `ending`, without the names that are found
  };

  static std::uint64_t stepKey(std::uint32_t state, wchar_t c);
  std::size_t findStep(std::uint64_t key) const;
  void addName(std::size_t name);
  void linkSuffixes();
  std::uint32_t step(std::uint32_t state, wchar_t c) const;
  std::uint32_t& openOf(std::uint32_t state);
  std::uint32_t firstOpen(std::uint32_t state);
  bool takeNames(std::uint32_t state, std::wstring_view identifier, std::vector<Found>& found);

  std::vector<Name> names_;
  std::vector<std::uint32_t> nextEqual_;  ///< per name: the next of equal text, plus one
  std::vector<std::uint32_t> foundIn_;    ///< per name: the last search that found it
  std::vector<State> states_{1};
  std::vector<std::uint64_t> steps_{0};  ///< per state: the step that leads to it
  HashIndex next_;                       ///< states by these steps
  std::uint32_t search_ = 0;
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// The fragments that a walk over a graph has come to.

#include <cstddef>
#include <functional>

#include "sfg/shader_fragment.h"
#include "text/hash_index.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class FragmentInstance;

/// Fragments with their instances, as far as those are made.
class VisitedFragments {
public:
  /// Makes room for that many in all.
  void reserve(std::size_t count) {
    visited_.reserve(count);
    index_.reserve(count);
  }
  /// Its number; the not-found value when it was visited before.
  std::size_t insert(const IShaderFragment* fragment) {
    if (find(fragment) != kNotFound) return kNotFound;
    visited_.push_back({fragment, nullptr});
    index_.add(hashOf(fragment), visited_.size() - 1);
    return visited_.size() - 1;
  }
  void setInstance(std::size_t number, FragmentInstance* instance) { visited_[number].instance = instance; }
  /// Null for a fragment without one.
  FragmentInstance* getInstance(const IShaderFragment* fragment) const {
    const std::size_t number = find(fragment);
    return number != kNotFound ? visited_[number].instance : nullptr;
  }

private:
  struct Visited {
    const IShaderFragment* fragment;
    FragmentInstance* instance;
  };

  static std::size_t hashOf(const IShaderFragment* fragment) { return std::hash<const void*>()(fragment); }
  std::size_t find(const IShaderFragment* fragment) const {
    return index_.find(hashOf(fragment), [&](std::size_t i) { return visited_[i].fragment == fragment; });
  }

  Array<Visited> visited_;
  HashIndex index_;
};

}  // namespace TolmSDK::Graphics::sfg

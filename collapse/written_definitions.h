#pragma once

// Function definitions that a collapse has written.

#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>

#include "sfg/fragment_profile_instance.h"
#include "text/hash_index.h"
#include "text/text_store.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Definitions by their profile and by what else their text depends on (the key).
class WrittenDefinitions {
public:
  struct Definition {
    const AShaderFragmentProfile* profile;
    std::wstring_view key;
    WString rename;  // the name that the function was given instead of its own; empty when it kept that
  };

  /// An empty text that has the memory of former ones, for keys and names to look for.
  WString& soughtText() {
    soughtText_.clear();
    return soughtText_;
  }

  /// Null when there is none.
  const Definition* find(const AShaderFragmentProfile* profile, std::wstring_view key) const {
    const std::size_t known = index_.find(hashOf(profile, key), [&](std::size_t i) {
      return definitions_[i].profile == profile && definitions_[i].key == key;
    });
    return known != kNotFound ? &definitions_[known] : nullptr;
  }

  /// Ignored when it is known.
  void add(const AShaderFragmentProfile* profile, std::wstring_view key, WString rename) {
    if (find(profile, key) != nullptr) return;
    definitions_.push_back({profile, keys_.add(key), std::move(rename)});
    index_.add(hashOf(profile, key), definitions_.size() - 1);
  }

private:
  static std::size_t hashOf(const AShaderFragmentProfile* profile, std::wstring_view key) {
    return std::hash<const void*>()(profile) * 31 + std::hash<std::wstring_view>()(key);
  }

  Array<Definition> definitions_;
  TextStore keys_;
  HashIndex index_;
  WString soughtText_;
};

}  // namespace TolmSDK::Graphics::sfg

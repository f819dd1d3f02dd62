#pragma once

// Function definitions that a collapse has written.

#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>

#include "sfg/fragment_profile_instance.h"
#include "text/hash_index.h"
#include "text/text_hash.h"
#include "text/text_store.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Definitions by their profile, by the language that names the types of state, and by what else their text
/// depends on (the key).
class WrittenDefinitions {
public:
  struct Definition {
    const AShaderFragmentProfile* profile;
    const ILanguageTraits* language;
    std::wstring_view key;
    bool isWritten = false;
    WString rename = {};  // the name that the function was given instead of its own; empty when it kept that
  };

  /// An empty text that has the memory of former ones, for keys and names to look for.
  WString& soughtText() {
    soughtText_.clear();
    return soughtText_;
  }

  /// The definition of those, as one to be written when it is new. Valid until the next call.
  Definition& get(const AShaderFragmentProfile* profile, const ILanguageTraits* language,
                  std::wstring_view key) {
    const auto isSought = [&](std::size_t i) {
      const Definition& known = definitions_[i];
      return known.profile == profile && known.language == language && known.key == key;
    };
    // Mostly it is the one of the fragment before.
    if (last_ < definitions_.size() && isSought(last_)) return definitions_[last_];
    const std::size_t hash = hashOf(profile, key);
    last_ = index_.find(hash, isSought);
    if (last_ == kNotFound) {
      last_ = definitions_.size();
      definitions_.push_back({profile, language, keys_.add(key)});
      index_.add(hash, last_);
    }
    return definitions_[last_];
  }
  /// The one that get() answered last.
  Definition& last() { return definitions_[last_]; }

private:
  static std::size_t hashOf(const AShaderFragmentProfile* profile, std::wstring_view key) {
    return std::hash<const void*>()(profile) * 31 + hashOfText(key);
  }

  Array<Definition> definitions_;
  TextStore keys_;
  HashIndex index_;
  std::size_t last_ = 0;
  WString soughtText_;
};

}  // namespace TolmSDK::Graphics::sfg

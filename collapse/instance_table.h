#pragma once

// The fragment instances of a collapse.

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "sfg/fragment_instance.h"
#include "text/hash_index.h"
#include "text/text_store.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Instances by name, in the order in which they were made. None ever moves.
class InstanceTable {
public:
  struct Entry {
    explicit Entry(std::wstring_view text) : name(text) {}
    std::wstring_view name;
    FragmentInstance instance;
  };

  /// The instance of that name; a new, uninitialised one when there is none.
  FragmentInstance& get(std::wstring_view name) {
    const std::size_t hash = std::hash<std::wstring_view>()(name);
    const std::size_t known = byName_.find(hash, [&](std::size_t i) { return (*this)[i].name == name; });
    if (known != kNotFound) return (*this)[known].instance;
    if (size_ == blocks_.size() * kBlock) blocks_.push_back(std::make_unique<std::optional<Entry>[]>(kBlock));
    Entry& entry = blocks_.back()[size_ % kBlock].emplace(names_.add(name));
    byName_.add(hash, size_);
    ++size_;
    return entry.instance;
  }

  std::size_t size() const noexcept { return size_; }
  Entry& operator[](std::size_t number) { return *blocks_[number / kBlock][number % kBlock]; }

private:
  static constexpr std::size_t kBlock = 8;

  Array<std::unique_ptr<std::optional<Entry>[]>> blocks_;
  std::size_t size_ = 0;
  TextStore names_;
  HashIndex byName_;
};

}  // namespace TolmSDK::Graphics::sfg

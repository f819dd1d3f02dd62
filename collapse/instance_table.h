#pragma once

// The fragment instances of a collapse.

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string_view>

#include "collapse/arena.h"
#include "sfg/fragment_instance.h"
#include "text/hash_index.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// Instances by name, in the order in which they were made. None ever moves. The last one made is destroyed
/// first.
class InstanceTable {
public:
  struct Entry {
    explicit Entry(std::wstring_view text) : name(text) {}
    std::wstring_view name;
    FragmentInstance instance;
  };

  /// `arena` outlives the table.
  explicit InstanceTable(Arena& arena) : arena_(arena) {}
  ~InstanceTable() {
    while (size_ != 0) std::destroy_at(&(*this)[--size_]);
  }
  InstanceTable(const InstanceTable&) = delete;
  InstanceTable& operator=(const InstanceTable&) = delete;

  /// The instance of that name; a new, uninitialised one when there is none.
  FragmentInstance& get(std::wstring_view name) {
    const std::size_t hash = std::hash<std::wstring_view>()(name);
    FragmentInstance* known = find(name, hash);
    return known != nullptr ? *known : add(copyOf(name), hash);
  }
  /// The same for a name whose text lasts as long as the table.
  FragmentInstance& getByLastingName(std::wstring_view name) {
    const std::size_t hash = std::hash<std::wstring_view>()(name);
    FragmentInstance* known = find(name, hash);
    return known != nullptr ? *known : add(name, hash);
  }

  /// Makes room in the index for that many instances in all.
  void reserve(std::size_t count) { byName_.reserve(count); }
  std::size_t size() const noexcept { return size_; }
  Entry& operator[](std::size_t number) { return blocks_[number / kBlock][number % kBlock]; }

private:
  static constexpr std::size_t kBlock = 8;

  FragmentInstance* find(std::wstring_view name, std::size_t hash) {
    const std::size_t known = byName_.find(hash, [&](std::size_t i) { return (*this)[i].name == name; });
    return known != kNotFound ? &(*this)[known].instance : nullptr;
  }

  FragmentInstance& add(std::wstring_view name, std::size_t hash) {
    if (size_ == blocks_.size() * kBlock) {
      blocks_.push_back(reinterpret_cast<Entry*>(arena_.allocate(kBlock * sizeof(Entry), alignof(Entry))));
    }
    Entry& entry = *std::construct_at(&(*this)[size_], name);
    ++size_;
    byName_.add(hash, size_ - 1);
    return entry.instance;
  }

  std::wstring_view copyOf(std::wstring_view name) {
    const std::span<wchar_t> copy = arena_.makeArray<wchar_t>(name.size());
    std::copy(name.begin(), name.end(), copy.begin());
    return {copy.data(), copy.size()};
  }

  Arena& arena_;
  Array<Entry*> blocks_;
  std::size_t size_ = 0;
  HashIndex byName_;
};

}  // namespace TolmSDK::Graphics::sfg

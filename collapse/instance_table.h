#pragma once

// The fragment instances of a collapse.

#include <cstddef>
#include <forward_list>
#include <functional>
#include <memory>
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
    explicit Entry(const WString& text) : name(&text) {}
    const WString* name;
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
  FragmentInstance& get(const WString& name) {
    const std::size_t hash = hashOf(name);
    FragmentInstance* known = find(name, hash);
    return known != nullptr ? *known : add(names_.emplace_front(name), hash);
  }
  /// The same for a text that lasts as long as the table.
  FragmentInstance& getByLastingName(const WString& name) {
    const std::size_t hash = hashOf(name);
    FragmentInstance* known = find(name, hash);
    return known != nullptr ? *known : add(name, hash);
  }

  /// Makes room in the index for that many instances in all.
  void reserve(std::size_t count) { byName_.reserve(count); }
  std::size_t size() const noexcept { return size_; }
  Entry& operator[](std::size_t number) { return blocks_[number / kBlock][number % kBlock]; }

private:
  static constexpr std::size_t kBlock = 4;

  static std::size_t hashOf(std::wstring_view name) { return std::hash<std::wstring_view>()(name); }

  FragmentInstance* find(const WString& name, std::size_t hash) {
    const std::size_t known = byName_.find(hash, [&](std::size_t i) { return *(*this)[i].name == name; });
    return known != kNotFound ? &(*this)[known].instance : nullptr;
  }

  FragmentInstance& add(const WString& name, std::size_t hash) {
    if (size_ == blocks_.size() * kBlock) {
      blocks_.push_back(reinterpret_cast<Entry*>(arena_.allocate(kBlock * sizeof(Entry), alignof(Entry))));
    }
    Entry& entry = *std::construct_at(&(*this)[size_], name);
    ++size_;
    byName_.add(hash, size_ - 1);
    return entry.instance;
  }

  Arena& arena_;
  Array<Entry*> blocks_;
  std::size_t size_ = 0;
  HashIndex byName_;
  std::forward_list<WString, StlAllocator<WString>> names_;  // those that nobody else keeps
};

}  // namespace TolmSDK::Graphics::sfg

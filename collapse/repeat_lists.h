#pragma once

// What a second visit of an instance has to redo.

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class FragmentInstance;

/// Lists of the shader functions that write again at every visit, in order. Lists are made of lists, so that
/// one costs no more than what it adds to those of its sources. They are numbered; the empty one is 0.
class RepeatLists {
public:
  using Number = std::uint32_t;
  static constexpr Number kEmpty = 0;

  /// Either a whole list or the shader function that feeds an input of `caller`. Comes behind all that was
  /// visited before `time`; 0 for a list whose items say so themselves.
  struct Item {
    Number list = kEmpty;
    const FragmentInstance* caller = nullptr;
    std::size_t input = 0;
    std::uint32_t time = 0;
  };

  /// A list of these; for no items the empty one, for a single list that list itself.
  Number add(std::span<const Item> items) {
    if (items.empty()) return kEmpty;
    if (items.size() == 1 && items[0].list != kEmpty && items[0].time == 0) return items[0].list;
    items_.insert(items_.end(), items.begin(), items.end());
    ends_.push_back(items_.size());
    return static_cast<Number>(ends_.size() - 1);
  }

  /// What redoes a list at another time: its only item or, when it has several, the list. So every list in a
  /// list has several items, and redoing one costs no more than what it writes.
  Item again(Number list, std::uint32_t time) const {
    Item whole{list, nullptr, 0, time};
    if (size(list) == 1) whole = item(list, 0);
    whole.time = time;
    return whole;
  }

  std::size_t size(Number list) const { return list == kEmpty ? 0 : ends_[list] - ends_[list - 1]; }
  /// By value: adding a list moves them.
  Item item(Number list, std::size_t index) const { return items_[ends_[list - 1] + index]; }

  /// Forgets all lists but the empty one.
  void clear() {
    items_.clear();
    ends_.resize(1);
  }

private:
  Array<Item> items_;           // of all lists, one behind another
  Array<std::size_t> ends_{0};  // where each ends; the empty one comes first
};

}  // namespace TolmSDK::Graphics::sfg

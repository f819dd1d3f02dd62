#pragma once

// What a collapse is measured against: two plain programs that write the same text, or as much of it.

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// Text in one allocation.
struct PlainText {
  explicit PlainText(std::size_t size)
      : characters(std::make_unique_for_overwrite<wchar_t[]>(size)), length(size) {}
  std::wstring_view view() const { return {characters.get(), length}; }

  std::unique_ptr<wchar_t[]> characters;
  std::size_t length;
};

/// Copies a text and renames its identifiers: one pass, one allocation, each identifier looked up in a flat
/// hash table with linear probing. The table is made beforehand.
class Yardstick {
public:
  /// `text` outlives this.
  explicit Yardstick(std::wstring_view text);
  Yardstick(const Yardstick&) = delete;
  Yardstick& operator=(const Yardstick&) = delete;
  PlainText copy() const;

private:
  struct Slot {
    std::wstring_view name;  ///< empty: a free slot
    std::wstring_view written;
  };

  /// Index of the slot that holds the name, or of the free one where it belongs.
  std::size_t find(std::wstring_view name, std::size_t hash) const;

  std::wstring_view text_;
  std::vector<Slot> slots_;  // a power of two, at most half of them taken
  WString written_;
  std::size_t length_ = 0;
};

/// Writes a text of which everything is known: the identifiers and the runs between them, one after the
/// other, each distinct one stored once. It looks nothing up and decides nothing: a writer with less to do
/// would write another text.
class Emitter {
public:
  explicit Emitter(std::wstring_view text);
  Emitter(const Emitter&) = delete;
  Emitter& operator=(const Emitter&) = delete;
  PlainText print() const;

private:
  WString pool_;
  std::vector<std::wstring_view> pieces_;
  std::size_t length_;
};

}  // namespace TolmSDK::Graphics::sfg::benchmarks

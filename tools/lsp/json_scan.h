#pragma once

// JSON as it is while somebody types it: unfinished, with commas missing or left over.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/lsp/text_buffer.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// The values of a text, in its order. Whatever the text is, each bracket, string and word of it belongs to
/// one value or key; nothing is refused. Refers to the text. Takes time in proportion to it and no stack.
class JsonScan {
public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  /// Of a longer text the rest is not looked at.
  static constexpr std::size_t kLongest = 0xFFFFFFF0;

  enum class Kind : std::uint8_t {
    missing,  ///< behind a key; its span is empty
    object,
    array,
    string,
    word  ///< a number, `true`, or anything
  };

  /// Spans are those of literals with their quotation marks and brackets.
  struct Item {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
    std::uint32_t keyBegin = kNone;  ///< kNone for an element
    std::uint32_t keyEnd = kNone;
    std::uint32_t parent = kNone;
    std::uint32_t next = 0;  ///< number of the first item behind this one and what it holds
    Kind kind = Kind::missing;
    bool isClosed = true;   ///< its last bracket or quotation mark is there
    bool hasColon = false;  ///< stands behind the key

    bool hasKey() const noexcept { return keyBegin != kNone; }
    bool isContainer() const noexcept { return kind == Kind::object || kind == Kind::array; }
    std::uint32_t start() const noexcept { return hasKey() ? keyBegin : begin; }
    Span span() const noexcept { return {begin, end}; }
    Span keySpan() const noexcept { return {keyBegin, keyEnd}; }
  };

  explicit JsonScan(std::string_view text);

  std::string_view text() const noexcept { return text_; }
  const std::vector<Item>& items() const noexcept { return items_; }
  const Item& operator[](std::uint32_t item) const { return items_[item]; }

  /// The first object or array that lies in no other; kNone without one.
  std::uint32_t root() const noexcept { return root_; }
  /// Members or elements: `for (i = first(of); i != end(of); i = scan[i].next)`. None of kNone.
  std::uint32_t first(std::uint32_t container) const noexcept {
    return container == kNone ? 0 : container + 1;
  }
  std::uint32_t end(std::uint32_t container) const noexcept {
    return container == kNone ? 0 : items_[container].next;
  }
  /// The last member of that name; kNone for none.
  std::uint32_t find(std::uint32_t object, std::string_view key) const;
  /// The last item that begins at or in front of `offset`; kNone for none.
  std::uint32_t lastBefore(std::size_t offset) const;

  /// Escapes read; of what is no string, or cut off, what stands there.
  std::string keyOf(std::uint32_t item) const;
  std::string textOf(std::uint32_t item) const;
  /// The member's text; empty without a string under that name.
  std::string textOf(std::uint32_t object, std::string_view key) const;

private:
  class Scanner;

  std::string decoded(Span literal) const;

  std::string_view text_;
  std::vector<Item> items_;
  std::uint32_t root_ = kNone;
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

#pragma once

// A text that is edited, and places in it: as bytes, as an editor counts them, and as diagnostics do.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// In what an editor counts the characters of a line.
enum class Encoding { utf8, utf16, utf32 };

/// Counted from 0.
struct Position {
  std::size_t line = 0;
  std::size_t character = 0;

  bool operator==(const Position&) const = default;
};

struct Range {
  Position start;
  Position end;

  bool operator==(const Range&) const = default;
};

/// Bytes of a text.
struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  std::size_t size() const noexcept { return end - begin; }
  bool operator==(const Span&) const = default;
};

/// A text in UTF-8. Lines end with a line feed, a carriage return, or both. Places beyond a line's end mean
/// its end, places beyond the text the text's; inside a character its beginning.
class TextBuffer {
public:
  explicit TextBuffer(std::string text = {});

  const std::string& text() const noexcept { return text_; }
  std::size_t size() const noexcept { return text_.size(); }

  std::size_t offsetOf(Position position, Encoding encoding) const;
  Position positionOf(std::size_t offset, Encoding encoding) const;
  Span spanOf(const Range& range, Encoding encoding) const;
  Range rangeOf(Span span, Encoding encoding) const;
  /// The place of a diagnostic: counted from 1, columns in code points, lines by line feeds.
  std::size_t offsetOfPlace(std::size_t line, std::size_t column) const;

  /// Takes time in proportion to what lies behind.
  void replace(Span span, std::string_view text);

private:
  /// Characters in front of a place.
  struct Counts {
    std::size_t utf16 = 0;
    std::size_t utf32 = 0;

    std::size_t of(Encoding encoding) const noexcept { return encoding == Encoding::utf16 ? utf16 : utf32; }
    void add(char c) noexcept;
  };

  Span lineAt(std::size_t line) const;
  std::size_t lineOf(std::size_t offset) const;
  void appendLines(std::vector<std::size_t>& lines, std::size_t begin, std::size_t end) const;
  std::size_t characterStart(std::size_t begin, std::size_t offset) const;
  std::size_t advance(Span line, std::size_t units, Encoding encoding) const;
  std::size_t unitsBetween(std::size_t begin, std::size_t end, Encoding encoding) const;
  const Counts& countsAt(std::size_t stride) const;
  Counts countsBefore(std::size_t offset) const;

  std::string text_;
  std::vector<std::size_t> lines_;          ///< where each begins
  mutable std::vector<std::size_t> feeds_;  ///< the same by line feeds alone; empty while nobody asked
  mutable std::vector<Counts> counts_;      ///< in front of every so many bytes, as far as was asked
};

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

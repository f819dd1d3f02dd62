#include "tools/lsp/text_buffer.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

constexpr std::size_t kStride = 1024;

}  // namespace

void TextBuffer::Counts::add(char c) noexcept {
  if (isContinuation(c)) return;
  ++utf32;
  utf16 += static_cast<unsigned char>(c) >= 0xF0 ? 2 : 1;
}

TextBuffer::TextBuffer(std::string text) : text_(std::move(text)), lines_{0} {
  appendLines(lines_, 0, text_.size());
}

/// The lines that begin behind the characters of [begin, end).
void TextBuffer::appendLines(std::vector<std::size_t>& lines, std::size_t begin, std::size_t end) const {
  for (std::size_t at = begin; at < end; ++at) {
    const bool isPair = text_[at] == '\r' && at + 1 < text_.size() && text_[at + 1] == '\n';
    if (text_[at] == '\n' || (text_[at] == '\r' && !isPair)) lines.push_back(at + 1);
  }
}

/// Without its end.
Span TextBuffer::lineAt(std::size_t line) const {
  const std::size_t begin = lines_[line];
  std::size_t end = line + 1 < lines_.size() ? lines_[line + 1] : text_.size();
  if (line + 1 < lines_.size()) {
    while (end > begin && (text_[end - 1] == '\n' || text_[end - 1] == '\r')) --end;
  }
  return {begin, end};
}

std::size_t TextBuffer::lineOf(std::size_t offset) const {
  const auto next = std::upper_bound(lines_.begin(), lines_.end(), offset);
  return static_cast<std::size_t>(next - lines_.begin()) - 1;
}

/// The beginning of the character that holds the byte.
std::size_t TextBuffer::characterStart(std::size_t begin, std::size_t offset) const {
  const std::size_t least = offset > begin + 3 ? offset - 3 : begin;
  std::size_t start = offset;
  while (start > least && start < text_.size() && isContinuation(text_[start])) --start;
  return start;
}

/// Counts are kept as far as anybody asked, so that far places in long lines are found again quickly.
const TextBuffer::Counts& TextBuffer::countsAt(std::size_t stride) const {
  if (counts_.empty()) counts_.emplace_back();
  while (counts_.size() <= stride) {
    Counts counts = counts_.back();
    const std::size_t begin = (counts_.size() - 1) * kStride;
    for (std::size_t at = begin; at < begin + kStride; ++at) counts.add(text_[at]);
    counts_.push_back(counts);
  }
  return counts_[stride];
}

TextBuffer::Counts TextBuffer::countsBefore(std::size_t offset) const {
  Counts counts = countsAt(offset / kStride);
  for (std::size_t at = offset / kStride * kStride; at < offset; ++at) counts.add(text_[at]);
  return counts;
}

std::size_t TextBuffer::unitsBetween(std::size_t begin, std::size_t end, Encoding encoding) const {
  if (encoding == Encoding::utf8) return end - begin;
  if (end - begin > kStride) return countsBefore(end).of(encoding) - countsBefore(begin).of(encoding);
  Counts counts;
  for (std::size_t at = begin; at < end; ++at) counts.add(text_[at]);
  return counts.of(encoding);
}

/// The character that holds unit number `units` of a line.
std::size_t TextBuffer::advance(Span line, std::size_t units, Encoding encoding) const {
  if (encoding == Encoding::utf8)
    return characterStart(line.begin, line.begin + std::min(units, line.size()));
  // Far on by strides: the last one with fewer characters in front of it.
  std::size_t at = line.begin;
  std::size_t counted = 0;
  if (line.size() > kStride && units > kStride) {
    const std::size_t before = countsBefore(line.begin).of(encoding);
    std::size_t low = line.begin / kStride;
    std::size_t high = line.end / kStride;
    while (low < high) {
      const std::size_t middle = low + (high - low + 1) / 2;
      if (countsAt(middle).of(encoding) <= before + units) {
        low = middle;
      } else {
        high = middle - 1;
      }
    }
    if (low * kStride > line.begin) {
      at = low * kStride;
      counted = countsAt(low).of(encoding) - before;
      while (at < line.end && isContinuation(text_[at])) ++at;
    }
  }
  for (Counts one; at < line.end; one = Counts()) {
    one.add(text_[at]);
    counted += one.of(encoding);
    if (counted > units) break;
    ++at;
    while (at < line.end && isContinuation(text_[at])) ++at;
  }
  return at;
}

std::size_t TextBuffer::offsetOf(Position position, Encoding encoding) const {
  if (position.line >= lines_.size()) return text_.size();
  return advance(lineAt(position.line), position.character, encoding);
}

Position TextBuffer::positionOf(std::size_t offset, Encoding encoding) const {
  offset = std::min(offset, text_.size());
  const std::size_t line = lineOf(offset);
  const std::size_t begin = lines_[line];
  return {line, unitsBetween(begin, characterStart(begin, offset), encoding)};
}

Span TextBuffer::spanOf(const Range& range, Encoding encoding) const {
  const std::size_t begin = offsetOf(range.start, encoding);
  return {begin, std::max(begin, offsetOf(range.end, encoding))};
}

Range TextBuffer::rangeOf(Span span, Encoding encoding) const {
  return {positionOf(span.begin, encoding), positionOf(span.end, encoding)};
}

std::size_t TextBuffer::offsetOfPlace(std::size_t line, std::size_t column) const {
  if (feeds_.empty()) {
    feeds_.push_back(0);
    for (std::size_t at = text_.find('\n'); at != text_.npos; at = text_.find('\n', at + 1))
      feeds_.push_back(at + 1);
  }
  if (line == 0) return 0;
  if (line > feeds_.size()) return text_.size();
  const std::size_t begin = feeds_[line - 1];
  const std::size_t end = line < feeds_.size() ? feeds_[line] - 1 : text_.size();
  return advance({begin, end}, column == 0 ? 0 : column - 1, Encoding::utf32);
}

void TextBuffer::replace(Span span, std::string_view text) {
  span.begin = std::min(span.begin, text_.size());
  span.end = std::clamp(span.end, span.begin, text_.size());
  text_.replace(span.begin, span.size(), text);
  feeds_.clear();
  if (counts_.size() > span.begin / kStride + 1) counts_.resize(span.begin / kStride + 1);

  // Whether a line begins behind a character depends on that and on the next one.
  const std::size_t begin = span.begin == 0 ? 0 : span.begin - 1;
  std::vector<std::size_t> inside;
  appendLines(inside, begin, span.begin + text.size());
  const auto first = std::upper_bound(lines_.begin(), lines_.end(), begin);
  const auto last = std::upper_bound(first, lines_.end(), span.end);
  for (auto line = last; line != lines_.end(); ++line) *line = *line - span.size() + text.size();
  const auto place = first - lines_.begin();
  lines_.erase(first, last);
  lines_.insert(lines_.begin() + place, inside.begin(), inside.end());
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

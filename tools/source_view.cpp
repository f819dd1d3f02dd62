#include "tools/source_view.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostFiles = 8;
constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 28;
constexpr std::size_t kTab = 4;
/// Of a longer line so many cells are shown in front of the caret and behind it.
constexpr std::size_t kCellsBefore = 60;
constexpr std::size_t kCellsBehind = 40;
constexpr std::string_view kCut = "..";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// A character as it is shown: its bytes, and how many cells of a terminal it takes.
struct Shown {
  std::string text;
  std::size_t cells = 1;
};

struct CodePoint {
  char32_t value = 0xFFFD;
  std::size_t bytes = 1;
};

/// The code point at the start of the text; U+FFFD for bytes that are none.
CodePoint firstOf(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t bytes = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
  if (bytes == 0 || lead > 0xF4 || bytes > text.size()) return {};
  char32_t value = lead & (0xFFu >> (bytes + 1));
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {};
    value = (value << 6) | (byte(i) & 0x3F);
  }
  const char32_t least = bytes == 4 ? 0x10000 : bytes == 3 ? 0x800 : 0x80;
  if (value < least || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return {};
  return {value, bytes};
}

using Range = std::pair<char32_t, char32_t>;
/// East Asian wide characters and pictures take two cells.
constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0x33FF}, {0x3400, 0x4DBF},
                           {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},  {0xAC00, 0xD7A3}, {0xF900, 0xFAFF},
                           {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
                           {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
/// Accents and joiners take none.
constexpr Range kMarks[] = {
    {0x0300, 0x036F}, {0x200B, 0x200F}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
/// Controls, and what turns the direction of a line.
constexpr Range kHidden[] = {
    {0x0000, 0x001F}, {0x007F, 0x009F}, {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF}};

template <std::size_t kCount>
bool isIn(const Range (&ranges)[kCount], char32_t value) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [&](const Range& range) { return value >= range.first && value <= range.second; });
}

Shown shownAs(std::string_view bytes, char32_t value, std::size_t cell) {
  if (value == U'\t') {
    const std::size_t blanks = kTab - cell % kTab;
    return {std::string(blanks, ' '), blanks};
  }
  if (value == 0xFFFD || isIn(kHidden, value)) return {std::string(kReplacement), 1};
  const std::size_t cells = isIn(kMarks, value) ? 0 : isIn(kWide, value) ? 2 : 1;
  return {std::string(bytes), cells};
}

}  // namespace

std::string markedLine(std::string_view text, std::size_t line, std::size_t column) {
  if (text.ends_with('\r')) text.remove_suffix(1);
  // In cells: where each character starts, up to a little behind the caret.
  std::vector<std::pair<std::size_t, Shown>> characters;
  std::size_t cell = 0;
  std::size_t caret = 0;
  std::size_t count = 0;
  while (!text.empty() && (count < column || cell < caret + kCellsBehind)) {
    if (++count == column) caret = cell;
    const CodePoint point = firstOf(text);
    Shown shown = shownAs(text.substr(0, point.bytes), point.value, cell);
    text.remove_prefix(point.bytes);
    const std::size_t width = shown.cells;
    characters.emplace_back(cell, std::move(shown));
    cell += width;
  }
  if (count < column) caret = cell;  // behind the end
  const bool isCutBehind = !text.empty();
  const std::size_t start = caret > kCellsBefore + kCut.size() ? caret - kCellsBefore : 0;

  std::string source = start != 0 ? std::string(kCut) : std::string();
  std::size_t caretCell = caret - start + source.size();
  bool isFirst = true;
  for (const auto& [at, shown] : characters) {
    if (at < start) continue;
    // A wide character may reach over the start.
    if (std::exchange(isFirst, false)) caretCell -= std::min(caretCell, at - start);
    source += shown.text;
  }
  if (isCutBehind) source += kCut;
  const std::string number = std::to_string(line);
  const std::string margin = std::string(number.size() < 5 ? 5 - number.size() : 0, ' ') + number;
  std::string marked = margin + " | ";
  marked.append(source).append("\n").append(margin.size(), ' ').append(" | ");
  return marked.append(caretCell, ' ').append("^\n");
}

const SourceView::File& SourceView::read(const std::string& file) {
  const auto known = files_.find(file);
  if (known != files_.end()) return known->second;
  if (files_.size() >= kMostFiles) files_.erase(files_.begin());
  File& read = files_[file];
  std::error_code error;
  if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > kLargestFile) return read;
  std::ifstream stream(file, std::ios::binary);
  read.text.assign(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (read.text.starts_with(kByteOrderMark)) read.text.erase(0, kByteOrderMark.size());
  read.lineStarts.push_back(0);
  for (std::size_t end = read.text.find('\n'); end != std::string::npos;
       end = read.text.find('\n', end + 1)) {
    read.lineStarts.push_back(end + 1);
  }
  return read;
}

std::string SourceView::show(const std::string& file, std::size_t line, std::size_t column) {
  if (file.empty() || line == 0 || column == 0) return std::string();
  const File& source = read(file);
  if (line > source.lineStarts.size()) return std::string();
  const std::string_view rest = std::string_view(source.text).substr(source.lineStarts[line - 1]);
  return markedLine(rest.substr(0, rest.find('\n')), line, column);
}

}  // namespace TolmSDK::Graphics::sfg::tools

#include "host/origins/include_places.h"

#include <algorithm>

#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

IncludePlaces::IncludePlaces(const SourceTexts& texts, const WString& name) {
  for (const std::string& file : texts.includeFiles(name)) add(file, *texts.find(file));
}

void IncludePlaces::add(const std::string& name, const std::string& bytes) {
  constexpr std::wstring_view kDirective = L"#include";
  File file{name, fromUtf8(bytes), {0}};
  const std::wstring_view text = file.text;
  for (std::size_t end = text.find(L'\n'); end != text.npos; end = text.find(L'\n', end + 1))
    file.lines.push_back(end + 1);

  std::size_t cursor = 0;
  const auto addPiece = [&](std::size_t end) {
    if (end > cursor) pieces_.push_back({size_, files_.size(), cursor});
    size_ += end - cursor;
  };
  for (std::size_t at = text.find(kDirective); at != text.npos; at = text.find(kDirective, cursor)) {
    addPiece(at);
    cursor = std::min(text.find(L'\n', at), text.size() - 1) + 1;
  }
  addPiece(text.size());
  files_.push_back(std::move(file));
}

IncludePlaces::Place IncludePlaces::find(std::size_t offset) const {
  const auto next = std::upper_bound(pieces_.begin(), pieces_.end(), offset,
                                     [](std::size_t at, const Piece& piece) { return at < piece.begin; });
  if (next == pieces_.begin() || offset >= size_) return {};
  const Piece& piece = *(next - 1);
  const File& file = files_[piece.file];
  const std::size_t place = piece.place + (offset - piece.begin);
  const auto line = std::upper_bound(file.lines.begin(), file.lines.end(), place) - 1;
  return {file.name, {static_cast<std::size_t>(line - file.lines.begin()) + 1, place - *line + 1}};
}

}  // namespace TolmSDK::Graphics::sfg::host

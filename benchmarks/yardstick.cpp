#include "benchmarks/yardstick.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cwchar>
#include <unordered_map>

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

constexpr std::size_t kHashStart = 0xcbf29ce484222325;
constexpr std::size_t kHashFactor = 0x100000001b3;
constexpr wchar_t kSuffix = L'_';

bool startsIdentifier(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; }
bool continuesIdentifier(wchar_t c) { return startsIdentifier(c) || (c >= L'0' && c <= L'9'); }

/// Hands out the identifiers of a text, with their hashes, and the runs of other characters between them.
template <class TakeIdentifier, class TakeRun>
void cut(std::wstring_view text, const TakeIdentifier& takeIdentifier, const TakeRun& takeRun) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    if (startsIdentifier(text[at])) {
      std::size_t hash = kHashStart;
      for (; end < text.size() && continuesIdentifier(text[end]); ++end) {
        hash = (hash ^ static_cast<std::size_t>(text[end])) * kHashFactor;
      }
      takeIdentifier(text.substr(at, end - at), hash ^ (hash >> 32));
    } else {
      while (end < text.size() && !startsIdentifier(text[end])) ++end;
      takeRun(text.substr(at, end - at));
    }
    at = end;
  }
}

void append(wchar_t*& out, std::wstring_view piece) {
  std::wmemcpy(out, piece.data(), piece.size());
  out += piece.size();
}

}  // namespace

Yardstick::Yardstick(std::wstring_view text) : text_(text) {
  std::unordered_map<std::wstring_view, std::size_t> hashes;
  std::size_t characters = 0;
  cut(
      text,
      [&](std::wstring_view name, std::size_t hash) {
        if (hashes.try_emplace(name, hash).second) characters += name.size() + 1;
        length_ += name.size() + 1;
      },
      [&](std::wstring_view run) { length_ += run.size(); });
  slots_.resize(std::bit_ceil(2 * hashes.size() + 1));
  written_.reserve(characters);
  for (const auto& [name, hash] : hashes) {
    const std::size_t start = written_.size();
    (written_ += name) += kSuffix;
    slots_[find(name, hash)] = {name, std::wstring_view(written_).substr(start)};
  }
}

std::size_t Yardstick::find(std::wstring_view name, std::size_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = hash & mask;
  while (!slots_[at].name.empty() && slots_[at].name != name) at = (at + 1) & mask;
  return at;
}

PlainText Yardstick::copy() const {
  PlainText text(length_);
  wchar_t* out = text.characters.get();
  cut(
      text_, [&](std::wstring_view name, std::size_t hash) { append(out, slots_[find(name, hash)].written); },
      [&](std::wstring_view run) { append(out, run); });
  return text;
}

Emitter::Emitter(std::wstring_view text) : length_(text.size()) {
  std::unordered_map<std::wstring_view, std::size_t> starts;
  std::vector<std::pair<std::size_t, std::size_t>> places;
  const auto take = [&](std::wstring_view piece) {
    const auto [found, isNew] = starts.try_emplace(piece, pool_.size());
    if (isNew) pool_ += piece;
    places.emplace_back(found->second, piece.size());
  };
  cut(
      text, [&](std::wstring_view name, std::size_t) { take(name); }, take);
  for (const auto& [start, length] : places) {
    pieces_.push_back(std::wstring_view(pool_).substr(start, length));
  }
}

PlainText Emitter::print() const {
  PlainText text(length_);
  wchar_t* out = text.characters.get();
  for (const std::wstring_view piece : pieces_) append(out, piece);
  return text;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

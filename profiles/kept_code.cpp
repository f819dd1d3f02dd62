#include "profiles/kept_code.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg {

KeptCode::Answer KeptCode::find(std::wstring_view key, std::size_t hash) {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++questions_;
  if (Piece* piece = findPiece(key, hash)) {
    piece->lastQuestion = questions_;
    return {piece->snippet, false};
  }
  if (wasAsked(hash)) return {nullptr, true};
  noteHash(hash);
  return {};
}

void KeptCode::keep(std::wstring_view key, std::size_t hash,
                    const std::shared_ptr<const CodeSnippet>& snippet) {
  const std::size_t characters = key.size() + snippet->getCode().size();
  if (characters > kMostCharacters) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  // Another thread may have kept it meanwhile.
  if (findPiece(key, hash) != nullptr) return;
  if (!hasRoom(characters)) dropIdle();
  if (!hasRoom(characters)) return;
  pieces_.push_back({hash, WString(key), snippet, questions_});
  characters_ += characters;
}

KeptCode::Piece* KeptCode::findPiece(std::wstring_view key, std::size_t hash) {
  const auto found = std::find_if(pieces_.begin(), pieces_.end(),
                                  [&](const Piece& piece) { return piece.hash == hash && piece.key == key; });
  return found != pieces_.end() ? &*found : nullptr;
}

void KeptCode::dropIdle() {
  const auto isIdle = [this](const Piece& piece) { return questions_ - piece.lastQuestion >= kLongWhile; };
  pieces_.erase(std::remove_if(pieces_.begin(), pieces_.end(), isIdle), pieces_.end());
  characters_ = 0;
  for (const Piece& piece : pieces_) characters_ += piece.countCharacters();
}

bool KeptCode::wasAsked(std::size_t hash) const {
  return std::find(askedHashes_.begin(), askedHashes_.end(), hash) != askedHashes_.end();
}

void KeptCode::noteHash(std::size_t hash) {
  if (askedHashes_.size() < kMostPieces) {
    askedHashes_.push_back(hash);
  } else {
    askedHashes_[numAsked_ % kMostPieces] = hash;
  }
  ++numAsked_;
}

}  // namespace TolmSDK::Graphics::sfg

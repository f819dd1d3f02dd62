#pragma once

// What the texts of a profile became, kept for the next use with the same names and rules.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <tuple>
#include <utility>

#include "sfg/code_snippet.h"
#include "sfg/fragment_profile_instance.h"
#include "sfg/keyword_replace.h"
#include "sfg/shader_fragment_profile_base.h"
#include "text/text_hash.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

/// All that a piece of code depends on beside the texts of its profile, as one text.
class CodeKey {
public:
  void reserve(std::size_t length) { text_.reserve(length); }
  /// Different texts one behind the other stay different.
  void add(std::wstring_view text) {
    addNumber(text.size());
    text_ += text;
  }
  void addNumber(std::size_t number) {
    // Characters of 16 bits hold numbers up to the size limit of texts.
    text_ += static_cast<wchar_t>(number & 0xffff);
    text_ += static_cast<wchar_t>((number >> 16) & 0xffff);
  }
  /// For one more text, which is appended behind all others.
  WString& end() noexcept { return text_; }

  const WString& text() const noexcept { return text_; }
  std::size_t hash() const noexcept { return hashOfText(text_); }

private:
  WString text_;
};

/// Pieces of code by their keys. A piece is kept when it is made for the second time, as long as there is
/// room: most are made once. Of a full store a piece goes that was not asked for in a long while, so that
/// pieces which are too many for it do not drive each other out. Safe in several threads.
class KeptCode {
public:
  static constexpr std::size_t kMostPieces = 64;
  static constexpr std::size_t kMostCharacters = std::size_t{1} << 16;  ///< of all keys and pieces
  static constexpr std::uint64_t kLongWhile = 4096;                     ///< in questions

  struct Answer {
    std::shared_ptr<const CodeSnippet> snippet;  ///< null when there is none
    bool isWanted = false;                       ///< it was asked for before, and is to be kept
  };

  /// A piece of that hash was asked for already.
  explicit KeptCode(std::size_t firstHash) { noteHash(firstHash); }

  Answer find(std::wstring_view key, std::size_t hash);
  /// Ignored when there is no room or when it is there.
  void keep(std::wstring_view key, std::size_t hash, const std::shared_ptr<const CodeSnippet>& snippet);

private:
  struct Piece {
    std::size_t hash;
    WString key;
    std::shared_ptr<const CodeSnippet> snippet;
    std::uint64_t lastQuestion;

    std::size_t countCharacters() const { return key.size() + snippet->getCode().size(); }
  };

  Piece* findPiece(std::wstring_view key, std::size_t hash);
  bool hasRoom(std::size_t characters) const {
    return pieces_.size() < kMostPieces && characters <= kMostCharacters - characters_;
  }
  void dropIdle();
  bool wasAsked(std::size_t hash) const;
  void noteHash(std::size_t hash);

  std::mutex mutex_;
  Array<Piece> pieces_;
  std::size_t characters_ = 0;
  std::uint64_t questions_ = 0;
  Array<std::size_t> askedHashes_;  // the last ones that found nothing, up to kMostPieces
  std::size_t numAsked_ = 0;
};

/// Whether the code follows from the profile's texts and the keyword rules. Spans and temporaries are not
/// told by the rules; many rules make a key that is as long as the code.
inline bool canKeepCode(const KeywordReplacer& rules, const FragmentProfileInstance& instance) {
  constexpr std::size_t kMostRules = 64;
  return !rules.hasPositionalRules() && rules.countRules() <= kMostRules &&
         instance.findShaderTemporaries() == nullptr;
}

inline void addRules(CodeKey& key, const KeywordReplacer& rules) {
  key.addNumber(rules.countRules());
  for (std::size_t i = 0; i < rules.countRules(); ++i) {
    key.add(rules.getKeyword(i));
    key.add(rules.getReplacement(i));
  }
}

/// The parse of a text; null when it holds no symbol.
inline std::unique_ptr<CodeSnippet> parseCode(const WString& code) {
  auto snippet = std::make_unique<CodeSnippet>();
  snippet->addCode(code);
  snippet->parse();
  return snippet->getNumSymbols() != 0 ? std::move(snippet) : nullptr;
}

/// Constructs `out`, with these values, over the code that the profile kept under the key or over what
/// `make(isKept)` answers, a unique pointer; leaves `out` untouched when that is null. Without a key nothing
/// is kept.
template <class Make>
void constructCode(CodeSnippetInstance& out, const AShaderFragmentProfile& profile, const CodeKey* key,
                   const Array<WString>& values, Make&& make) {
  std::shared_ptr<const CodeSnippet> kept;
  bool isWanted = false;
  if (key != nullptr) std::tie(kept, isWanted) = profile.findKeptCode(*key);
  if (!kept) {
    std::unique_ptr<CodeSnippet> made = make(isWanted);
    if (!made) return;
    if (!isWanted) return out.construct(made.release(), values, true);
    kept = std::move(made);
    profile.keepCode(*key, kept);
  }
  out.construct(std::move(kept), values);
}

}  // namespace TolmSDK::Graphics::sfg

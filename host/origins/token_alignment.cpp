#include "host/origins/token_alignment.h"

#include <algorithm>
#include <map>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
constexpr std::wstring_view kEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";

bool isBuiltin(std::wstring_view name) {
  return name == L"sfg_isConnected" || name == L"sfg_isNotConnected" || name == L"sfg_isFinalOutput";
}

/// A variable that the call of a shader function declares: "NAME_temp", perhaps with a number.
bool isTemporary(std::wstring_view name) {
  const std::size_t end = name.find_last_not_of(L"0123456789") + 1;
  return name.substr(0, end).ends_with(L"_temp");
}

class Aligner {
public:
  Aligner(const TokenRange& source, const TokenRange& text, std::size_t numLights)
      : source_(source), text_(text), numLights_(numLights), i_(source.first), j_(text.first),
        found_(text.last - text.first) {}

  std::vector<TokenSource> align() {
    while (j_ < text_.last) {
      if (endsBlock() || step()) continue;
      resynchronise();
    }
    return std::move(found_);
  }

private:
  /// A block between light markers whose copies are being aligned.
  struct Block {
    std::size_t first;   // source token behind the begin marker
    std::size_t end;     // of the end marker
    std::size_t copies;  // still to come, with the present one
  };

  bool hasSource() const { return i_ < source_.last; }
  bool isSource(std::size_t index, std::wstring_view what) const {
    return index < source_.last && source_.text(index) == what;
  }
  bool isText(std::size_t index, std::wstring_view what) const {
    return index < text_.last && text_.text(index) == what;
  }
  bool isTextName(std::size_t index) const { return index < text_.last && text_.isName(index); }

  void take(std::size_t source, bool isExact) { found_[j_++ - text_.first] = {source, isExact}; }

  bool step() {
    if (!hasSource()) return false;
    const std::wstring_view name = source_.text(i_);
    if (text_.text(j_) == name) {
      take(i_++, true);
      return true;
    }
    if (name == kBegin) return beginBlock();
    if (isBuiltin(name) && isSource(i_ + 1, L"(")) return takeValue();
    if (name == L"sfg_shader" && isSource(i_ + 1, L"(")) return takeShaderUse();
    if (!source_.isName(i_) || !text_.isName(j_) || isRenameDoubtful()) return false;
    take(i_++, true);
    return true;
  }

  /// Two names where what follows does not fit, but one of them is what follows the other.
  bool isRenameDoubtful() const {
    const bool fits = i_ + 1 >= source_.last || j_ + 1 >= text_.last ||
                      source_.text(i_ + 1) == text_.text(j_ + 1) ||
                      (source_.isName(i_ + 1) && text_.isName(j_ + 1)) || isSpecial(source_.text(i_ + 1));
    return !fits;
  }
  static bool isSpecial(std::wstring_view name) {
    return name == kBegin || name == kEnd || name == L"sfg_shader" || isBuiltin(name);
  }

  /// Behind the arguments of the call at `call`.
  std::size_t behindCall(std::size_t call) const {
    return std::min(behindBrackets(source_.code, *source_.tokens, call + 1), source_.last);
  }

  bool takeValue() {
    take(i_, false);
    i_ = behindCall(i_);
    return true;
  }

  /// Declarations of variables that nobody asked for, then the call and its semicolon; nothing at all for an
  /// input that is not wired.
  bool takeShaderUse() {
    const std::size_t use = i_;
    i_ = behindCall(use);
    std::size_t end = j_;
    while (isTextName(end) && isTextName(end + 1) && isTemporary(text_.text(end + 1)) &&
           isText(end + 2, L";"))
      end += 3;
    const bool hasCall = isTextName(end) && isText(end + 1, L"(");
    const bool isOwnCall = end == j_ && hasCall && isSource(i_, text_.text(end)) && isSource(i_ + 1, L"(");
    if (!hasCall || isOwnCall) return true;
    end = std::min(behindBrackets(text_.code, *text_.tokens, end + 1), text_.last);
    if (isText(end, L";")) ++end;
    while (j_ < end) take(use, false);
    return true;
  }

  bool beginBlock() {
    std::size_t end = i_ + 1;
    std::size_t depth = 1;
    for (; end < source_.last; ++end) {
      if (source_.text(end) == kBegin && numLights_ == 1) ++depth;
      if (source_.text(end) == kEnd && --depth == 0) break;
    }
    if (end >= source_.last) return false;
    if (numLights_ == 0) {
      i_ = end + 1;
      return true;
    }
    if (!isText(j_, L"{")) return false;
    take(i_, false);
    blocks_.push_back({i_ + 1, end, numLights_});
    ++i_;
    return true;
  }

  /// At the end marker a copy ends, and the next one begins.
  bool endsBlock() {
    if (blocks_.empty() || i_ != blocks_.back().end) return false;
    if (!isText(j_, L"}")) return false;
    Block& block = blocks_.back();
    take(block.end, false);
    if (--block.copies != 0 && isText(j_, L"{")) {
      take(block.first - 1, false);
      i_ = block.first;
      return true;
    }
    i_ = block.end + 1;
    blocks_.pop_back();
    return true;
  }

  /// Looks for the nearest place where some tokens agree. Text in front of it comes from where the source
  /// was.
  void resynchronise() {
    constexpr std::size_t kReach = 48;
    const std::size_t before = std::min(i_, source_.last - (source_.last > source_.first ? 1 : 0));
    for (std::size_t distance = 1; distance <= kReach && hasSource(); ++distance) {
      for (std::size_t skipped = 0; skipped <= distance; ++skipped) {
        const std::size_t j = j_ + (distance - skipped);
        if (!agree(i_ + skipped, j)) continue;
        while (j_ < j) take(before, false);
        i_ += skipped;
        return;
      }
    }
    take(before, false);
  }

  bool agree(std::size_t i, std::size_t j) const {
    constexpr std::size_t kEnough = 3;
    for (std::size_t k = 0; k < kEnough; ++k) {
      const bool sourceEnds = i + k >= source_.last;
      const bool textEnds = j + k >= text_.last;
      if (sourceEnds || textEnds) return k != 0 && sourceEnds && textEnds;
      if (source_.text(i + k) != text_.text(j + k)) return false;
    }
    return true;
  }

  const TokenRange source_;
  const TokenRange text_;
  const std::size_t numLights_;
  std::size_t i_;
  std::size_t j_;
  std::vector<Block> blocks_;
  std::vector<TokenSource> found_;
};

/// A parameter: its tokens, the name's, and the separator behind it.
struct ParameterTokens {
  std::size_t first = 0;
  std::size_t name = kNotFound;
  std::size_t end = 0;
};

/// What stands between the parentheses of a head, the opening one at `open`.
std::vector<ParameterTokens> parametersOf(const TokenRange& head, std::size_t open, std::size_t close) {
  std::vector<ParameterTokens> parameters;
  ParameterTokens current{open + 1, kNotFound, 0};
  std::size_t depth = 0;
  bool isSemantic = false;
  for (std::size_t i = open + 1; i <= close && i < head.last; ++i) {
    const std::wstring_view token = head.text(i);
    if (token == L"<") ++depth;
    if (token == L">" && depth != 0) --depth;
    if (i == close || (token == L"," && depth == 0)) {
      current.end = i;
      if (current.name != kNotFound) parameters.push_back(current);
      current = {i + 1, kNotFound, 0};
      isSemantic = false;
    } else if (token == L":") {
      isSemantic = true;
    } else if (head.isName(i) && !isSemantic) {
      current.name = i;
    }
  }
  return parameters;
}

std::size_t findToken(const TokenRange& range, std::wstring_view what) {
  for (std::size_t i = range.first; i < range.last; ++i)
    if (range.text(i) == what) return i;
  return range.last;
}

}  // namespace

std::vector<TokenSource> alignTokens(const TokenRange& source, const TokenRange& text,
                                     std::size_t numLights) {
  return Aligner(source, text, numLights).align();
}

std::vector<TokenSource> alignHeads(const TokenRange& source, const TokenRange& text) {
  std::vector<TokenSource> found(text.last - text.first);
  const std::size_t sourceOpen = findToken(source, L"(");
  const std::size_t textOpen = findToken(text, L"(");
  if (sourceOpen >= source.last || textOpen >= text.last) return found;
  const std::size_t sourceClose = findToken(source, L")");
  const std::size_t textClose = text.last - 1;
  const std::size_t sourceName = sourceOpen == source.first ? sourceOpen : sourceOpen - 1;
  const auto set = [&](std::size_t token, std::size_t from, bool isExact) {
    found[token - text.first] = {from, isExact};
  };

  // What nothing below knows better was put in for the function.
  for (std::size_t i = text.first; i < text.last; ++i) set(i, sourceName, false);
  set(text.first, source.first, true);
  if (textOpen > text.first) set(textOpen - 1, sourceName, true);
  set(textOpen, sourceOpen, true);
  if (sourceClose < source.last) set(textClose, sourceClose, true);

  std::map<std::wstring_view, ParameterTokens> byName;
  for (const ParameterTokens& parameter : parametersOf(source, sourceOpen, sourceClose))
    byName.emplace(source.text(parameter.name), parameter);
  for (const ParameterTokens& parameter : parametersOf(text, textOpen, textClose)) {
    const auto known = byName.find(text.text(parameter.name));
    if (known == byName.end()) continue;
    const ParameterTokens& from = known->second;
    // From the name backwards; qualifiers that were dropped are passed over.
    std::size_t i = from.name + 1;
    std::size_t j = parameter.name + 1;
    while (j > parameter.first && i > from.first) {
      if (text.text(j - 1) == source.text(i - 1)) set(--j, i - 1, true);
      --i;
    }
    const bool isSeparated = from.end < source.last && parameter.end != textClose;
    if (isSeparated) set(parameter.end, from.end, source.text(from.end) == L",");
  }
  return found;
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "platform/json_mistakes.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "platform/json_builder.h"
#include "platform/json_characters.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::json {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

char closerOf(char open) { return open == '[' ? ']' : '}'; }

std::string_view wordAt(std::string_view text) {
  const auto* const end = std::find_if_not(text.begin(), text.end(), isWordCharacter);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

/// Behind the string that begins there, or the end of the text.
std::size_t behindString(std::string_view text, std::size_t begin) {
  std::size_t at = begin + 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

/// Blanks in front of the line that holds the place; tabs count as two.
std::size_t indentOf(std::string_view text, std::size_t place) {
  std::size_t begin = place == 0 ? text.npos : text.rfind('\n', place - 1);
  begin = begin == text.npos ? 0 : begin + 1;
  std::size_t indent = 0;
  for (; begin < text.size() && (text[begin] == ' ' || text[begin] == '\t'); ++begin)
    indent += text[begin] == '\t' ? 2 : 1;
  return indent;
}

class Search {
public:
  Search(std::string_view text, std::size_t stop, Wanted wanted) : text_(text), stop_(stop), wanted_(wanted) {
    readFront();
  }

  std::optional<JsonMistake> find() const {
    switch (wanted_) {
    case Wanted::end: return behindEnd();
    case Wanted::name: return behindComma();
    case Wanted::colon: return behindName();
    case Wanted::value: return std::nullopt;
    default: return behindValue();
    }
  }

private:
  using Found = std::optional<JsonMistake>;

  /// The brackets that are open in front of the place.
  void readFront() {
    for (std::size_t at = 0; at < stop_; ++at) {
      const char c = text_[at];
      if (c == '"') {
        lastString_ = at;
        at = behindString(text_, at) - 1;
      } else if (c == '{' || c == '[') {
        open_.push_back(at);
      } else if ((c == '}' || c == ']') && !open_.empty()) {
        // One that is closed further left than it was opened took the bracket of another.
        if (suspect_ == text_.npos && indentOf(text_, at) < indentOf(text_, open_.back()))
          suspect_ = open_.back();
        open_.pop_back();
      }
    }
  }

  char found() const { return stop_ < text_.size() ? text_[stop_] : '\0'; }
  bool isAtEnd() const { return stop_ == text_.size(); }
  /// Behind the last character in front of the place that is no blank.
  std::size_t endInFront(std::size_t place) const {
    const std::size_t last = place == 0 ? text_.npos : text_.find_last_not_of(kBlanks, place - 1);
    return last == text_.npos ? 0 : last + 1;
  }
  char lastInFront(std::size_t place) const {
    const std::size_t end = endInFront(place);
    return end == 0 ? '\0' : text_[end - 1];
  }
  bool beginsValue() const {
    const char c = found();
    const std::string_view word = wordAt(text_.substr(stop_));
    return c == '"' || c == '{' || c == '[' || c == '-' || isDigit(c) || word == "true" || word == "false" ||
           word == "null";
  }

  /// "`}` for the `{` of line 2, column 5"
  WString closerWords(std::size_t open) const {
    PositionCounter counter(text_);
    counter.moveTo(text_.data() + open);
    return formatted(L"`%s` for the `%s` of line %Iu, column %Iu",
                     fromUtf8(std::string(1, closerOf(text_[open]))), fromUtf8(text_.substr(open, 1)),
                     std::size_t{counter.line()}, std::size_t{counter.column()});
  }
  JsonMistake missingCloser(std::size_t end, std::size_t open) const {
    return {end, formatted(L"missing %s", closerWords(open))};
  }
  JsonMistake closesNothing() const {
    return {stop_, formatted(L"`%s` closes nothing", fromUtf8(text_.substr(stop_, 1)))};
  }

  Found behindEnd() const {
    if (found() == '}' || found() == ']') return closesNothing();
    const bool goesOn = found() == ',' && text_.find_first_not_of(kBlanks, stop_ + 1) != text_.npos;
    const char last = lastInFront(stop_);
    if (!goesOn || (last != '}' && last != ']')) return std::nullopt;
    return JsonMistake{endInFront(stop_) - 1, formatted(L"this `%s` ends the document, but more follows",
                                                        fromUtf8(std::string(1, last)))};
  }

  /// Where a member's name should begin.
  Found behindComma() const {
    if (lastInFront(stop_) != ',') return std::nullopt;
    const std::size_t comma = endInFront(stop_) - 1;
    if (isDigit(found()) && stop_ == comma + 1 && comma != 0 && isDigit(text_[comma - 1]))
      return JsonMistake{comma, L"a number is written with a point, not with a comma"};
    const bool isOfList = open_.size() >= 2 && text_[open_[open_.size() - 2]] == '[';
    if (found() == '{' && isOfList) return missingCloser(endInFront(comma), open_.back());
    return std::nullopt;
  }

  Found behindName() const {
    if (Found early = stringThatEndsEarly()) return early;
    if (!beginsValue()) return std::nullopt;
    return JsonMistake{endInFront(stop_), L"missing `:` behind this name"};
  }

  Found behindValue() const {
    if (isAtEnd()) return openAtEnd();
    if (found() == '}' || found() == ']') return wrongCloser();
    if (found() == ':' && wanted_ == Wanted::moreOfArray) return memberInArray();
    if (Found early = stringThatEndsEarly()) return early;
    if (Found number = numberThatGoesOn()) return number;
    if (!beginsValue()) return std::nullopt;
    return JsonMistake{endInFront(stop_), L"missing `,` behind this value"};
  }

  Found openAtEnd() const {
    if (open_.empty()) return std::nullopt;
    if (suspect_ == text_.npos) return missingCloser(endInFront(stop_), open_.back());
    return JsonMistake{suspect_, formatted(L"`%s` is not closed", fromUtf8(text_.substr(suspect_, 1)))};
  }

  /// More closing brackets than opening ones in the rest.
  std::ptrdiff_t closersLeft() const {
    std::ptrdiff_t count = 0;
    for (std::size_t at = stop_; at < text_.size(); ++at) {
      const char c = text_[at];
      if (c == '"') at = behindString(text_, at) - 1;
      if (c == '}' || c == ']') ++count;
      if (c == '{' || c == '[') --count;
    }
    return count;
  }

  /// One that does not close the bracket opened last: whether one is missing, too many or only of the wrong
  /// kind follows from how many the rest closes.
  Found wrongCloser() const {
    const auto isClosedHere = [&](std::size_t open) { return closerOf(text_[open]) == found(); };
    const auto opened = static_cast<std::ptrdiff_t>(open_.size());
    const std::ptrdiff_t closed = closersLeft();
    if (closed > opened || std::none_of(open_.begin(), open_.end(), isClosedHere)) return closesNothing();
    if (closed < opened) return missingCloser(endInFront(stop_), open_.back());
    return JsonMistake{stop_, formatted(L"expected %s, found `%s`", closerWords(open_.back()),
                                        fromUtf8(text_.substr(stop_, 1)))};
  }

  /// `[ "name": ..`, or a list that should have ended before the name.
  Found memberInArray() const {
    const char before = lastInFront(lastString_);
    if (before == '[')
      return JsonMistake{endInFront(lastString_) - 1,
                         L"values with names stand in `{` and `}`, not in `[` and `]`"};
    if (before != ',') return std::nullopt;
    return missingCloser(endInFront(endInFront(lastString_) - 1), open_.back());
  }

  /// The quote in front of the place was meant to begin a string, or to stand in one.
  Found stringThatEndsEarly() const {
    if (stop_ == 0 || text_[stop_ - 1] != '"') return std::nullopt;
    const bool goesOn = isAlphanumeric(found()) || (static_cast<unsigned char>(found()) & 0x80) != 0;
    if (!goesOn) return std::nullopt;
    const std::size_t quote = stop_ - 1;
    const char last = lastInFront(quote);
    if (last == ',' || last == ':')
      return JsonMistake{endInFront(endInFront(quote) - 1), L"missing `\"` at the end of this string"};
    return JsonMistake{quote, L"this `\"` ends the string; a quote inside of one is written `\\\"`"};
  }

  /// "0.5f", "0xff", "007"
  Found numberThatGoesOn() const {
    std::size_t begin = stop_;
    while (begin != 0 && isWordCharacter(text_[begin - 1])) --begin;
    const bool isNumber = begin != stop_ && (isDigit(text_[begin]) || text_[begin] == '-');
    if (!isNumber || !isWordCharacter(found())) return std::nullopt;
    const std::string_view word = wordAt(text_.substr(begin));
    return JsonMistake{begin, formatted(L"expected a number, found `%s`%s", fromUtf8(word),
                                        whatToWrite(word, Wanted::value))};
  }

  std::string_view text_;
  std::size_t stop_;
  Wanted wanted_;
  std::vector<std::size_t> open_;
  std::size_t lastString_ = 0;
  std::size_t suspect_ = std::string_view::npos;
};

bool isOneOf(const std::string& word, std::initializer_list<std::string_view> words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

}  // namespace

std::optional<JsonMistake> findMistake(std::string_view text, std::size_t stop, Wanted wanted) {
  return Search(text, stop, wanted).find();
}

WString whatToWrite(std::string_view found, Wanted wanted) {
  for (const std::string_view quote : {"'", "`", "\u2018", "\u2019", "\u201C", "\u201D", "\u201E"})
    if (found.starts_with(quote)) return L"; strings stand in double quotes, `\"`";
  if (wanted != Wanted::value) return WString();
  if (found.starts_with('(')) return L"; lists stand in `[` and `]`";
  std::string word(wordAt(found));
  if (word.empty()) return WString();
  std::transform(word.begin(), word.end(), word.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (isOneOf(word, {"nan", "inf", "infinity", "+inf", "+infinity"})) return L"; JSON has no such number";
  if (word == "true" || word == "yes" || word == "on") return L"; write `true`";
  if (word == "false" || word == "no" || word == "off") return L"; write `false`";
  if (isOneOf(word, {"none", "null", "nil", "undefined"})) return L"; write `null`";
  if (!isAlphanumeric(word[0]) || isDigit(word[0])) return L"; numbers are written as `0.5`, `-1` or `2e3`";
  return L"; text stands in double quotes";
}

}  // namespace TolmSDK::json

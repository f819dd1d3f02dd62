// The library's events carry no place, so its input is an iterator that tells how far it has read.

#include "platform/json_errors.h"

#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/json_mistakes.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::json {

namespace {

using Json = nlohmann::json;

/// How far the parser has read.
struct Cursor {
  const char* position = nullptr;
  bool reachedEnd = false;
};

/// The parser's input: a single pass that moves the cursor along.
class TrackingIterator {
public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  TrackingIterator(Cursor* cursor, const char* position) noexcept : cursor_(cursor), position_(position) {}

  reference operator*() const noexcept { return *position_; }
  TrackingIterator& operator++() noexcept {
    cursor_->position = ++position_;
    return *this;
  }
  TrackingIterator operator++(int) noexcept {
    TrackingIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const TrackingIterator& a, const TrackingIterator& b) noexcept {
    if (a.position_ != b.position_) return false;
    a.cursor_->reachedEnd = true;
    return true;
  }

private:
  Cursor* cursor_;
  const char* position_;
};

/// Errors inside a string or number, where the parser's message alone says what is wrong.
struct TokenError {
  std::string_view message;
  const wchar_t* text;
  bool atStart;  ///< told at the token's start rather than at the character that is wrong
};

constexpr TokenError kTokenErrors[] = {
    {"missing closing quote", L"expected a closing `\"` for this string, found the end of the text", true},
    {"U+000A (LF)", L"expected a closing `\"` before the end of the line; a line feed is written `\\n`",
     false},
    {"U+000D (CR)", L"expected a closing `\"` before the end of the line; a line feed is written `\\n`",
     false},
    {"must be followed by 4 hex digits", L"expected four hexadecimal digits behind `\\u`", false},
    {"must be followed by U+DC00", L"expected the second half of a surrogate pair, `\\uDC00` to `\\uDFFF`",
     false},
    {"must follow U+D800",
     L"expected the first half of a surrogate pair, `\\uD800` to `\\uDBFF`, before this one", false},
    {"forbidden character after backslash",
     L"expected one of `\"`, `\\`, `/`, `b`, `f`, `n`, `r`, `t`, `u` behind `\\`; a backslash is written "
     L"`\\\\`",
     false},
    {"expected digit after '-'", L"expected a digit behind `-`", false},
    {"expected digit after '.'", L"expected a digit behind `.`", false},
    {"expected '+', '-', or digit after exponent", L"expected `+`, `-` or a digit behind the exponent's `e`",
     false},
    {"expected digit after exponent sign", L"expected a digit behind the exponent's sign", false},
};

/// Hands the parser's events to the builder, and makes our messages of its errors.
class Explainer final : public nlohmann::json_sax<Json> {
public:
  Explainer(Builder& builder, std::string_view text, const Cursor& cursor)
      : builder_(builder), text_(text), cursor_(cursor) {}

  bool null() override { return builder_.null(); }
  bool boolean(bool value) override { return builder_.boolean(value); }
  bool number_integer(Json::number_integer_t) override { return builder_.number(); }
  bool number_unsigned(Json::number_unsigned_t) override { return builder_.number(); }
  bool number_float(Json::number_float_t, const std::string&) override { return builder_.number(); }
  bool string(std::string& value) override { return builder_.string(value); }
  bool binary(Json::binary_t&) override { return false; }
  bool start_object(std::size_t) override { return builder_.open(NodeKind::object); }
  bool key(std::string& name) override { return builder_.key(name); }
  bool end_object() override { return builder_.endObject(); }
  bool start_array(std::size_t) override { return builder_.open(NodeKind::array); }
  bool end_array() override { return builder_.endArray(); }

  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& exception) override {
    const std::string_view message = exception.what();
    // What follows is the text's own and may read like anything.
    const std::string_view reason = message.substr(0, message.find("; last read: '"));
    skipToUnexpected(reason);
    if (exception.id == kOutOfRange)
      return builder_.failExpecting(L"a number within the range of double precision");
    for (const TokenError& error : kTokenErrors) {
      if (reason.find(error.message) == std::string_view::npos) continue;
      if (!error.atStart) builder_.counter().moveTo(lastRead());
      return builder_.failHere(error.text);
    }
    constexpr std::string_view kControl = "control character";
    if (const std::size_t control = reason.find(kControl); control != std::string_view::npos) {
      builder_.counter().moveTo(lastRead());
      if (*lastRead() == '\t') return builder_.failHere(L"a tab in a string is written `\\t`");
      return builder_.failHere(fromUtf8(reason.substr(control)));
    }
    return failUnexpected(reason, wantedBy(reason, message.ends_with("; expected end of input")));
  }

private:
  static constexpr int kOutOfRange = 406;

  /// The character that the parser has read last: the end of the text when it read that.
  const char* lastRead() const {
    return cursor_.reachedEnd || cursor_.position == text_.data() ? text_.data() + text_.size()
                                                                  : cursor_.position - 1;
  }

  /// Moves to the start of the token that the message is about.
  void skipToUnexpected(std::string_view reason) {
    for (const std::string_view token : {"unexpected ','", "unexpected ':'", "unexpected end of input"}) {
      if (reason.find(token) != std::string_view::npos) return builder_.counter().moveTo(lastRead());
    }
    builder_.counter().skipToToken();
  }

  /// What the parser wanted; its message names the rule it was in.
  static Wanted wantedBy(std::string_view reason, bool expectsEnd) {
    const auto isIn = [&](std::string_view rule) { return reason.find(rule) != std::string_view::npos; };
    if (expectsEnd) return Wanted::end;
    if (isIn("while parsing object key")) return Wanted::name;
    if (isIn("while parsing object separator")) return Wanted::colon;
    if (isIn("while parsing object ")) return Wanted::moreOfObject;
    if (isIn("while parsing array ")) return Wanted::moreOfArray;
    return Wanted::value;
  }

  const wchar_t* wordsOf(Wanted wanted) const {
    const bool isFirst = builder_.isFirst();
    switch (wanted) {
    case Wanted::end: return L"the end of the text";
    case Wanted::name:
      return isFirst ? L"a member name in double quotes or `}`" : L"a member name in double quotes";
    case Wanted::colon: return L"`:`";
    case Wanted::moreOfObject: return L"`,` or `}`";
    case Wanted::moreOfArray: return L"`,` or `]`";
    default: return isFirst && builder_.isInArray() ? L"a value or `]`" : L"a value";
    }
  }

  bool failUnexpected(std::string_view reason, Wanted wanted) {
    PositionCounter& counter = builder_.counter();
    if (wanted != Wanted::end) {
      if (const wchar_t* const behindComma = commaInFront(reason)) return builder_.failExpecting(behindComma);
    }
    const auto stop = static_cast<std::size_t>(counter.at() - text_.data());
    const std::optional<JsonMistake> mistake = findMistake(text_, stop, wanted);
    if (!mistake) return builder_.failExpecting(wordsOf(wanted), whatToWrite(counter.rest(), wanted));
    counter = PositionCounter(text_);
    counter.moveTo(text_.data() + mistake->at);
    return builder_.failHere(mistake->text);
  }

  /// Of a list that goes on behind its last comma, but ends there.
  const wchar_t* commaInFront(std::string_view reason) const {
    const bool isEnd = reason.find("unexpected ']'") != std::string_view::npos ||
                       reason.find("unexpected '}'") != std::string_view::npos;
    if (!isEnd) return nullptr;
    const std::string_view before = text_.substr(0, static_cast<std::size_t>(lastRead() - text_.data()));
    const std::size_t last = before.find_last_not_of(" \t\r\n");
    if (last == std::string_view::npos || before[last] != ',') return nullptr;
    return reason.find("while parsing object key") != std::string_view::npos
               ? L"a member name behind the comma in front of this bracket"
               : L"a value behind the comma in front of this bracket";
  }

  Builder& builder_;
  std::string_view text_;
  const Cursor& cursor_;
};

}  // namespace

bool parseWithErrors(std::string_view text, Builder& builder) {
  if (text.starts_with("\xEF\xBB\xBF")) return builder.failExpecting(L"a value");
  Cursor cursor{text.data()};
  Explainer explainer(builder, text, cursor);
  const TrackingIterator first(&cursor, text.data());
  const TrackingIterator last(&cursor, text.data() + text.size());
  return Json::sax_parse(first, last, &explainer) && builder.end();
}

}  // namespace TolmSDK::json

// Builds documents from the events of the JSON library's parser. The library's events carry no place, so its
// input is an iterator that tells how far it has read.

#include <algorithm>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/json_value.h"
#include "platform/utf.h"
#include "tolmsdk/exception.h"
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

bool isBlank(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

/// Characters of numbers, literals and what people write in their place.
bool isWordCharacter(char c) {
  const bool isAlphanumeric = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return isAlphanumeric || c == '_' || c == '+' || c == '-' || c == '.';
}

/// Walks the text behind the parser and counts lines and columns: from 1, in code points.
class PositionCounter {
public:
  explicit PositionCounter(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

  const char* at() const noexcept { return at_; }
  std::uint32_t line() const noexcept { return line_; }
  std::uint32_t column() const noexcept { return column_; }

  /// Moves over blanks and the separators between two tokens to the start of the next one.
  void skipToToken() noexcept {
    while (at_ != end_ && (isBlank(*at_) || *at_ == ',' || *at_ == ':')) step();
  }
  void moveTo(const char* position) noexcept {
    while (at_ < position) step();
  }
  /// As moveTo, for a token that holds no line feed.
  void moveWithinLine(const char* position) noexcept {
    if (position <= at_) return;
    column_ += static_cast<std::uint32_t>(
        std::count_if(at_, position, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
    at_ = position;
  }

private:
  void step() noexcept {
    if (*at_ == '\n') {
      ++line_;
      column_ = 1;
    } else if ((static_cast<unsigned char>(*at_) & 0xC0) != 0x80) {
      ++column_;
    }
    ++at_;
  }

  const char* at_;
  const char* end_;
  std::uint32_t line_ = 1;
  std::uint32_t column_ = 1;
};

/// A member name of the document: one text however often it is used.
struct Name {
  const WString* text = nullptr;
  std::uint64_t lastObject = 0;  ///< the object in which it was met last
  std::uint32_t lastIndex = 0;   ///< at this index
};

class NamePool {
public:
  explicit NamePool(Document& document) : document_(document) {}

  Name* intern(std::string_view utf8) {
    if (const auto found = names_.find(utf8); found != names_.end()) return &found->second;
    char* const copy = document_.allocate<char>(std::max<std::size_t>(utf8.size(), 1));
    std::copy(utf8.begin(), utf8.end(), copy);
    WString& text = document_.addText();
    assignFromUtf8(text, utf8);
    return &names_.emplace(std::string_view(copy, utf8.size()), Name{&text}).first->second;
  }

private:
  Document& document_;
  std::unordered_map<std::string_view, Name> names_;
};

constexpr std::size_t kIndexedMembers = 16;

constexpr std::size_t kLongestWord = 40;

/// What stands at the start of a text, for a message.
WString describe(std::string_view rest) {
  if (rest.empty()) return L"the end of the text";
  if (rest[0] == '\0') return L"a null character";
  if (static_cast<unsigned char>(rest[0]) < 0x20) return L"a control character";
  if (rest[0] == '"') return L"a string";
  if (rest.starts_with("//") || rest.starts_with("/*")) return L"a comment, which JSON does not have";
  if (rest.starts_with("\xEF\xBB\xBF")) return L"a second byte-order mark";
  const auto* const wordEnd = std::find_if_not(rest.begin(), rest.end(), isWordCharacter);
  std::size_t length = std::min(static_cast<std::size_t>(wordEnd - rest.begin()), kLongestWord);
  if (length == 0) {
    length = 1;
    while (length < rest.size() && (static_cast<unsigned char>(rest[length]) & 0xC0) == 0x80) ++length;
  }
  return formatted(L"`%s`", fromUtf8(rest.substr(0, length)));
}

/// Errors inside a string or number, where the parser's message alone says what is wrong.
struct TokenError {
  std::string_view message;
  const wchar_t* text;
  bool atStart;  ///< told at the token's start rather than at the character that is wrong
};

constexpr TokenError kTokenErrors[] = {
    {"missing closing quote", L"expected a closing `\"` for this string, found the end of the text", true},
    {"U+000A (LF)", L"expected a closing `\"` before the end of the line", false},
    {"U+000D (CR)", L"expected a closing `\"` before the end of the line", false},
    {"must be followed by 4 hex digits", L"expected four hexadecimal digits behind `\\u`", false},
    {"must be followed by U+DC00", L"expected the second half of a surrogate pair, `\\uDC00` to `\\uDFFF`",
     false},
    {"must follow U+D800",
     L"expected the first half of a surrogate pair, `\\uD800` to `\\uDBFF`, before this one", false},
    {"forbidden character after backslash",
     L"expected one of `\"`, `\\`, `/`, `b`, `f`, `n`, `r`, `t`, `u` behind `\\`", false},
    {"expected digit after '-'", L"expected a digit behind `-`", false},
    {"expected digit after '.'", L"expected a digit behind `.`", false},
    {"expected '+', '-', or digit after exponent", L"expected `+`, `-` or a digit behind the exponent's `e`",
     false},
    {"expected digit after exponent sign", L"expected a digit behind the exponent's sign", false},
};

/// Receives the parser's events and builds the document bottom-up: finished values wait on a stack until the
/// array or object that holds them ends.
class Builder final : public nlohmann::json_sax<Json> {
public:
  Builder(Document& document, std::string_view text, const Cursor& cursor)
      : document_(document), text_(text), cursor_(cursor), counter_(text), names_(document) {}

  const WString& error() const noexcept { return error_; }

  bool null() override {
    push(literal());
    return true;
  }

  bool boolean(bool value) override {
    Value& node = push(literal());
    node.kind = NodeKind::boolean;
    node.boolean = value;
    return true;
  }

  bool number_integer(Json::number_integer_t value) override {
    Value& node = push(number(NumberForm::integer));
    node.integer = value;
    return true;
  }

  bool number_unsigned(Json::number_unsigned_t value) override {
    Value& node = push(number(NumberForm::natural));
    node.natural = value;
    return true;
  }

  bool number_float(Json::number_float_t value, const std::string&) override {
    Value& node = push(number(NumberForm::real));
    node.real = value;
    return true;
  }

  bool string(std::string& value) override {
    Value& node = push(literal());
    node.kind = NodeKind::string;
    WString& text = document_.addText();
    assignFromUtf8(text, value);
    node.text = &text;
    return true;
  }

  bool binary(Json::binary_t&) override { return false; }

  bool start_object(std::size_t) override { return open(true); }
  bool start_array(std::size_t) override { return open(false); }

  bool key(std::string& name) override {
    literal();
    memberNames_.push_back(names_.intern(name));
    return true;
  }

  bool end_object() override {
    const Frame frame = close();
    const std::size_t count = dropRepeatedMembers(frame);
    Children* const children = makeChildren(frame, count);
    children->names = makeNames(frame, count);
    if (count > kIndexedMembers) children->byName = makeIndex(children->names, count);
    finish(frame, NodeKind::object, children);
    return true;
  }

  bool end_array() override {
    const Frame frame = close();
    finish(frame, NodeKind::array, makeChildren(frame, values_.size() - frame.firstValue));
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception& exception) override {
    const std::string_view message = exception.what();
    // What follows is the text's own and may read like anything.
    const std::string_view reason = message.substr(0, message.find("; last read: '"));
    skipToUnexpected(reason);
    if (exception.id == kOutOfRange) return failExpecting(L"a number within the range of double precision");
    for (const TokenError& error : kTokenErrors) {
      if (reason.find(error.message) == std::string_view::npos) continue;
      if (!error.atStart) counter_.moveTo(lastRead());
      return failHere(error.text);
    }
    constexpr std::string_view kControl = "control character";
    if (const std::size_t control = reason.find(kControl); control != std::string_view::npos) {
      counter_.moveTo(lastRead());
      return failHere(fromUtf8(reason.substr(control)));
    }
    return failExpecting(expectation(reason, message.ends_with("; expected end of input")));
  }

  /// The parser takes a null character for the end of its input: whether there is more.
  bool checkEnd() {
    counter_.skipToToken();
    if (counter_.at() == text_.data() + text_.size()) return true;
    return failHere(L"expected the end of the text, found a null character");
  }

  Value root() const { return values_.front(); }

  /// Fails at the counter's position, where something else stands.
  bool failExpecting(std::wstring_view what) {
    const std::string_view rest = text_.substr(static_cast<std::size_t>(counter_.at() - text_.data()));
    return failHere(formatted(L"expected %s, found %s", what, describe(rest)));
  }

  /// Fails at the counter's position.
  bool failHere(const WString& message) {
    error_ =
        formatted(L"line %Iu, column %Iu: ", std::size_t{counter_.line()}, std::size_t{counter_.column()});
    error_ += message;
    return false;
  }

private:
  static constexpr int kOutOfRange = 406;

  /// An array or object that has begun: where it stands, and where its values and names begin on their
  /// stacks.
  struct Frame {
    Value value;
    std::size_t firstValue = 0;
    std::size_t firstName = 0;
    bool isObject = false;
  };

  Value valueHere() const {
    Value value;
    value.line = counter_.line();
    value.column = counter_.column();
    return value;
  }

  /// A value whose token ends where the parser stands.
  Value literal() {
    counter_.skipToToken();
    const Value value = valueHere();
    counter_.moveWithinLine(cursor_.position);
    return value;
  }

  /// A number's value; the parser has read one character beyond it, unless the text ended.
  Value number(NumberForm form) {
    counter_.skipToToken();
    Value value = valueHere();
    value.kind = NodeKind::number;
    value.form = form;
    counter_.moveWithinLine(cursor_.reachedEnd ? cursor_.position : cursor_.position - 1);
    return value;
  }

  Value& push(const Value& value) { return values_.emplace_back(value); }

  bool open(bool isObject) {
    const Value value = literal();
    frames_.push_back({value, values_.size(), memberNames_.size(), isObject});
    if (frames_.size() <= IObjectDataNode::kMaximumDepth) return true;
    error_ = formatted(L"line %Iu, column %Iu: expected at most %Iu levels of arrays and objects",
                       std::size_t{value.line}, std::size_t{value.column}, IObjectDataNode::kMaximumDepth);
    return false;
  }

  Frame close() {
    counter_.moveTo(cursor_.position);
    const Frame frame = frames_.back();
    frames_.pop_back();
    return frame;
  }

  /// Moves a repeated member's value to the place of the first of that name; answers how many members are
  /// left.
  std::size_t dropRepeatedMembers(const Frame& frame) {
    const std::uint64_t object = ++objects_;
    Value* const values = values_.data() + frame.firstValue;
    Name** const names = memberNames_.data() + frame.firstName;
    const std::size_t count = values_.size() - frame.firstValue;
    std::uint32_t kept = 0;
    for (std::size_t index = 0; index < count; ++index) {
      Name& name = *names[index];
      if (name.lastObject == object) {
        values[name.lastIndex] = values[index];
        continue;
      }
      name.lastObject = object;
      name.lastIndex = kept;
      values[kept] = values[index];
      names[kept++] = names[index];
    }
    return kept;
  }

  Children* makeChildren(const Frame& frame, std::size_t count) {
    auto* const children = std::construct_at(document_.allocate<Children>(1));
    if (count == 0) return children;
    children->nodes = document_.allocate<Node>(count);
    children->count = static_cast<std::uint32_t>(count);
    for (std::size_t index = 0; index < count; ++index) {
      std::construct_at(children->nodes + index, document_, values_[frame.firstValue + index]);
    }
    return children;
  }

  const WString* const* makeNames(const Frame& frame, std::size_t count) {
    if (count == 0) return nullptr;
    auto** const names = document_.allocate<const WString*>(count);
    for (std::size_t index = 0; index < count; ++index)
      names[index] = memberNames_[frame.firstName + index]->text;
    return names;
  }

  const std::uint32_t* makeIndex(const WString* const* names, std::size_t count) {
    auto* const index = document_.allocate<std::uint32_t>(count);
    std::iota(index, index + count, 0u);
    std::sort(index, index + count, [&](std::uint32_t a, std::uint32_t b) { return *names[a] < *names[b]; });
    return index;
  }

  void finish(const Frame& frame, NodeKind kind, const Children* children) {
    values_.resize(frame.firstValue);
    memberNames_.resize(frame.firstName);
    Value& value = push(frame.value);
    value.kind = kind;
    value.children = children;
  }

  /// The character that the parser has read last: the end of the text when it read that.
  const char* lastRead() const {
    const char* const end = text_.data() + text_.size();
    return cursor_.reachedEnd || cursor_.position == text_.data() ? end : cursor_.position - 1;
  }

  /// Moves to the start of the token that the message is about.
  void skipToUnexpected(std::string_view reason) {
    for (const std::string_view token : {"unexpected ','", "unexpected ':'", "unexpected end of input"}) {
      if (reason.find(token) != std::string_view::npos) return counter_.moveTo(lastRead());
    }
    counter_.skipToToken();
  }

  /// What the parser wanted; its message names the rule it was in.
  const wchar_t* expectation(std::string_view reason, bool expectsEnd) const {
    const auto isIn = [&](std::string_view rule) { return reason.find(rule) != std::string_view::npos; };
    const bool isFirst = !frames_.empty() && values_.size() == frames_.back().firstValue;
    if (expectsEnd) return L"the end of the text";
    if (isIn("while parsing object key")) {
      return isFirst ? L"a member name in double quotes or `}`" : L"a member name in double quotes";
    }
    if (isIn("while parsing object separator")) return L"`:`";
    if (isIn("while parsing object ")) return L"`,` or `}`";
    if (isIn("while parsing array ")) return L"`,` or `]`";
    return isFirst && !frames_.back().isObject ? L"a value or `]`" : L"a value";
  }

  Document& document_;
  std::string_view text_;
  const Cursor& cursor_;
  PositionCounter counter_;
  NamePool names_;
  std::vector<Value> values_;
  std::vector<Name*> memberNames_;
  std::vector<Frame> frames_;
  std::uint64_t objects_ = 0;
  WString error_;
};

}  // namespace

RefPtr<Document> parseDocument(std::string_view bytes, WString& error) {
  // Ill-formed UTF-8 is replaced as in every text file; most texts are fine and are parsed where they are.
  std::string repaired;
  if (!isUtf8(bytes)) {
    repaired = repairedUtf8(bytes);
    bytes = repaired;
  }

  RefPtr<Document> document = makeRef<Document>();
  Cursor cursor{bytes.data()};
  Builder builder(*document, bytes, cursor);
  const TrackingIterator first(&cursor, bytes.data());
  const TrackingIterator last(&cursor, bytes.data() + bytes.size());
  bool succeeded = false;
  if (bytes.starts_with("\xEF\xBB\xBF")) {
    succeeded = builder.failExpecting(L"a value");
  } else {
    succeeded = Json::sax_parse(first, last, &builder) && builder.checkEnd();
  }
  error = builder.error();
  if (!succeeded) return nullptr;
  document->root = builder.root();
  return document;
}

}  // namespace TolmSDK::json

#include "platform/json_builder.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numeric>
#include <string>
#include <system_error>
#include <utility>

#include "platform/json_characters.h"
#include "platform/utf.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::json {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

constexpr std::size_t kLongestWord = 40;

/// What stands at the start of a text, for a message.
WString describe(std::string_view rest) {
  if (rest.empty()) return L"the end of the text";
  if (rest[0] == '\0') return L"a null character";
  if (static_cast<unsigned char>(rest[0]) < 0x20) return L"a control character";
  if (rest[0] == '"') return L"a string";
  if (rest.starts_with("//") || rest.starts_with("/*") || rest.starts_with('#'))
    return L"a comment, which JSON does not have";
  if (rest.starts_with("\xEF\xBB\xBF")) return L"a second byte-order mark";
  if (rest.starts_with("\xEF\xBF\xBD")) return L"what is no UTF-8: is the file saved in another encoding?";
  const auto* const wordEnd = std::find_if_not(rest.begin(), rest.end(), isWordCharacter);
  std::size_t length = std::min(static_cast<std::size_t>(wordEnd - rest.begin()), kLongestWord);
  if (length == 0) {
    length = 1;
    while (length < rest.size() && (static_cast<unsigned char>(rest[length]) & 0xC0) == 0x80) ++length;
  }
  return formatted(L"`%s`", fromUtf8(rest.substr(0, length)));
}

constexpr std::size_t kNullLength = 4;
constexpr std::size_t kTrueLength = 4;
constexpr std::size_t kFalseLength = 5;

/// Behind the number that starts at `at`; the parser has seen that there is one.
const char* passNumber(const char* at, const char* end) {
  const auto passDigits = [&] { at = std::find_if_not(at, end, isDigit); };
  if (*at == '-') ++at;
  if (*at == '0') {
    ++at;
  } else {
    passDigits();
  }
  if (at != end && *at == '.') {
    ++at;
    passDigits();
  }
  if (at != end && (*at == 'e' || *at == 'E')) {
    ++at;
    if (*at == '+' || *at == '-') ++at;
    passDigits();
  }
  return at;
}

/// The number nearest to the decimal; not finite for one out of range.
double readReal(std::string_view decimal) {
  double real = 0.0;
  const std::from_chars_result result =
      std::from_chars(decimal.data(), decimal.data() + decimal.size(), real);
  if (result.ec == std::errc()) return real;
  // Out of range: too large, or so small that it is zero.
  return std::strtod(std::string(decimal).c_str(), nullptr);
}

/// Integers of 64 bits are kept as they are. False for a number out of range.
bool readNumber(Value& value, std::string_view decimal) {
  const char* const end = decimal.data() + decimal.size();
  const auto isWhole = [&](const std::from_chars_result& result) {
    return result.ec == std::errc() && result.ptr == end;
  };
  value.form = NumberForm::integer;
  if (isWhole(std::from_chars(decimal.data(), end, value.integer))) return true;
  value.form = NumberForm::natural;
  if (isWhole(std::from_chars(decimal.data(), end, value.natural))) return true;
  value.form = NumberForm::real;
  value.real = readReal(decimal);
  return std::isfinite(value.real);
}

/// Behind the closing quote of the string whose text starts at `at`.
const char* passQuoted(const char* at) {
  while (*at != '"') at += *at == '\\' ? 2 : 1;
  return at + 1;
}

/// The names' indexes, ordered by name.
void makeIndex(const WString* const* names, std::uint32_t* index, std::size_t count) {
  std::iota(index, index + count, 0u);
  std::sort(index, index + count, [&](std::uint32_t a, std::uint32_t b) { return *names[a] < *names[b]; });
}

}  // namespace

void PositionCounter::skipToToken() noexcept {
  while (at_ != end_ && (isBlank(*at_) || *at_ == ',' || *at_ == ':')) step();
}

void PositionCounter::moveTo(const char* position) noexcept {
  while (at_ < position) step();
}

void PositionCounter::moveWithinLine(const char* position) noexcept {
  if (position <= at_) return;
  column_ += static_cast<std::uint32_t>((position - at_) - std::count_if(at_, position, isContinuation));
  at_ = position;
}

void PositionCounter::step() noexcept {
  if (*at_ == '\n') {
    ++line_;
    column_ = 1;
  } else if (!isContinuation(*at_)) {
    ++column_;
  }
  ++at_;
}

Name* NamePool::intern(std::string_view utf8) {
  Name*& next = last_->next;
  if (next == nullptr || next->utf8 != utf8) next = find(utf8);
  return last_ = next;
}

Name* NamePool::find(std::string_view utf8) {
  Name& name = names_[utf8];
  if (name.text == nullptr) {
    name.utf8 = utf8;
    name.text = &document_.wideText(utf8);
  }
  return &name;
}

bool Builder::null() {
  if (!admitValue()) return false;
  values_.push_back(valueHere(NodeKind::null));
  counter_.moveWithinLine(counter_.at() + kNullLength);
  return true;
}

bool Builder::boolean(bool boolean) {
  if (!admitValue()) return false;
  Value value = valueHere(NodeKind::boolean);
  value.boolean = boolean;
  values_.push_back(value);
  counter_.moveWithinLine(counter_.at() + (boolean ? kTrueLength : kFalseLength));
  return true;
}

bool Builder::number() {
  if (!admitValue()) return false;
  Value value = valueHere(NodeKind::number);
  const char* const end = passNumber(counter_.at(), counter_.end());
  if (!readNumber(value, {counter_.at(), static_cast<std::size_t>(end - counter_.at())}))
    return failExpecting(L"a number within the range of double precision");
  values_.push_back(value);
  counter_.moveWithinLine(end);
  return true;
}

bool Builder::string(std::string_view decoded) {
  if (!admitValue()) return false;
  Value value = valueHere(NodeKind::string);
  std::string_view kept;
  if (!passString(decoded, kept)) return false;
  value.bytes = kept.data();
  value.size = static_cast<std::uint32_t>(kept.size());
  values_.push_back(value);
  return true;
}

bool Builder::key(std::string_view decoded) {
  counter_.skipToToken();
  const NamePlace place{counter_.line(), counter_.column()};
  std::string_view kept;
  if (!passString(decoded, kept)) return false;
  members_.push_back({names_.intern(kept), place});
  return true;
}

bool Builder::open(NodeKind kind) {
  if (!admitValue()) return false;
  const Value value = valueHere(kind);
  counter_.moveWithinLine(counter_.at() + 1);
  frames_.push_back({value, values_.size(), members_.size()});
  if (frames_.size() <= IObjectDataNode::kMaximumDepth) return true;
  error_ = formatted(L"line %Iu, column %Iu: expected at most %Iu levels of arrays and objects",
                     std::size_t{value.line}, std::size_t{value.column}, IObjectDataNode::kMaximumDepth);
  return false;
}

bool Builder::endObject() {
  const Frame frame = close();
  const std::size_t count = dropRepeatedMembers(frame);
  const std::size_t indexed = count > kIndexedMembers ? count : 0;
  Node* const nodes = makeNodes(
      frame, count, count * (sizeof(const WString*) + sizeof(NamePlace)) + indexed * sizeof(std::uint32_t));
  auto** const names = reinterpret_cast<const WString**>(nodes + count);
  auto* const places = reinterpret_cast<NamePlace*>(names + count);
  for (std::size_t index = 0; index < count; ++index) {
    const Member& member = members_[frame.firstName + index];
    names[index] = member.name->text;
    places[index] = member.place;
  }
  if (indexed != 0) makeIndex(names, reinterpret_cast<std::uint32_t*>(places + count), indexed);
  finish(frame, nodes, count);
  return true;
}

bool Builder::endArray() {
  const Frame frame = close();
  const std::size_t count = values_.size() - frame.firstValue;
  finish(frame, makeNodes(frame, count, 0), count);
  return true;
}

bool Builder::end() {
  counter_.skipToToken();
  if (counter_.at() != counter_.end())
    return failHere(L"expected the end of the text, found a null character");
  document_.root = values_.front();
  // An object is looked at when it ends, behind those that it holds.
  std::stable_sort(document_.repeatedMembers.begin(), document_.repeatedMembers.end(),
                   [](const RepeatedMember& a, const RepeatedMember& b) {
                     return std::pair(a.again.line, a.again.column) < std::pair(b.again.line, b.again.column);
                   });
  return true;
}

bool Builder::failExpecting(std::wstring_view what, std::wstring_view advice) {
  return failHere(formatted(L"expected %s, found %s%s", what, describe(counter_.rest()), advice));
}

bool Builder::failHere(const WString& message) {
  error_ = formatted(L"line %Iu, column %Iu: ", std::size_t{counter_.line()}, std::size_t{counter_.column()});
  error_ += message;
  return false;
}

/// Whether the document may hold one value more.
bool Builder::admitValue() {
  if (valuesLeft_-- != 0) return true;
  counter_.skipToToken();
  return failHere(formatted(L"expected at most %Iu values (objects, arrays, texts, numbers) in one document: "
                            L"split it",
                            readLimits().documentValues));
}

Value Builder::valueHere(NodeKind kind) noexcept {
  counter_.skipToToken();
  Value value;
  value.line = counter_.line();
  value.column = counter_.column();
  value.kind = kind;
  return value;
}

/// Moves over the string at the counter. `kept` is its text for as long as the document lives: where it
/// stands, unless it has escapes.
bool Builder::passString(std::string_view decoded, std::string_view& kept) {
  // An escape is longer than what it stands for, so up to the first one both texts are the same.
  const char* const start = counter_.at() + 1;
  if (decoded.empty() || std::memchr(start, '\\', decoded.size()) == nullptr) {
    kept = {start, decoded.size()};
    counter_.moveWithinLine(start + decoded.size() + 1);
    return true;
  }
  if (!isUtf8(decoded)) return false;
  auto* const copy = static_cast<char*>(document_.allocate(decoded.size()));
  std::copy(decoded.begin(), decoded.end(), copy);
  kept = {copy, decoded.size()};
  counter_.moveWithinLine(passQuoted(start));
  return true;
}

Builder::Frame Builder::close() noexcept {
  counter_.skipToToken();
  counter_.moveWithinLine(counter_.at() + 1);
  const Frame frame = frames_.back();
  frames_.pop_back();
  return frame;
}

/// Moves a repeated member's value to the place of the first of that name; answers how many members are
/// left.
std::size_t Builder::dropRepeatedMembers(const Frame& frame) {
  const std::uint64_t object = ++objects_;
  Value* const values = values_.data() + frame.firstValue;
  Member* const members = members_.data() + frame.firstName;
  const std::size_t count = values_.size() - frame.firstValue;
  std::uint32_t kept = 0;
  for (std::size_t index = 0; index < count; ++index) {
    Name& name = *members[index].name;
    if (name.lastObject == object) {
      NamePlace& known = members[name.lastIndex].place;
      document_.repeatedMembers.push_back({*name.text,
                                           {known.line, known.column},
                                           {members[index].place.line, members[index].place.column},
                                           frames_.size() + 1});
      values[name.lastIndex] = values[index];
      known = members[index].place;
      continue;
    }
    name.lastObject = object;
    name.lastIndex = kept;
    values[kept] = values[index];
    members[kept++] = members[index];
  }
  return kept;
}

/// The frame's first `count` values as nodes, in memory with room behind them.
Node* Builder::makeNodes(const Frame& frame, std::size_t count, std::size_t bytesBehind) {
  if (count == 0) return nullptr;
  auto* const nodes = static_cast<Node*>(document_.allocate(count * sizeof(Node) + bytesBehind));
  for (std::size_t index = 0; index < count; ++index)
    std::construct_at(nodes + index, document_, values_[frame.firstValue + index]);
  return nodes;
}

void Builder::finish(const Frame& frame, const Node* children, std::size_t count) {
  values_.resize(frame.firstValue);
  members_.resize(frame.firstName);
  Value& value = values_.emplace_back(frame.value);
  value.children = children;
  value.size = static_cast<std::uint32_t>(count);
}

}  // namespace TolmSDK::json

#include "tools/lsp/json_scan.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

/// A set of bytes.
class Bytes {
public:
  constexpr explicit Bytes(std::string_view bytes) {
    for (const char c : bytes) has_[static_cast<unsigned char>(c)] = true;
  }
  constexpr bool has(char c) const { return has_[static_cast<unsigned char>(c)]; }

private:
  std::array<bool, 256> has_ = {};
};

constexpr Bytes kBlanks(" \t\r\n");
constexpr Bytes kEndsWord(" \t\r\n,:{}[]\"");
constexpr Bytes kEndsString("\"\\\r\n");
constexpr Bytes kEndsLine("\r\n");
constexpr Bytes kBehindString(" \t,]}");

/// The first byte of the set from `at` on, or the text's end.
std::size_t findAny(std::string_view text, const Bytes& bytes, std::size_t at) {
  while (at < text.size() && !bytes.has(text[at])) ++at;
  return std::min(at, text.size());
}

}  // namespace

/// Goes over the text once. Each container that is open knows the member whose key was read and whose value
/// was not.
class JsonScan::Scanner {
public:
  explicit Scanner(JsonScan& scan) : scan_(scan), text_(scan.text_), items_(scan.items_) {}

  void run() {
    for (at_ = skipBlanks(0); at_ < text_.size(); at_ = skipBlanks(at_)) {
      switch (text_[at_]) {
      case '{': open(Kind::object); break;
      case '[': open(Kind::array); break;
      case '}': close(Kind::object); break;
      case ']': close(Kind::array); break;
      case ',': comma(); break;
      case ':': colon(); break;
      case '"': string(); break;
      default: word(); break;
      }
    }
    while (!open_.empty()) leave(text_.size(), false);
  }

private:
  struct Open {
    std::uint32_t item;
    std::uint32_t pending = kNone;  ///< a member without its value
  };

  static std::uint32_t narrow(std::size_t number) { return static_cast<std::uint32_t>(number); }

  std::size_t skipBlanks(std::size_t at) const {
    while (at < text_.size() && kBlanks.has(text_[at])) ++at;
    return at;
  }

  bool isInObject() const { return !open_.empty() && items_[open_.back().item].kind == Kind::object; }
  std::uint32_t pending() const { return open_.empty() ? kNone : open_.back().pending; }

  /// Fills the pending member, or adds an item.
  std::uint32_t addValue(Kind kind, std::size_t begin, std::size_t end, bool isClosed) {
    std::uint32_t number = pending();
    if (number == kNone) {
      number = narrow(items_.size());
      items_.emplace_back();
      items_.back().parent = open_.empty() ? kNone : open_.back().item;
    } else {
      open_.back().pending = kNone;
    }
    Item& item = items_[number];
    item.kind = kind;
    item.begin = narrow(begin);
    item.end = narrow(end);
    item.isClosed = isClosed;
    item.next = narrow(items_.size());
    return number;
  }

  void addKey(std::size_t begin, std::size_t end, bool isClosed) {
    Item key;
    key.keyBegin = narrow(begin);
    key.keyEnd = narrow(end);
    key.begin = key.end = narrow(end);
    key.isClosed = isClosed;
    key.parent = open_.back().item;
    key.next = narrow(items_.size() + 1);
    open_.back().pending = narrow(items_.size());
    items_.push_back(key);
  }

  void open(Kind kind) {
    const std::uint32_t item = addValue(kind, at_, at_ + 1, false);
    if (open_.empty() && scan_.root_ == kNone) scan_.root_ = item;
    open_.push_back({item});
    ++(kind == Kind::object ? objects_ : arrays_);
    ++at_;
  }

  /// A bracket that fits none that is open is passed over; one that fits an outer one closes those inside.
  void close(Kind kind) {
    if ((kind == Kind::object ? objects_ : arrays_) > 0) {
      while (items_[open_.back().item].kind != kind) leave(at_, false);
      leave(at_ + 1, true);
    }
    ++at_;
  }

  void leave(std::size_t end, bool isClosed) {
    Item& item = items_[open_.back().item];
    item.end = narrow(end);
    item.isClosed = isClosed;
    item.next = narrow(items_.size());
    --(item.kind == Kind::object ? objects_ : arrays_);
    open_.pop_back();
  }

  void comma() {
    if (!open_.empty()) open_.back().pending = kNone;
    ++at_;
  }

  void colon() {
    if (const std::uint32_t member = pending(); member != kNone && !items_[member].hasColon) {
      Item& item = items_[member];
      item.hasColon = true;
      item.begin = item.end = narrow(at_ + 1);
    }
    ++at_;
  }

  bool isColonNext(std::size_t at) const {
    at = skipBlanks(at);
    return at < text_.size() && text_[at] == ':';
  }

  /// In an object it is a key where one is due, or where a colon follows: then the value before it is
  /// missing.
  void addToken(Kind kind, std::size_t end, bool isClosed) {
    const bool isKey = isInObject() && (pending() == kNone || (kind == Kind::string && isColonNext(end)));
    if (isKey) {
      addKey(at_, end, isClosed);
    } else {
      addValue(kind, at_, end, isClosed);
    }
    at_ = end;
  }

  /// Without a closing mark in its line it ends in front of the brackets and commas at the line's end.
  void string() {
    std::size_t end = findAny(text_, kEndsString, at_ + 1);
    while (end + 1 < text_.size() && text_[end] == '\\' && !kEndsLine.has(text_[end + 1]))
      end = findAny(text_, kEndsString, end + 2);
    if (end < text_.size() && text_[end] == '"') return addToken(Kind::string, end + 1, true);
    end = findAny(text_, kEndsLine, end);
    while (end > at_ + 1 && kBehindString.has(text_[end - 1])) --end;
    addToken(Kind::string, end, false);
  }

  void word() { addToken(Kind::word, findAny(text_, kEndsWord, at_), true); }

  JsonScan& scan_;
  std::string_view text_;
  std::vector<Item>& items_;
  std::vector<Open> open_;
  std::size_t objects_ = 0;  // of the open ones
  std::size_t arrays_ = 0;
  std::size_t at_ = 0;
};

JsonScan::JsonScan(std::string_view text) : text_(text.substr(0, kLongest)) { Scanner(*this).run(); }

std::uint32_t JsonScan::find(std::uint32_t object, std::string_view key) const {
  std::uint32_t found = kNone;
  if (object == kNone || items_[object].kind != Kind::object) return found;
  for (std::uint32_t i = first(object); i != end(object); i = items_[i].next) {
    if (!items_[i].hasKey()) continue;
    const Span span = items_[i].keySpan();
    const bool isPlain = span.size() == key.size() + 2 && text_.substr(span.begin + 1, key.size()) == key;
    if (isPlain || (span.size() > key.size() + 2 && keyOf(i) == key)) found = i;
  }
  return found;
}

std::uint32_t JsonScan::lastBefore(std::size_t offset) const {
  const auto next = std::upper_bound(items_.begin(), items_.end(), offset,
                                     [](std::size_t at, const Item& item) { return at < item.start(); });
  return next == items_.begin() ? kNone : static_cast<std::uint32_t>(next - items_.begin()) - 1;
}

std::string JsonScan::decoded(Span literal) const {
  const std::string_view whole = text_.substr(literal.begin, literal.size());
  if (whole.empty() || whole.front() != '"') return std::string(whole);
  const bool isClosed = whole.size() > 1 && whole.back() == '"';
  const std::string_view inside = whole.substr(1, whole.size() - (isClosed ? 2 : 1));
  if (inside.find('\\') == inside.npos) return std::string(inside);
  const auto value = nlohmann::json::parse(whole.begin(), whole.end(), nullptr, false);
  return value.is_string() ? value.get<std::string>() : std::string(inside);
}

std::string JsonScan::keyOf(std::uint32_t item) const {
  return items_[item].hasKey() ? decoded(items_[item].keySpan()) : std::string();
}

std::string JsonScan::textOf(std::uint32_t item) const {
  return item == kNone ? std::string() : decoded(items_[item].span());
}

std::string JsonScan::textOf(std::uint32_t object, std::string_view key) const {
  const std::uint32_t item = find(object, key);
  return item != kNone && items_[item].kind == Kind::string ? textOf(item) : std::string();
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

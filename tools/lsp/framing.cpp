#include "tools/lsp/framing.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <optional>
#include <ostream>
#include <string_view>
#include <utility>

namespace TolmSDK::Graphics::sfg::tools::lsp {

namespace {

constexpr std::size_t kLongestLine = 4096;
constexpr std::size_t kPiece = 1 << 16;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

/// The value of the header of that name; nothing for another one.
std::optional<std::string_view> headerValue(std::string_view line, std::string_view name) {
  const std::size_t colon = line.find(':');
  if (colon == line.npos) return std::nullopt;
  const std::string_view found = trimmed(line.substr(0, colon));
  const bool isSame = std::equal(found.begin(), found.end(), name.begin(), name.end(),
                                 [](char a, char b) { return lower(a) == lower(b); });
  if (!isSame) return std::nullopt;
  return trimmed(line.substr(colon + 1));
}

std::optional<std::size_t> numberOf(std::string_view text) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

FrameReader::Outcome FrameReader::read() {
  std::optional<std::size_t> length;
  bool isBlock = false;
  while (true) {
    switch (readLine()) {
    case Line::ended: return Outcome::ended;
    case Line::text:
      isBlock = true;
      if (const auto value = headerValue(line_, "Content-Length")) {
        length = numberOf(*value);
        if (!length) return malformed("`Content-Length` is no number");
      }
      break;
    case Line::empty:
      if (length) return readBody(*length);
      if (isBlock) return malformed("a message has no `Content-Length`");
      break;
    }
  }
}

/// Of a line that is too long only the beginning is kept.
FrameReader::Line FrameReader::readLine() {
  line_.clear();
  for (int c = in_.get(); c != std::istream::traits_type::eof(); c = in_.get()) {
    if (c == '\n') {
      if (!line_.empty() && line_.back() == '\r') line_.pop_back();
      return line_.empty() ? Line::empty : Line::text;
    }
    if (line_.size() < kLongestLine) line_ += static_cast<char>(c);
  }
  return Line::ended;
}

FrameReader::Outcome FrameReader::readBody(std::size_t length) {
  if (length > longest_) {
    for (std::size_t rest = length; rest > 0 && in_;) {
      const std::size_t piece = std::min(rest, kPiece);
      in_.ignore(static_cast<std::streamsize>(piece));
      rest -= piece;
    }
    std::string why = "a message of ";
    why.append(std::to_string(length)).append(" bytes; at most ").append(std::to_string(longest_));
    return malformed(why.append(" are read"));
  }
  text_.clear();
  while (text_.size() < length) {
    const std::size_t before = text_.size();
    const std::size_t piece = std::min(length - before, std::max(kPiece, before));
    text_.resize(before + piece);
    in_.read(text_.data() + before, static_cast<std::streamsize>(piece));
    if (static_cast<std::size_t>(in_.gcount()) != piece) return Outcome::ended;
  }
  return Outcome::message;
}

FrameReader::Outcome FrameReader::malformed(std::string why) {
  text_ = std::move(why);
  return Outcome::malformed;
}

void writeFrame(std::ostream& out, const std::string& text) {
  out << "Content-Length: " << text.size() << "\r\n\r\n" << text << std::flush;
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

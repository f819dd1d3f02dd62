#include "benchmarks/yardstick.h"

#include <cstddef>

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

bool startsIdentifier(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; }
bool continuesIdentifier(wchar_t c) { return startsIdentifier(c) || (c >= L'0' && c <= L'9'); }

/// Length of the identifier, or of the run of other characters, that starts at `start`.
std::size_t runLength(std::wstring_view text, std::size_t start) {
  std::size_t end = start + 1;
  if (startsIdentifier(text[start])) {
    while (end < text.size() && continuesIdentifier(text[end])) ++end;
  } else {
    while (end < text.size() && !startsIdentifier(text[end])) ++end;
  }
  return end - start;
}

}  // namespace

Yardstick::Yardstick(std::wstring_view text) : text_(text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::wstring_view run = text.substr(at, runLength(text, at));
    if (startsIdentifier(run.front())) names_.try_emplace(run, WString(run) + L"_");
    at += run.size();
  }
}

WString Yardstick::copy() const {
  WString out;
  out.reserve(text_.size() + text_.size() / 4);
  for (std::size_t at = 0; at < text_.size();) {
    const std::wstring_view run = text_.substr(at, runLength(text_, at));
    if (startsIdentifier(run.front())) {
      out += names_.find(run)->second;
    } else {
      out += run;
    }
    at += run.size();
  }
  return out;
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

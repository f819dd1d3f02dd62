#include "host/build/value_free_text.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// "    float gain : packoffset(c0) = 0.5;" without the value; other lines as they are.
std::string_view memberOf(std::string_view line) {
  const std::size_t place = line.find(" : packoffset(");
  if (place == line.npos || !line.ends_with(';')) return line;
  constexpr std::string_view kValue = ") = ";
  const std::size_t value = line.find(kValue, place);
  return value == line.npos ? line : line.substr(0, value + 1);
}

}  // namespace

std::string withoutUniformValues(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  bool isInBuffer = false;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    const bool isEnded = end != text.npos;
    text.remove_prefix(isEnded ? end + 1 : text.size());
    // Names that begin so are those of assembled buffers alone.
    if (line.starts_with("cbuffer sfg_")) isInBuffer = true;
    if (line == "};") isInBuffer = false;
    const std::string_view kept = isInBuffer ? memberOf(line) : line;
    out.append(kept);
    if (kept.size() != line.size()) out += ';';
    if (isEnded) out += '\n';
  }
  return out;
}

}  // namespace TolmSDK::Graphics::sfg::host

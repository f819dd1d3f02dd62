#include "sfg/code_formatter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "sfg/scoped_text.h"
#include "sfg/size_limit.h"

namespace TolmSDK::Graphics::sfg {

CodeFormatter::CodeFormatter(int indent) : result_(&ownResult_), indent_(std::max(indent, 0)) {}

void CodeFormatter::addLine(WString& line) {
  trimWhiteSpaces(line);
  const int next = getNextLineIdent(line, indent_);
  // A line that closes more than it opens stands at the level it closes to, any other at the level before it.
  const int tabs = std::max(std::min(next, indent_), 0);
  checkTextLength(result_->size() + static_cast<std::size_t>(tabs) + line.size() + 1);
  addIdent(*result_, tabs);
  result_->append(line);
  result_->push_back(L'\n');
  indent_ = next;
}

void CodeFormatter::addLine(const wchar_t* line) {
  if (line == nullptr) return;
  lineBuffer_ = line;
  addLine(lineBuffer_);
}

bool CodeFormatter::setResult(WString* result) {
  if (result == nullptr) return false;
  result_ = result;
  return true;
}

void CodeFormatter::addIdent(WString& s, int count) { s.append(static_cast<std::size_t>(count), L'\t'); }

int CodeFormatter::getNextLineIdent(const WString& line, int indent) {
  const std::int64_t next = indent + std::int64_t{std::count(line.begin(), line.end(), L'{')} -
                            std::int64_t{std::count(line.begin(), line.end(), L'}')};
  return static_cast<int>(
      std::clamp<std::int64_t>(next, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

}  // namespace TolmSDK::Graphics::sfg

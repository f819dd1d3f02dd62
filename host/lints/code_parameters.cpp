#include "host/lints/code_parameters.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::host {

namespace {

bool isQualifier(std::wstring_view word) {
  constexpr std::wstring_view kQualifiers[] = {L"in", L"out", L"inout", L"const", L"uniform"};
  return std::find(std::begin(kQualifiers), std::end(kQualifiers), word) != std::end(kQualifiers);
}

/// One parameter, of the tokens from `first` up to `last`.
CodeParameter readParameter(const PlainCode& code, std::size_t first, std::size_t last) {
  CodeParameter parameter;
  std::size_t depth = 0;
  for (std::size_t i = first; i < last; ++i) {
    if (code.is(i, L'<')) ++depth;
    if (code.is(i, L'>') && depth > 0) --depth;
    if (depth > 0) continue;
    if (code.is(i, L':') || code.is(i, L'=')) break;
    if (code.is(i, L'[')) {
      parameter.isArray = true;
      break;
    }
    if (!code.isName(i)) continue;
    const std::wstring_view word = code.word(i);
    if (isQualifier(word)) {
      parameter.isOutput = parameter.isOutput || word == L"out";
      parameter.isInout = parameter.isInout || word == L"inout";
      continue;
    }
    if (parameter.type.empty()) {
      parameter.type = word;
    } else {
      parameter.name = word;
      parameter.token = i;
    }
  }
  return parameter;
}

}  // namespace

std::vector<CodeParameter> readParameters(const PlainCode& code, std::size_t open, std::size_t close) {
  std::vector<CodeParameter> parameters;
  std::size_t depth = 0;
  std::size_t first = open + 1;
  const auto take = [&](std::size_t last) {
    if (last > first) parameters.push_back(readParameter(code, first, last));
    first = last + 1;
  };
  for (std::size_t i = first; i < close; ++i) {
    if (code.is(i, L'<') || code.is(i, L'(') || code.is(i, L'[')) ++depth;
    if ((code.is(i, L'>') || code.is(i, L')') || code.is(i, L']')) && depth > 0) --depth;
    if (depth == 0 && code.is(i, L',')) take(i);
  }
  take(close);
  return parameters;
}

}  // namespace TolmSDK::Graphics::sfg::host

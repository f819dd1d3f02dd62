// Any text through the symbol parser: every call moves on, and what it finds lies inside what it consumed.

#include "sfg/shader_symbol.h"
#include "tests/fuzz/fuzz_input.h"
#include "text/test_views.h"

namespace TolmSDK::Graphics::sfg {
namespace {

void requireInside(const ScopedText& part, const ScopedText& whole) {
  if (part.empty()) return;
  require(part.text >= whole.text && part.text + part.length <= whole.text + whole.length,
          "a view lies outside");
}

void requireCallsInside(const Array<BuiltinFunction>& calls, const ScopedText& range) {
  for (const BuiltinFunction& call : calls) {
    requireInside(call.range, range);
    for (const ScopedText& argument : call.arguments) requireInside(argument, call.range);
  }
}

void parseAll(const ScopedText& text) {
  ShaderSymbol symbol;
  std::size_t pos = 0;
  while (pos < text.length) {
    const std::size_t start = pos;
    const bool isFound = ShaderSymbol::findFirstSymbol(symbol, text, pos);
    require(pos > start && pos <= text.length, "the position moves on inside the text");
    require(isFound == !symbol.getRange().empty(), "a symbol has a range");
    require(isFound == (symbol.getType() != EShaderSymbolType::unknown), "a symbol has a type");
    const ScopedText consumed = text.substr(start, pos - start);
    requireInside(symbol.getRange(), consumed);
    requireInside(symbol.getName(), consumed);
    requireCallsInside(symbol.getBuiltinFunctions(), symbol.getRange());
    requireCallsInside(symbol.getShaderFunctions(), symbol.getRange());

    ScopedText rest = text.substr(start, text.length);
    ShaderSymbol again;
    require(ShaderSymbol::findFirstSymbol(again, rest), "the view moves on");
    require(rest.text == text.text + pos && again.getKey() == symbol.getKey(), "both forms find the same");
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace TolmSDK;
  using namespace TolmSDK::Graphics::sfg;
  const ExactText text(fromUtf8(bytesOf(data, size)));
  parseAll(text.view());
  ShaderSymbol symbol;
  symbol.parseKeywords(text.view());
  requireCallsInside(symbol.getBuiltinFunctions(), text.view());
  requireCallsInside(symbol.getShaderFunctions(), text.view());
  return 0;
}

#include "benchmarks/text_cases.h"

#include <memory>
#include <stdexcept>

#include "sfg/code_snippet.h"
#include "sfg/keyword_replace.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

namespace {

/// Functions of about 200 characters, `length` characters or a few more.
WString makeCode(std::size_t length) {
  WString code;
  for (std::size_t i = 0; code.size() < length; ++i) {
    code += formatted(
        L"float curve%Iu(float x, float k)\n{\n\tfloat a = x * x * (3.0 - 2.0 * x); // smooth\n"
        L"\tfloat b = 1.0 - exp(-k * x) * keyword%Iu;\n\treturn lerp(a, b, saturate(k)) * sfg_time;\n}\n",
        i, i % 64);
  }
  return code;
}

Work replace(const std::shared_ptr<const KeywordReplacePattern>& pattern, const WString& code) {
  const auto replacer = std::make_shared<KeywordReplacer>();
  replacer->addReplacePattern(*pattern);
  Work work;
  work.round = [pattern, replacer, code] {
    WString out;
    replacer->appendAndReplace(out, code);
  };
  work.characters = static_cast<double>(code.size());
  return work;
}

}  // namespace

Work replaceKeywords(std::size_t characters) {
  const auto pattern = std::make_shared<KeywordReplacePattern>();
  for (std::size_t i = 0; i < 50; ++i) {
    pattern->addReplacePattern(formatted(L"keyword%Iu", i), formatted(L"value%Iu", i));
  }
  return replace(pattern, makeCode(characters));
}

Work parseSymbols(std::size_t characters) {
  const WString code = makeCode(characters);
  Work work;
  work.round = [code] {
    CodeSnippet snippet;
    snippet.addCode(code);
    snippet.parse();
  };
  work.characters = static_cast<double>(code.size());
  return work;
}

Work findSymbols(std::size_t count) {
  WString code;
  for (std::size_t i = 0; i < count; ++i) code += formatted(L"struct Part%Iu { float value; };\n", i);
  const auto snippet = std::make_shared<CodeSnippet>();
  snippet->addCode(code);
  snippet->parse();
  Work work;
  work.round = [snippet] {
    for (std::size_t i = 0; i < snippet->getNumSymbols(); ++i) {
      const ShaderSymbol& symbol = snippet->getSymbol(i);
      if (symbol.hasKey() && snippet->findSymbol(symbol.getKey()) != i) {
        throw std::runtime_error("a symbol was not found");
      }
    }
  };
  work.characters = static_cast<double>(code.size());
  return work;
}

Work missKeyword(std::size_t length) {
  const auto pattern = std::make_shared<KeywordReplacePattern>();
  pattern->addReplacePattern(WString(length, L'a'), L"found");
  return replace(pattern, WString(length - 1, L'a'));
}

}  // namespace TolmSDK::Graphics::sfg::benchmarks

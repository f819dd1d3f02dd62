// Scanning and rewriting of text alone. N is the number of characters.

#include <benchmark/benchmark.h>

#include <cstddef>

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

/// 50 keywords, most of which occur many times.
void replaceKeywords(benchmark::State& state) {
  const WString code = makeCode(static_cast<std::size_t>(state.range(0)));
  KeywordReplacePattern pattern;
  for (std::size_t i = 0; i < 50; ++i)
    pattern.addReplacePattern(formatted(L"keyword%Iu", i), formatted(L"value%Iu", i));
  KeywordReplacer replacer;
  replacer.addReplacePattern(pattern);
  WString out;
  for (auto _ : state) {
    replacer.appendAndReplace(out, code);
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["characters"] = static_cast<double>(code.size());
}

void parseSymbols(benchmark::State& state) {
  const WString code = makeCode(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    CodeSnippet snippet;
    snippet.addCode(code);
    snippet.parse();
    benchmark::DoNotOptimize(snippet.getNumSymbols());
  }
  state.counters["characters"] = static_cast<double>(code.size());
}

BENCHMARK(replaceKeywords)
    ->Name("replacer")
    ->RangeMultiplier(10)
    ->Range(1000, 1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(parseSymbols)
    ->Name("symbol parser")
    ->RangeMultiplier(10)
    ->Range(1000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

}  // namespace TolmSDK::Graphics::sfg::benchmarks

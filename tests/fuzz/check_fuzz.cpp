// A library, a graph and an environment, checked together as an editor does: all that is found lies in one of
// them, at a place that is there, and is found again. Parts are divided by lines of five equals signs.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/check.h"
#include "sfg/host/compile.h"
#include "sfg/host/errors.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

/// The documents by their names.
using Texts = std::map<std::string, std::string>;

constexpr std::string_view kDivider = "\n=====\n";

Texts textsOf(std::string_view bytes, const std::vector<std::string>& names) {
  Texts texts;
  for (const std::string& name : names) {
    const std::size_t end = bytes.find(kDivider);
    texts[name] = std::string(bytes.substr(0, end));
    bytes = end == std::string_view::npos ? std::string_view() : bytes.substr(end + kDivider.size());
  }
  return texts;
}

/// A column behind the last character is a place, and so is the line behind the last line break.
void requirePlace(const host::Diagnostic& found, const Texts& texts) {
  const auto text = texts.find(found.file);
  require(text != texts.end(), "what is found lies in one of the documents");
  if (found.line == 0) return;
  std::string_view rest = text->second;
  for (std::size_t line = 1; line < found.line; ++line) {
    const std::size_t end = rest.find('\n');
    require(end != std::string_view::npos, "the line is there");
    rest.remove_prefix(end + 1);
  }
  require(found.column <= rest.substr(0, rest.find('\n')).size() + 1, "the column is there");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const FuzzFolder folder(
      {{"a.fraglib", "{}"}, {"tone.h", "float3 tone(float3 c)\n{\n  return c;\n}\n"}});
  // Crashes of compilers are told, and are not looked for.
  static const bool isIsolated = host::isolateCompilers({10, std::uint64_t{1} << 30});
  static_cast<void>(isIsolated);
  const std::string library = folder.file("a.fraglib");
  const Texts texts = textsOf(bytesOf(data, size), {library, "graph.json", "environment.json"});
  host::CheckOptions options;
  options.folders = {{folder.path()}, {folder.path()}};
  options.texts = {{library, texts.at(library)}};
  const host::Document environment =
      host::Document::fromText(texts.at("environment.json"), "environment.json");
  try {
    const host::Checker checker(options);
    for (const host::CheckResult& result :
         {checker.checkLibrary(library),
          checker.checkGraph(host::Document::fromText(texts.at("graph.json"), "graph.json")),
          checker.checkEnvironment(environment)}) {
      for (const host::Diagnostic& found : result.diagnostics) {
        require(!found.text.empty() && !found.identifier.empty(), "what is found is told, and of a kind");
        if (!found.file.ends_with("tone.h")) requirePlace(found, texts);
      }
    }
    require(checker.checkLibrary(library).diagnostics == checker.checkLibrary(library).diagnostics,
            "what is found is found again");
  } catch (const host::InputError& error) {
    require(false, error.what());
  }
  return 0;
}

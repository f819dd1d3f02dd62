// Shader code of a fragment, line by line: what the compiler says of it, and every place of the shader that
// is made of it, lies in the library, where exact places hold the word that they name.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sfg/host/compile.h"
#include "sfg/host/job.h"
#include "tests/fuzz/fuzz_input.h"
#include "tolmsdk/unicode.h"

namespace {

using namespace TolmSDK;
using namespace TolmSDK::Graphics::sfg;

constexpr const char* kGraph = R"json({
  "outputs": [ { "name": "color", "type": "float3", "node": "second" } ],
  "nodes": [ { "name": "first", "fragment": "code" },
             { "name": "second", "fragment": "code", "inputs": { "c": { "node": "first" } } } ]
})json";

/// A string of JSON; bytes that are no UTF-8 are questions.
std::string quoted(std::string_view line) {
  std::string text = "\"";
  for (const char byte : line) {
    if (byte == '"' || byte == '\\') text += '\\';
    const auto number = static_cast<unsigned char>(byte);
    text += number < 0x20 || number > 0x7e ? (byte == '\t' ? std::string("\\t") : std::string("?"))
                                           : std::string(1, byte);
  }
  return text + '"';
}

/// The library, a line of code in each line. A line of five equals signs ends the predefine.
std::string libraryOf(std::string_view code) {
  std::string predefine;
  std::string body;
  std::string* part = &predefine;
  if (code.find("=====\n") == std::string_view::npos) part = &body;
  while (!code.empty()) {
    const std::size_t end = code.find('\n');
    const std::string_view line = code.substr(0, end);
    code.remove_prefix(end == std::string_view::npos ? code.size() : end + 1);
    if (line == "=====") {
      part = &body;
    } else {
      *part += (part->empty() ? "" : ",\n") + quoted(line);
    }
  }
  return "{ \"code\": { \"language\": [\"dx11\"], \"predefine\": [\n" + predefine +
         "],\n\"implementation\": [\n\"void code(float3 c, out float3 r)\",\n\"{\",\n" + body +
         (body.empty() ? "" : ",\n") + "\"}\" ] } }\n";
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

/// The documents are ASCII: a column is a byte.
std::string_view rest(const std::vector<std::string_view>& lines, std::size_t line, std::size_t column) {
  require(line >= 1 && line <= lines.size(), "the line is there");
  require(column >= 1 && column <= lines[line - 1].size() + 1, "the column is there");
  return lines[line - 1].substr(column - 1);
}

bool startsInside(std::string_view text, std::string_view word) {
  for (; !word.empty(); word.remove_prefix(1)) {
    if (text.starts_with(word)) return true;
  }
  return false;
}

void requirePlaces(const host::Job& job, const host::Shader& shader, const std::string& library) {
  const std::vector<std::string_view> source = linesOf(library);
  const host::SourceMap map = job.mapSources();
  const std::vector<std::string_view> lines = linesOf(shader.text);
  for (std::size_t line = 1; line <= lines.size(); ++line) {
    for (std::size_t column = 1; column <= lines[line - 1].size(); column += 3) {
      const host::SourcePlace place = map.find(line, column);
      if (place.kind != host::SourcePlace::Kind::implementation &&
          place.kind != host::SourcePlace::Kind::predefine)
        continue;
      if (place.line == 0) continue;
      const std::string_view there = rest(source, place.line, place.column);
      if (place.isExact && place.token.find_first_of("\\\"\t") == std::string::npos)
        require(startsInside(there, place.token), "an exact place holds its word, or the rest of it");
    }
  }
}

void run(const std::string& library) try {
  static const FuzzFolder folder;
  // Crashes of compilers are told, and are not looked for.
  static const bool isIsolated = host::isolateCompilers({10, std::uint64_t{1} << 30});
  static_cast<void>(isIsolated);
  folder.write("library.fraglib", library);
  host::Job job(host::LibrarySet::load({{folder.path()}, {}}), host::Document::fromText(kGraph, "graph"));
  job.collapse();
  static_cast<void>(job.warnings());
  const host::Shader shader = job.assemble();
  requirePlaces(job, shader, library);
  try {
    static_cast<void>(host::compileToSpirv(shader));
  } catch (const host::CompileError& error) {
    const std::vector<std::string_view> source = linesOf(library);
    for (const host::Diagnostic& told : job.explain(shader, error)) {
      if (told.line > 0 && told.file == folder.file("library.fraglib"))
        static_cast<void>(rest(source, told.line, told.column));
    }
  }
} catch (const host::InputError&) {
} catch (const host::CollapseError&) {
} catch (const host::AssemblyError&) {
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  run(libraryOf(bytesOf(data, size)));
  return 0;
}

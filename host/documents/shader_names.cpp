#include "host/documents/shader_names.h"

#include <algorithm>

#include "host/documents/near_name.h"
#include "tolmsdk/type_id.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Words that the compilers take for no name of a parameter; sorted.
constexpr std::string_view kWords[] = {"Buffer",      "SamplerState",
                                       "Texture2D",   "auto",
                                       "break",       "case",
                                       "cbuffer",     "char",
                                       "class",       "column_major",
                                       "const",       "continue",
                                       "default",     "discard",
                                       "do",          "dword",
                                       "else",        "enum",
                                       "extern",      "false",
                                       "for",         "goto",
                                       "groupshared", "half",
                                       "half2",       "half3",
                                       "half4",       "if",
                                       "in",          "inline",
                                       "inout",       "line",
                                       "linear",      "long",
                                       "matrix",      "namespace",
                                       "new",         "nointerpolation",
                                       "operator",    "out",
                                       "packoffset",  "point",
                                       "precise",     "private",
                                       "public",      "return",
                                       "row_major",   "sampler",
                                       "shared",      "short",
                                       "sizeof",      "static",
                                       "string",      "struct",
                                       "switch",      "tbuffer",
                                       "template",    "texture",
                                       "throw",       "triangle",
                                       "true",        "try",
                                       "typedef",     "uniform",
                                       "unorm",       "unsigned",
                                       "using",       "vector",
                                       "virtual",     "void",
                                       "volatile",    "while"};
static_assert(std::is_sorted(std::begin(kWords), std::end(kWords)));

bool isType(std::string_view name) {
  return std::any_of(allTypes().begin(), allTypes().end(),
                     [&](const TypeID& type) { return toUtf8(type.toString()) == name; });
}

bool isWord(std::string_view name) {
  return std::binary_search(std::begin(kWords), std::end(kWords), name) || isType(name);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isPart(char c) { return isDigit(c) || c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool isIdentifiers(std::string_view name) {
  for (std::size_t start = 0; start <= name.size();) {
    const std::size_t end = std::min(name.find('.', start), name.size());
    if (!isIdentifier(name.substr(start, end - start))) return false;
    start = end + 1;
  }
  return true;
}

/// Of what is no identifier, the parts that can stand in one.
std::string repaired(std::string_view name) {
  constexpr std::size_t kLongest = 64;
  std::string text;
  bool wantsGap = false;
  for (const char c : name) {
    if (!isPart(c)) {
      wantsGap = !text.empty();
      continue;
    }
    if (text.size() >= kLongest) break;
    if (text.empty() && isDigit(c)) text += '_';
    if (wantsGap) text += '_';
    wantsGap = false;
    text += c;
  }
  return isWord(text) ? text + "_" : text;
}

}  // namespace

bool isIdentifier(std::string_view name) {
  return !name.empty() && !isDigit(name.front()) && std::all_of(name.begin(), name.end(), isPart);
}

std::string nameFault(std::string_view name, bool isDotted) {
  const bool isWhole = isDotted ? isIdentifiers(name) : isIdentifier(name);
  if (isWhole && !isWord(name)) return std::string();
  std::string fault = "`";
  fault.append(name).append(isWhole ? "` is a word of the shading language" : "` is no identifier");
  return fault.append(didYouMean(repaired(name)));
}

}  // namespace TolmSDK::Graphics::sfg::host

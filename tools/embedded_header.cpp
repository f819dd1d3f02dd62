#include "tools/embedded_header.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

constexpr std::size_t kBytesOfLine = 16;
constexpr std::size_t kCharactersOfLine = 90;

/// Keywords, and names that are taken where programs are compiled.
constexpr std::string_view kKeywords =
    " alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t "
    "char32_t char8_t class co_await co_return co_yield compl concept const const_cast "
    "consteval constexpr constinit continue decltype default delete do double dynamic_cast "
    "else enum explicit export extern false float for friend goto if inline int long mutable "
    "namespace new noexcept not not_eq nullptr operator or or_eq private protected public "
    "register reinterpret_cast requires return short signed sizeof static static_assert "
    "static_cast std struct switch template this thread_local throw true try typedef typeid "
    "typename union unsigned using virtual void volatile wchar_t while xor xor_eq linux unix "
    "NULL assert ";

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isKeyword(std::string_view word) {
  return kKeywords.find(std::string(" ").append(word).append(" ")) != kKeywords.npos;
}

/// Names with two underscores, or one in front of a capital letter, are the compiler's.
bool isReserved(std::string_view word) {
  return word.find("__") != word.npos ||
         (word.size() > 1 && word[0] == '_' && word[1] >= 'A' && word[1] <= 'Z');
}

void writeByte(std::string& out, unsigned char byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  out.append("0x").push_back(kDigits[byte >> 4U]);
  out.push_back(kDigits[byte & 15U]);
  out.push_back(',');
}

std::string writeBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() * 5 + bytes.size() / kBytesOfLine * 2 + 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % kBytesOfLine == 0) text.append("\n    ");
    writeByte(text, static_cast<unsigned char>(bytes[i]));
  }
  return text;
}

/// As it stands in a string literal. Other than printable characters are octal, which ends after three
/// digits.
void writeCharacter(std::string& out, char c) {
  const auto code = static_cast<unsigned char>(c);
  if (c == '\n') {
    out.append("\\n");
  } else if (code < 0x20 || code > 0x7e) {
    out.push_back('\\');
    for (const unsigned int shift : {6U, 3U, 0U})
      out.push_back(static_cast<char>('0' + ((code >> shift) & 7U)));
  } else {
    if (c == '"' || c == '\\') out.push_back('\\');
    out.push_back(c);
  }
}

std::string writeLiteral(std::string_view text) {
  std::string literal = "\"";
  for (const char c : text) writeCharacter(literal, c);
  return literal.append("\"");
}

/// One literal for each line of the text, and more for a long one.
std::string writeLiterals(std::string_view text) {
  std::string literals = "\n    \"";
  std::size_t length = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    writeCharacter(literals, text[i]);
    if (i + 1 < text.size() && (text[i] == '\n' || ++length == kCharactersOfLine)) {
      literals.append("\"\n    \"");
      length = 0;
    }
  }
  return literals.append("\"");
}

}  // namespace

bool isNamespaceName(std::string_view text) {
  const auto isPart = [](char c) { return isLetter(c) || isDigit(c); };
  return !text.empty() && !isDigit(text.front()) && std::all_of(text.begin(), text.end(), isPart) &&
         !isKeyword(text) && !isReserved(text);
}

std::string namespaceFor(const std::string& file) {
  std::string name;
  for (const char c : file) {
    const char part = isLetter(c) || isDigit(c) ? c : '_';
    if (part != '_' || !name.ends_with('_')) name.push_back(part);
  }
  if (isNamespaceName(name)) return name;
  return name.insert(0, name.starts_with('_') ? "shader" : "shader_");
}

std::string writeEmbeddedHeader(const std::string& scope, const EmbeddedShader& shader) {
  const std::string name = scope + "::" + namespaceFor(shader.file);
  std::string text =
      "#pragma once\n\n// Written by sfg; do not edit.\n\n#include <string_view>\n\nnamespace ";
  text.append(name).append(" {\n\n/// Equal shader text, interface and options, equal hash.\n");
  text.append("inline constexpr std::string_view hash = \"").append(shader.hash).append("\";\n\n");
  text.append("alignas(4) inline constexpr unsigned char bytes[] = {").append(writeBytes(shader.bytes));
  text.append("\n};\n\n/// What the shader takes and gives, as JSON.\n");
  text.append("inline constexpr std::string_view reflection =").append(writeLiterals(shader.reflection));
  return text.append(";\n\n}  // namespace ").append(name).append("\n");
}

std::string writeCollectingHeader(const std::string& scope, const std::vector<std::string>& files) {
  std::string text = "#pragma once\n\n// Written by sfg; do not edit.\n\n#include <array>\n#include "
                     "<span>\n#include <string_view>\n\n";
  for (const std::string& file : files) {
    text.append("#include \"").append(scope).append("/").append(file).append(".h\"\n");
  }
  text.append("\nnamespace ").append(scope).append(" {\n\nstruct Shader {\n  std::string_view file;\n");
  text.append("  std::span<const unsigned char> bytes;\n  std::string_view hash;\n");
  text.append("  std::string_view reflection;  ///< JSON\n};\n\ninline constexpr std::array<Shader, ");
  text.append(std::to_string(files.size())).append("> all = {{\n");
  for (const std::string& file : files) {
    const std::string name = namespaceFor(file);
    text.append("    {").append(writeLiteral(file)).append(", ").append(name).append("::bytes, ");
    text.append(name).append("::hash, ").append(name).append("::reflection},\n");
  }
  return text.append("}};\n\n}  // namespace ").append(scope).append("\n");
}

}  // namespace TolmSDK::Graphics::sfg::tools

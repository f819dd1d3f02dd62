#include "host/diagnostics/compile_messages.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>

#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// "'SUBJECT' : TEXT"
struct Message {
  std::string subject;
  std::string text;
};

Message split(const std::string& line) {
  constexpr std::string_view kBetween = "' : ";
  const std::size_t end = line.find(kBetween);
  if (!line.starts_with('\'') || end == std::string::npos) return {"", line};
  std::string text = line.substr(end + kBetween.size());
  text.erase(0, text.find_first_not_of(' '));
  text.erase(text.find_last_not_of(' ') + 1);
  return {line.substr(1, end - 1), text};
}

bool isScalarType(std::string_view name) {
  return name == "float" || name == "int" || name == "uint" || name == "bool" || name == "half" ||
         name == "double";
}

bool isDimension(char c) { return c >= '1' && c <= '4'; }

/// "float", "float3", "float4x4"
bool isValueType(std::string_view name) {
  if (isScalarType(name)) return true;
  if (name.size() > 3 && isDimension(name[name.size() - 3]) && name[name.size() - 2] == 'x' &&
      isDimension(name.back()))
    return isScalarType(name.substr(0, name.size() - 3));
  return name.size() > 1 && isDimension(name.back()) && isScalarType(name.substr(0, name.size() - 1));
}

bool isReserved(std::string_view name) {
  static const std::vector<std::string_view> words = {
      "in",       "out",     "inout",  "const",   "static",   "uniform",   "return",  "if",
      "else",     "for",     "while",  "do",      "switch",   "case",      "default", "break",
      "continue", "discard", "struct", "cbuffer", "register", "technique", "pass",    "sampler",
      "texture",  "matrix",  "vector", "line",    "point",    "triangle",  "sample",  "linear",
      "centroid", "precise", "string", "true",    "false",    "void"};
  return isValueType(name) || std::find(words.begin(), words.end(), name) != words.end();
}

/// "2-component vector of float" is float2.
std::string typeName(std::string_view words) {
  for (const std::string_view qualifier : {" in ", " temp ", " const ", " uniform ", " out ", " inout "}) {
    const std::string_view bare = qualifier.substr(1);
    while (words.starts_with(' ')) words.remove_prefix(1);
    if (words.starts_with(bare)) words.remove_prefix(bare.size());
  }
  while (words.starts_with(' ')) words.remove_prefix(1);
  std::string array;
  constexpr std::string_view kArray = "-element array of ";
  if (const std::size_t at = words.find(kArray); at != words.npos) {
    array = "[" + std::string(words.substr(0, at)) + "]";
    words.remove_prefix(at + kArray.size());
  }
  constexpr std::string_view kVector = "-component vector of ";
  if (const std::size_t at = words.find(kVector); at == 1)
    return std::string(words.substr(at + kVector.size())) + std::string(words.substr(0, 1)) + array;
  constexpr std::string_view kMatrix = " matrix of ";
  if (const std::size_t at = words.find(kMatrix); at == 3)
    return std::string(words.substr(at + kMatrix.size())) + words[0] + "x" + words[2] + array;
  if (words.starts_with("structure{")) return "structure";
  return std::string(words) + array;
}

/// The words in quotation marks of a text.
std::vector<std::string> quoted(const std::string& text) {
  std::vector<std::string> found;
  for (std::size_t at = text.find('\''); at != std::string::npos;) {
    const std::size_t end = text.find('\'', at + 1);
    if (end == std::string::npos) break;
    found.push_back(text.substr(at + 1, end - at - 1));
    at = text.find('\'', end + 1);
  }
  return found;
}

/// What other shading languages call it.
std::string_view foreignName(std::string_view name) {
  static const std::map<std::string_view, std::string_view> names = {
      {"vec2", "float2"},       {"vec3", "float3"},   {"vec4", "float4"}, {"mat2", "float2x2"},
      {"mat3", "float3x3"},     {"mat4", "float4x4"}, {"ivec2", "int2"},  {"ivec3", "int3"},
      {"ivec4", "int4"},        {"mix", "lerp"},      {"fract", "frac"},  {"mod", "fmod"},
      {"inversesqrt", "rsqrt"}, {"dFdx", "ddx"},      {"dFdy", "ddy"},    {"color", "float3"},
      {"fvec2", "float2"},      {"fvec3", "float3"},  {"fvec4", "float4"}};
  const auto found = names.find(name);
  return found != names.end() ? found->second : std::string_view();
}

}  // namespace

const std::vector<std::string_view>& languageNames() {
  static const std::vector<std::string_view> names = {
      "abs",     "acos",        "all",      "any",      "asin",      "atan",     "atan2",   "bool",
      "ceil",    "clamp",       "clip",     "cos",      "cosh",      "cross",    "ddx",     "ddy",
      "degrees", "determinant", "distance", "dot",      "exp",       "exp2",     "false",   "float",
      "float2",  "float2x2",    "float3",   "float3x3", "float4",    "float4x4", "floor",   "fmod",
      "frac",    "fwidth",      "int",      "int2",     "int3",      "int4",     "isnan",   "ldexp",
      "length",  "lerp",        "log",      "log10",    "log2",      "max",      "min",     "modf",
      "mul",     "normalize",   "pow",      "radians",  "rcp",       "reflect",  "refract", "return",
      "round",   "rsqrt",       "saturate", "sign",     "sin",       "sincos",   "sinh",    "smoothstep",
      "sqrt",    "step",        "tan",      "tanh",     "transpose", "true",     "trunc",   "uint"};
  return names;
}

std::string meantName(const std::string& wrong, const std::vector<std::string>& names) {
  if (const std::string_view known = foreignName(wrong); !known.empty()) return std::string(known);
  NearName search(wrong);
  for (const std::string& name : names) {
    if (name != wrong) search.offer(name);
  }
  return std::string(search.nearest());
}

/// Words for one message.
class CompileMessages::Words {
public:
  Words(const CompileMessages& all, const Message& message, std::size_t token)
      : all_(all), message_(message), token_(token) {
    told_.token = token;
  }

  ToldMistake find() {
    const std::string& text = message_.text;
    if (text == "Expected") return expected();
    if (subject().starts_with("#") || subject() == "preprocessor evaluation") return directive();
    if (text == "unknown variable") return unknown(false);
    if (text == "no matching overloaded function found") return noOverload();
    if (text == "vector swizzle selection out of range") return swizzle();
    if (text.starts_with("l-value required")) return assignment();
    if (text.starts_with("cannot convert from")) return conversion();
    if (text == "could not create assignment") return unfitAssignment();
    if (text == "no such field in structure") return say("the structure has no member " + ticks(subject()));
    if (text == "redefinition") return redefinition();
    if (text == "function already has a body")
      return say("the function " + ticks(subject()) + " is defined twice");
    if (text.starts_with("function does not return a value: ")) return noReturn(text);
    if (text == "void function cannot return a value") {
      goBackTo("return");
      return say("a function of type `void` cannot return a value; assign its `out` parameter");
    }
    if (text == "Could not perform requested binary operation") return operands();
    if (text.find("No function definition (body) found") != std::string::npos) return noBody();
    if (text.starts_with("type does not match, or is not convertible to, the function's return type"))
      return unfitReturn();
    if (text == "not enough data provided for construction") return construction();
    if (text == "End of input in comment") return syntax("a comment is not closed");
    if (text == "missing #endif") return syntax("a conditional (`#if`) is not closed by `#endif`");
    if (text == "unexpected token") return unexpected();
    if (subject() == "macro expansion") return macro();
    if (text.starts_with("vector index out of range"))
      return say("the index" + lastQuoted(text) + " is out of range");
    std::string words = subject().empty() ? text : ticks(subject()) + ": " + text;
    return say(std::move(words));
  }

private:
  static std::string ticks(const std::string& text) { return inTicks(std::string_view(text)); }
  const std::string& subject() const { return message_.subject; }

  bool has(std::size_t token) const { return token < all_.tokens_.size(); }
  std::string at(std::size_t token) const {
    return has(token) ? toUtf8(all_.tokens_[token].in(all_.text_)) : std::string();
  }
  bool isName(std::size_t token) const { return has(token) && all_.tokens_[token].isName; }
  std::size_t lineOf(std::size_t token) const { return all_.placeOf(all_.tokens_[token].begin).first; }

  ToldMistake say(std::string text) {
    told_.text = std::move(text);
    return told_;
  }
  ToldMistake syntax(std::string text) {
    told_.isSyntax = true;
    return say(std::move(text));
  }

  static std::string lastQuoted(const std::string& text) {
    const std::vector<std::string> words = quoted(text);
    return words.empty() ? std::string() : " " + ticks(words.back());
  }

  /// Of a macro at the place or in front of it whose value is no expression: told where it is defined.
  bool isMacroAtFault() {
    if (token_ == kNotFound) return false;
    for (std::size_t i = token_; i + 2 > token_ && has(i) && i != 0; --i) {
      if (isName(i) && findWrongValue(at(i))) return true;
    }
    return false;
  }

  /// Of the last definition of that name in front of the place: `#define X = 0.5`, `#define X 0.5;`.
  bool findWrongValue(const std::string& name) {
    for (std::size_t i = std::min(token_, all_.tokens_.size()); i-- > 0;) {
      if (at(i) != "#" || at(i + 1) != "define" || at(i + 2) != name) continue;
      std::size_t value = i + 3;
      const bool hasParameters = at(value) == "(" && all_.tokens_[value].begin == endOf(value - 1);
      if (hasParameters) value = behindBrackets(all_.text_, all_.tokens_, value);
      std::size_t last = value;
      while (has(last + 1) && lineOf(last + 1) == lineOf(i)) ++last;
      if (!has(value) || lineOf(value) != lineOf(i)) return false;
      if (at(value) != "=" && at(last) != ";") return false;
      told_.token = at(value) == "=" ? value : last;
      return true;
    }
    return false;
  }
  std::size_t endOf(std::size_t token) const {
    return all_.tokens_[token].begin + all_.tokens_[token].size();
  }

  ToldMistake expected() {
    if (isMacroAtFault())
      return say(ticks(at(told_.token)) + " is taken for a part of the macro's value; leave it out");
    if (subject() == "loop or switch") {
      if (token_ != kNotFound && token_ != 0) told_.token = token_ - 1;
      return say(ticks(at(told_.token)) + " stands outside of a loop");
    }
    const bool isPunctuation = subject() == ";" || subject() == ")" || subject() == "]" || subject() == "(" ||
                               subject() == ":" || subject() == "}";
    const std::string here = at(token_);
    if (isPunctuation && token_ != kNotFound && token_ != 0) {
      const bool isLineEnd = !has(token_) || lineOf(token_) != lineOf(token_ - 1);
      if (isLineEnd || (subject() == ")" && (here == ";" || here == "{"))) {
        told_.token = token_ - 1;
        told_.isBehind = true;
        return syntax("missing " + ticks(subject()) + " behind " + ticks(at(token_ - 1)));
      }
      if (isReserved(here) && isReserved(at(token_ - 1)) && (subject() == ";" || subject() == ")"))
        return syntax(ticks(here) + " is a reserved word; it cannot be a name");
      return syntax("unexpected " + ticks(here) + "; expected " + ticks(subject()) + " behind " +
                    ticks(at(token_ - 1)));
    }
    if (subject() == "expression" || subject() == "assignment expression")
      return syntax("an expression is missing in front of " + ticks(here));
    if (subject() == "swizzle or member") return syntax("a member is missing behind `.`");
    if (here.empty()) return syntax("the code ends too early");
    return syntax("unexpected " + ticks(here));
  }

  /// The compiler does not say which character it is.
  ToldMistake unexpected() {
    const std::string here = at(token_);
    if (subject() != "<bad token>" || here.empty()) return syntax("unexpected " + ticks(subject()));
    const wchar_t character = all_.text_[all_.tokens_[token_].begin];
    if (character < 0x80) return syntax("unexpected " + ticks(here));
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "U+%04lX", static_cast<unsigned long>(character));
    return syntax("the character " + std::string(number.data()) + " cannot stand in code");
  }

  /// The directive in front of the place: the compiler names the line behind one that lacks something.
  void goBackToDirective(std::initializer_list<std::string_view> names) {
    for (std::size_t i = std::min(token_, all_.tokens_.size()); i-- > 0;) {
      const auto* const found = std::find(names.begin(), names.end(), at(i + 1));
      if (at(i) != "#" || found == names.end()) continue;
      told_.token = token_ = i;
      return;
    }
  }

  ToldMistake directive() {
    const std::string& text = message_.text;
    if (subject() == "##" && has(token_)) {
      for (std::size_t i = std::min(token_ + 1, all_.tokens_.size()); i-- > 0 && lineOf(i) == lineOf(token_);)
        if (isName(i) && goBackToDefinition(at(i))) break;
      return say("`##` joins two words of a macro; one is missing");
    }
    if (subject() == "preprocessor evaluation") {
      goBackToDirective({"if", "elif"});
      return say("the condition of " + ticks("#" + at(token_ + 1)) + " is missing or no number");
    }
    const std::string name = subject().substr(1);
    if (text.starts_with("invalid directive:"))
      return say("there is no directive " + ticks("#" + text.substr(text.find(':') + 2)));
    if (text == "invalid preprocessor command") return say("there is no directive " + ticks(subject()));
    if (text.starts_with("must b") || text == "missing parenthesis") goBackToDirective({name});
    if (text == "must be followed by macro name") return say("a name is missing behind " + ticks(subject()));
    if (text == "must be followed by a header name" ||
        text.starts_with("Could not process include directive"))
      return say("`#include` cannot stand in a fragment's code; name the file in `includes`");
    if (text == "missing parenthesis") return say("`(` is not closed behind " + ticks(subject()));
    if (text == "mismatched statements") return say(ticks(subject()) + " stands behind no `#if`");
    return say(ticks(subject()) + ": " + text);
  }

  /// Of the last macro of that name in front of the place.
  bool goBackToDefinition(const std::string& name) {
    for (std::size_t i = std::min(token_, all_.tokens_.size()); i-- > 0;) {
      if (at(i) != "#" || at(i + 1) != "define" || at(i + 2) != name) continue;
      told_.token = token_ = i;
      return true;
    }
    return false;
  }

  /// "Too many args in macro M", "End of input in macro M"
  ToldMistake macro() {
    const std::string name = ticks(message_.text.substr(message_.text.rfind(' ') + 1));
    if (message_.text.starts_with("Too many"))
      return say("the macro " + name + " is given too many arguments");
    if (message_.text.starts_with("Too few")) return say("the macro " + name + " is given too few arguments");
    if (message_.text.starts_with("End of input"))
      return syntax("the arguments of the macro " + name + " are not closed");
    return say(ticks(subject()) + ": " + message_.text);
  }

  ToldMistake unknown(bool isFunction) {
    // `fro (int i = ..`: no call has a declaration as argument.
    if (!isFunction && isReserved(subject()) && token_ != kNotFound && token_ >= 2 && at(token_ - 1) == "(" &&
        isName(token_ - 2) && isName(token_ + 1) && isValueType(subject()) && !isReserved(at(token_ - 2))) {
      told_.token = token_ - 2;
      told_.unknown = at(told_.token);
      return say("unexpected " + ticks(told_.unknown));
    }
    told_.unknown = subject();
    told_.isFunction = isFunction;
    const bool isType = !isFunction && isName(token_ + 1) && token_ != kNotFound;
    if (isReserved(subject())) {
      told_.unknown.clear();
      return say("unexpected " + ticks(subject()));
    }
    return say(ticks(subject()) + (isType       ? " is no type"
                                   : isFunction ? " is no function that is declared here"
                                                : " is not declared"));
  }

  /// Where a function of that name is declared in front of its use: the name's tokens.
  std::vector<std::size_t> declarations(const std::string& name) const {
    std::vector<std::size_t> found;
    for (std::size_t i = 1; i + 1 < std::min(token_, all_.tokens_.size()); ++i) {
      if (!isName(i) || !isName(i - 1) || at(i) != name || at(i + 1) != "(") continue;
      if (at(i - 1) != "return") found.push_back(i);
    }
    return found;
  }

  ToldMistake noOverload() {
    const std::vector<std::size_t> known = declarations(subject());
    const auto& language = languageNames();
    const bool isLanguage = std::find(language.begin(), language.end(), subject()) != language.end();
    if (known.empty() && !isLanguage) return unknown(true);
    std::string text = ticks(subject()) + " takes no such arguments";
    if (token_ != kNotFound && at(token_ + 1) == "(") {
      bool isAnyKnown = false;
      const std::string types = argumentTypes(token_ + 1, isAnyKnown);
      if (isAnyKnown) text += ": " + types + " given";
    }
    if (!known.empty())
      text += (endsWithGivenTypes(text) ? ", " : ": ") + parameterTypes(known.front() + 1) + " expected";
    return say(text);
  }
  static bool endsWithGivenTypes(const std::string& text) { return text.ends_with(" given"); }

  std::string parameterTypes(std::size_t open) const {
    const std::size_t end = behindBrackets(all_.text_, all_.tokens_, open);
    std::string types = "(";
    for (std::size_t i = open + 1; i < end; ++i) {
      const bool ends = at(i) == "," || i + 1 == end;
      if (!ends) continue;
      std::size_t type = i >= 2 ? i - 2 : i;
      while (type > open && !isName(type)) --type;
      if (type <= open) continue;
      types += (types.size() == 1 ? "" : ", ") + at(type);
    }
    return types + ")";
  }

  std::string argumentTypes(std::size_t open, bool& isAnyKnown) const {
    const std::size_t end = behindBrackets(all_.text_, all_.tokens_, open);
    std::string types = "(";
    std::size_t begin = open + 1;
    std::size_t depth = 0;
    for (std::size_t i = open + 1; i < end; ++i) {
      const std::string token = at(i);
      if (i + 1 != end && (token == "(" || token == "[")) ++depth;
      if (i + 1 != end && (token == ")" || token == "]") && depth != 0) --depth;
      if (i + 1 != end && (token != "," || depth != 0)) continue;
      if (begin != i) {
        const std::string type = typeOf(begin, i);
        isAnyKnown = isAnyKnown || !type.empty();
        types += (types.size() == 1 ? "" : ", ") + (type.empty() ? std::string("?") : type);
      }
      begin = i + 1;
    }
    return types + ")";
  }

  /// Of a name, a literal, a constructor, with a swizzle or without; empty for anything else.
  std::string typeOf(std::size_t first, std::size_t last) const {
    std::string type;
    std::size_t next = first + 1;
    const std::string head = at(first);
    if (isName(first) && next < last && at(next) == "(") {
      if (!isValueType(head)) return std::string();
      type = head;
      next = behindBrackets(all_.text_, all_.tokens_, next);
    } else if (isName(first)) {
      type = head == "true" || head == "false" ? "bool" : declaredType(head, first);
    } else if (!head.empty() && head[0] >= '0' && head[0] <= '9') {
      type = head.find_first_of(".eE") != std::string::npos ? "float" : "int";
    }
    if (next + 1 < last && at(next) == "." && next + 2 == last && !type.empty()) {
      const std::string members = at(next + 1);
      if (members.find_first_not_of("xyzwrgba") != std::string::npos || members.size() > 4) return {};
      while (!type.empty() && isDimension(type.back())) type.pop_back();
      return members.size() == 1 ? type : type + std::to_string(members.size());
    }
    return next == last ? type : std::string();
  }

  /// The last declaration in front of the use.
  std::string declaredType(const std::string& name, std::size_t before) const {
    for (std::size_t i = before; i-- > 1;) {
      if (!isName(i) || !isName(i - 1) || at(i) != name) continue;
      const std::string type = at(i - 1);
      if (isValueType(type)) return type;
    }
    return std::string();
  }

  ToldMistake swizzle() {
    if (token_ != kNotFound && at(token_) == "." && at(token_ + 1) == subject()) told_.token = ++token_;
    std::string text = ticks("." + subject()) + " names components that ";
    if (token_ == kNotFound || token_ < 2) return say(text + "the value does not have");
    const std::string base = at(token_ - 2);
    const std::string type = isName(token_ - 2) && (token_ < 3 || at(token_ - 3) != ".")
                                 ? declaredType(base, token_ - 2)
                                 : std::string();
    if (type.empty()) return say(text + "the value does not have");
    return say(text + ticks(base) + " of type " + ticks(type) + " does not have");
  }

  /// The name in front of an assignment: told at its first token.
  std::string assigned() {
    if (token_ == kNotFound || token_ == 0) return std::string();
    std::size_t name = token_;
    if (!isName(name)) --name;
    while (name > 1 && (at(name - 1) == "." || at(name) == "." || at(name) == "]")) --name;
    if (!isName(name)) return std::string();
    told_.token = name;
    return at(name);
  }

  ToldMistake assignment() {
    const std::string name = assigned();
    const std::string what = name.empty() ? std::string("this") : ticks(name);
    if (message_.text.find("can't modify a uniform") != std::string::npos)
      return say(what + " is a uniform: it cannot be assigned");
    if (message_.text.find("can't modify a const") != std::string::npos)
      return say(what + " is a constant: it cannot be assigned");
    if (message_.text.find("can't modify shader input") != std::string::npos)
      return say(what + " is an input: it cannot be assigned");
    return say(what + " cannot be assigned");
  }

  ToldMistake conversion() {
    const std::vector<std::string> types = quoted(message_.text);
    if (types.size() < 2) return say("the value does not fit");
    return say("a value of type " + ticks(typeName(types[0])) + " does not fit into " +
               ticks(typeName(types[1])));
  }

  ToldMistake unfitAssignment() {
    const std::size_t assigns = token_;
    const std::string name = assigned();
    if (name.empty()) return say("the value does not fit what it is assigned to");
    const std::string type = declaredType(name, told_.token);
    std::size_t end = assigns + 1;
    while (has(end) && at(end) != ";") ++end;
    const bool isWhole = assigns == told_.token + 1;
    const std::string value = at(assigns) == "=" ? typeOf(assigns + 1, end) : std::string();
    if (value.empty() && !type.empty() && isWhole)
      return say("the value does not fit " + ticks(name) + " of type " + ticks(type));
    if (!value.empty() && !type.empty() && isWhole)
      return say("a value of type " + ticks(value) + " does not fit " + ticks(name) + " of type " +
                 ticks(type));
    return say("the value does not fit " + ticks(name));
  }

  ToldMistake noReturn(const std::string& text) {
    const std::string name = text.substr(text.rfind(' ') + 1);
    for (std::size_t i = std::min(token_, all_.tokens_.size()); i-- > 1;) {
      if (at(i) != name || !isName(i - 1)) continue;
      told_.token = i;
      break;
    }
    return say("the function " + ticks(name) + " has an end without `return`");
  }

  /// To the last token of that text in the same statement.
  void goBackTo(std::string_view what) {
    for (std::size_t i = std::min(token_, all_.tokens_.size()); i-- > 0;) {
      const std::string token = at(i);
      if (token == what) {
        told_.token = i;
        return;
      }
      if (token == ";" || token == "{" || token == "}") return;
    }
  }

  /// A name behind the end of a line that has no semicolon looks like another declaration.
  ToldMistake redefinition() {
    const bool startsLine =
        token_ != kNotFound && token_ != 0 && has(token_) && lineOf(token_) != lineOf(token_ - 1);
    const std::string before = startsLine ? at(token_ - 1) : std::string();
    if (!startsLine || before == "," || isReserved(before))
      return say(ticks(subject()) + " is declared twice");
    told_.token = token_ - 1;
    told_.isBehind = true;
    return syntax("missing `;` behind " + ticks(before));
  }

  ToldMistake operands() {
    if (token_ == kNotFound || token_ == 0) return say("the operands do not fit each other");
    const std::string left = typeOf(token_ - 1, token_);
    const std::string right = typeOf(token_ + 1, token_ + 2);
    std::string text = "the operands of " + ticks(at(token_)) + " do not fit each other";
    if (!left.empty() && !right.empty()) text += ": " + ticks(left) + " and " + ticks(right);
    return say(text);
  }

  /// The linker does not say where: the first prototype without a function.
  ToldMistake noBody() {
    std::set<std::string> defined;
    std::vector<std::size_t> prototypes;
    for (std::size_t i = 1; i + 1 < all_.tokens_.size(); ++i) {
      if (!isName(i) || !isName(i - 1) || at(i + 1) != "(" || at(i - 1) == "return") continue;
      const std::string behind = at(behindBrackets(all_.text_, all_.tokens_, i + 1));
      if (behind == ";") prototypes.push_back(i);
      if (behind == "{") defined.insert(at(i));
    }
    for (const std::size_t name : prototypes) {
      if (defined.contains(at(name))) continue;
      told_.token = name;
      return say("the function " + ticks(at(name)) + " is declared, but has no body");
    }
    return say(message_.text);
  }

  ToldMistake unfitReturn() {
    goBackTo("return");
    return say("the value that is returned does not fit the function's type");
  }

  ToldMistake construction() {
    // The message stands behind the closing parenthesis.
    std::size_t name = token_;
    std::size_t depth = 0;
    while (name != kNotFound && name-- > 1) {
      if (at(name) == ")") ++depth;
      if (at(name) == "(" && --depth == 0) break;
      if (depth == 0) break;
    }
    const std::string type = name != kNotFound && name != 0 ? at(name - 1) : std::string();
    if (isValueType(type)) told_.token = name - 1;
    if (isValueType(type)) return say(ticks(type) + " needs more components than it is given");
    return say("a constructor needs more components than it is given");
  }

  const CompileMessages& all_;
  const Message& message_;
  std::size_t token_;
  ToldMistake told_;
};

CompileMessages::CompileMessages(std::wstring_view text) : text_(text), tokens_(tokensOf(text)), lines_{0} {
  for (std::size_t end = text.find(L'\n'); end != text.npos; end = text.find(L'\n', end + 1))
    lines_.push_back(end + 1);
}

std::pair<std::size_t, std::size_t> CompileMessages::placeOf(std::size_t offset) const {
  const auto line = std::upper_bound(lines_.begin(), lines_.end(), offset) - 1;
  return {static_cast<std::size_t>(line - lines_.begin()) + 1, offset - *line + 1};
}

/// The token at the message's place; without a column the first of its line with the name, or the first. What
/// a macro is given is told behind it: the name then stands in front, in the same statement.
std::size_t CompileMessages::tokenOf(const CompilerMessage& message, std::wstring_view name) const {
  if (message.line == 0 || message.line > lines_.size()) return kNotFound;
  const std::size_t line = lines_[message.line - 1];
  if (message.column != 0) {
    const std::size_t told = tokenAt(tokens_, line + message.column - 1);
    for (std::size_t i = std::min(told + 1, tokens_.size()); i-- > 0 && !name.empty();) {
      const std::wstring_view token = tokens_[i].in(text_);
      if (token == name && tokens_[i].isName) return i;
      if (i < told && (token == L";" || token == L"{" || token == L"}")) break;
    }
    return told;
  }
  const std::size_t end = message.line < lines_.size() ? lines_[message.line] : text_.size();
  const std::size_t first = tokenAt(tokens_, line);
  for (std::size_t i = first; i < tokens_.size() && tokens_[i].begin < end; ++i)
    if (tokens_[i].in(text_) == name) return i;
  return first;
}

ToldMistake CompileMessages::describe(const std::vector<CompilerMessage>& messages) const {
  if (messages.empty()) {
    ToldMistake none;
    none.text = "the code cannot be read";
    none.isSyntax = true;
    return none;
  }
  if (messages.front().line == 0 && messages.front().text.find("compilation errors") != std::string::npos)
    return describe({});
  const Message message = split(messages.front().text);
  return Words(*this, message, tokenOf(messages.front(), fromUtf8(message.subject))).find();
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/modules/code_depth.h"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/modules/token_lines.h"
#include "sfg/host/errors.h"
#include "sfg/host/limits.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Place = TokenLines::Place;

[[noreturn]] void refuse(const Place& place, const std::string& what, std::size_t limit) {
  throw CompileError("the generated shader is too deep for the compilers",
                     {{place.line, what + " (at most " + std::to_string(limit) + ")", place.column}}, true);
}

[[noreturn]] void refuseBlocks(const Place& place) {
  refuse(place, "statements are nested too deeply, those of called functions included", kDeepestBlocks);
}

bool isName(std::string_view token) {
  const char c = token.front();
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

template <std::size_t N>
bool isAmong(std::string_view token, const std::array<std::string_view, N>& words) {
  return std::find(words.begin(), words.end(), token) != words.end();
}

bool opensStatement(std::string_view token) {
  constexpr std::array<std::string_view, 5> kWords = {"if", "for", "while", "do", "switch"};
  return isAmong(token, kWords);
}

bool endsExpression(std::string_view token) {
  constexpr std::array<std::string_view, 4> kTokens = {";", "{", "}", ","};
  return isAmong(token, kTokens);
}

struct Call {
  std::size_t function;  ///< number of its name
  std::size_t depth;     ///< of the statements around it
  std::size_t times;     ///< that macros around it write it
  Place place;
};

/// A function, or a macro.
struct Function {
  std::vector<Call> calls;
  std::size_t tokens = 0;
  std::size_t depth = 0;  ///< of its own statements; with those of what it calls once that is known
  std::size_t next = 0;   ///< call to follow
  bool isOpen = false;
  bool isKnown = false;
  bool isMacro = false;
  bool hasParameters = false;   ///< of a macro
  std::size_t repetitions = 1;  ///< of an argument, by a macro
};

/// `#define`, the name and its parameters in front of the body. Empty for any other line.
struct MacroHead {
  std::string_view name;
  std::vector<std::string_view> parameters;
  std::string_view body;
};

/// The line from its next word on.
void skipToWord(std::string_view& line) {
  while (!line.empty() && !isWordPart(line.front())) line.remove_prefix(1);
}
std::string_view takeWord(std::string_view& line) {
  const auto* const end = std::find_if_not(line.begin(), line.end(), isWordPart);
  const std::string_view word = line.substr(0, static_cast<std::size_t>(end - line.begin()));
  line.remove_prefix(word.size());
  return word;
}

MacroHead readMacroHead(std::string_view line) {
  skipToWord(line);
  if (takeWord(line) != "define") return {};
  skipToWord(line);
  MacroHead head{takeWord(line), {}, {}};
  if (line.starts_with('(')) {
    std::string_view list = line.substr(0, std::min(line.find(')'), line.size()));
    line.remove_prefix(list.size());
    for (skipToWord(list); !list.empty(); skipToWord(list)) head.parameters.push_back(takeWord(list));
    if (line.starts_with(')')) line.remove_prefix(1);
  }
  head.body = line;
  return head;
}

/// Calls `use(word)` for each word of a text, and `use("")` for what stands between two.
template <class Use>
void forEachWord(std::string_view text, Use&& use) {
  while (!text.empty()) {
    const std::string_view word = takeWord(text);
    use(word);
    if (word.empty()) text.remove_prefix(1);
  }
}

/// A macro writes an argument this often, at most.
std::size_t repetitions(const MacroHead& macro) {
  std::unordered_map<std::string_view, std::size_t> counts;
  for (const std::string_view parameter : macro.parameters) counts.emplace(parameter, 0);
  std::size_t most = 1;
  forEachWord(macro.body, [&](std::string_view word) {
    const auto found = counts.find(word);
    if (found != counts.end()) most = std::max(most, ++found->second);
  });
  return most;
}

/// More than any limit; products stop here.
constexpr std::size_t kTooMany = std::size_t{1} << (std::numeric_limits<std::size_t>::digits - 4);

std::size_t product(std::size_t a, std::size_t b) {
  return b != 0 && a > kTooMany / b ? kTooMany : std::min(a * b, kTooMany);
}

/// How often what stands here is written by the macros whose arguments it is among.
class MacroArguments {
public:
  std::size_t times() const { return open_.empty() ? 1 : open_.back().times; }
  /// In front of the bracket: `level` are around it.
  void enter(std::size_t level, std::size_t repetitions) {
    open_.push_back({level, product(times(), repetitions)});
  }
  /// Behind a bracket.
  void leave(std::size_t level) {
    while (!open_.empty() && open_.back().level >= level) open_.pop_back();
  }

private:
  struct Open {
    std::size_t level;
    std::size_t times;
  };
  std::vector<Open> open_;
};

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t end = 0; (end = text.find('\n')) != text.npos; text.remove_prefix(end + 1))
    lines.push_back(text.substr(0, end));
  return lines;
}

/// Reads the tokens once, and before them the macros, which may be used in front of others that they use.
/// Functions of one name count as one, and so do macros.
class DepthReader {
public:
  explicit DepthReader(const TokenLines& lines) : places_(lines.places), tokens_(linesOf(lines.text)) {}

  void read() {
    for (index_ = 0; index_ < tokens_.size(); ++index_)
      if (isDirective()) addMacro(readMacroHead(takeDirective()));
    for (index_ = 0; index_ < tokens_.size(); ++index_) {
      if (isDirective()) {
        readDirective();
      } else if (!tokens_[index_].empty()) {
        readToken(tokens_[index_]);
      }
    }
    for (std::size_t i = 0; i < functions_.size(); ++i) follow(i);
  }

private:
  bool isDirective() const { return !tokens_[index_].empty() && tokens_[index_].front() == '#'; }

  /// The whole directive as one text, which lives until the next one is taken; goes to its last line.
  std::string_view takeDirective() {
    directive_ = tokens_[index_];
    while (directive_.ends_with('\\') && index_ + 1 < tokens_.size()) {
      directive_.back() = ' ';
      directive_ += tokens_[++index_];
    }
    return directive_;
  }

  void addMacro(const MacroHead& head) {
    if (head.name.empty()) return;
    const auto [at, isNew] = macros_.try_emplace(std::string(head.name), functions_.size());
    if (isNew) functions_.emplace_back().isMacro = true;
    Function& macro = functions_[at->second];
    macro.hasParameters = macro.hasParameters || !head.parameters.empty();
    macro.repetitions = std::max(macro.repetitions, repetitions(head));
  }

  void readDirective() {
    const Place start = place();
    const std::string_view line = takeDirective();
    const MacroHead head = readMacroHead(line);
    if (!head.name.empty())
      return readMacroBody(functions_[macros_.find(head.name)->second], head.body, start);
    std::string_view rest = line;
    skipToWord(rest);
    const std::string_view word = takeWord(rest);
    if (word == "if" || word == "elif") readMacroBody(functions_[kFile], rest, start);
  }

  /// Counts words, and uses of macros.
  void readMacroBody(Function& macro, std::string_view body, const Place& start) {
    const TokenLines lines = onTokenLines(std::string(body) + "\n");
    const std::vector<std::string_view> words = linesOf(lines.text);
    MacroArguments arguments;
    std::size_t level = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
      count = std::min(count + arguments.times(), kTooMany);
      const bool hasArguments = i + 1 < words.size() && words[i + 1] == "(";
      useMacro(macro, words[i], hasArguments, level, arguments, {0, 0, 0, start});
      if (words[i] == "(") ++level;
      if (words[i] != ")") continue;
      level -= std::min<std::size_t>(level, 1);
      arguments.leave(level);
    }
    macro.tokens = std::max(macro.tokens, count);
  }

  /// When the word is a macro. `call`: where and how deep it is.
  void useMacro(Function& user, std::string_view word, bool hasArguments, std::size_t level,
                MacroArguments& arguments, Call call) {
    const auto found = macros_.find(word);
    if (found == macros_.end()) return;
    const Function& macro = functions_[found->second];
    if (macro.hasParameters && !hasArguments) return;
    call.function = found->second;
    call.times = arguments.times();
    user.calls.push_back(call);
    if (macro.hasParameters) arguments.enter(level, macro.repetitions);
  }

  void readToken(std::string_view token) {
    Function& user = functions_[current_ != kNone ? current_ : kFile];
    if (current_ != kNone) countWord(user);
    useMacro(user, token, nextIs("("), brackets_, arguments_, {0, depth_, 0, place()});
    countOperators(token);
    if (token == "(" || token == "[") {
      if (++brackets_ > kDeepestBrackets) refuse(place(), "brackets are nested too deeply", kDeepestBrackets);
    } else if (token == ")" || token == "]") {
      brackets_ -= std::min<std::size_t>(brackets_, 1);
      arguments_.leave(brackets_);
    } else if (token == "{") {
      openBlock();
    } else if (token == "}") {
      closeBlock();
    } else if (token == ";") {
      if (brackets_ == 0) endStatement();
    } else if (opensStatement(token)) {
      openStatement();
    } else if (isName(token) && nextIs("(")) {
      readName(token);
    }
  }

  void countWord(Function& function) {
    const std::size_t times = arguments_.times();
    function.tokens = std::min(function.tokens + times, kTooMany);
    if (times > 1 && function.tokens > mostWords_) refuse(place(), kMacros, mostWords_);
  }

  void countOperators(std::string_view token) {
    operators_ = endsExpression(token) ? 0 : operators_ + (isName(token) ? 0 : 1);
    if (operators_ > kMostOperators) refuse(place(), "an expression is too long", kMostOperators);
  }

  void openStatement() {
    ++openStatements_;
    if (++depth_ > kDeepestBlocks) refuseBlocks(place());
    if (current_ != kNone) functions_[current_].depth = std::max(functions_[current_].depth, depth_);
  }

  /// What stands in front of `else` goes on.
  void endStatement() {
    if (nextIs("else")) return;
    depth_ -= openStatements_;
    openStatements_ = 0;
  }

  void openBlock() {
    if (blocks_.empty()) current_ = named_;
    blocks_.push_back(openStatements_);
    openStatements_ = 0;
    brackets_ = 0;
    arguments_.leave(0);
  }

  void closeBlock() {
    if (blocks_.empty()) return;
    depth_ -= openStatements_;
    openStatements_ = blocks_.back();
    blocks_.pop_back();
    brackets_ = 0;
    arguments_.leave(0);
    endStatement();
    if (blocks_.empty()) current_ = named_ = kNone;
  }

  /// In front of a bracket: of a function that is declared, or called.
  void readName(std::string_view name) {
    const auto [at, isNew] = numbers_.try_emplace(name, functions_.size());
    if (isNew) functions_.emplace_back();
    if (current_ != kNone) {
      functions_[current_].calls.push_back({at->second, depth_, arguments_.times(), place()});
    } else if (blocks_.empty() && brackets_ == 0) {
      named_ = at->second;
    }
  }

  /// Gives a function what it calls, without recursion. Calls in a ring are left to the compiler, which
  /// refuses them.
  void follow(std::size_t start) {
    std::vector<std::size_t> stack = {start};
    while (!stack.empty()) {
      Function& function = functions_[stack.back()];
      function.isOpen = true;
      if (function.isKnown || function.next == function.calls.size()) {
        function.isKnown = true;
        function.isOpen = false;
        stack.pop_back();
        continue;
      }
      const Call& call = function.calls[function.next];
      const Function& called = functions_[call.function];
      if (!called.isKnown && !called.isOpen) {
        stack.push_back(call.function);
        continue;
      }
      ++function.next;
      if (called.isKnown) take(function, call, called);
    }
  }

  void take(Function& function, const Call& call, const Function& called) const {
    function.depth = std::max(function.depth, call.depth + called.depth);
    if (function.depth > kDeepestBlocks) refuseBlocks(call.place);
    function.tokens = std::min(function.tokens + product(called.tokens, call.times), kTooMany);
    if (function.tokens > mostWords_) refuse(call.place, called.isMacro ? kMacros : kFunctions, mostWords_);
  }

  const Place& place() const { return places_[index_]; }
  bool nextIs(std::string_view token) const {
    return index_ + 1 < tokens_.size() && tokens_[index_ + 1] == token;
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  static constexpr std::size_t kFile = 0;  ///< what stands in no function: uses of macros only
  static constexpr const char* kFunctions = "the calls of functions make too much code: so many words";
  static constexpr const char* kMacros = "the uses of macros make too much code: so many words";
  const std::size_t mostWords_ = std::min(limits().codeWords, kTooMany - 1);
  const std::vector<Place>& places_;
  std::vector<std::string_view> tokens_;
  std::size_t index_ = 0;
  std::size_t operators_ = 0;
  std::size_t brackets_ = 0;
  std::size_t depth_ = 0;            ///< of open statements, in all blocks
  std::size_t openStatements_ = 0;   ///< those of the present block
  std::vector<std::size_t> blocks_;  ///< open statements around each
  std::size_t named_ = kNone;        ///< the function whose head was read last
  std::size_t current_ = kNone;      ///< the function whose body is read
  std::vector<Function> functions_ = std::vector<Function>(1);
  std::unordered_map<std::string_view, std::size_t> numbers_;
  std::map<std::string, std::size_t, std::less<>> macros_;  ///< by name
  MacroArguments arguments_;
  std::string directive_;
};

}  // namespace

void refuseTooDeep(std::string_view shader) {
  const TokenLines lines = onTokenLines(shader);
  DepthReader(lines).read();
}

}  // namespace TolmSDK::Graphics::sfg::host

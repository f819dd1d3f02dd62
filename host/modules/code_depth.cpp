#include "host/modules/code_depth.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/modules/token_lines.h"
#include "sfg/host/errors.h"

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
  Place place;
};

struct Function {
  std::vector<Call> calls;
  std::size_t tokens = 0;
  std::size_t depth = 0;  ///< of its own statements; with those of what it calls once that is known
  std::size_t next = 0;   ///< call to follow
  bool isOpen = false;
  bool isKnown = false;
};

/// Reads the tokens once. Functions of one name count as one.
class DepthReader {
public:
  explicit DepthReader(const TokenLines& lines) : places_(lines.places) {
    std::string_view rest = lines.text;
    for (std::size_t end = 0; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1))
      tokens_.push_back(rest.substr(0, end));
  }

  void read() {
    for (index_ = 0; index_ < tokens_.size(); ++index_)
      if (!tokens_[index_].empty() && tokens_[index_].front() != '#') readToken(tokens_[index_]);
    for (std::size_t i = 0; i < functions_.size(); ++i) follow(i);
  }

private:
  void readToken(std::string_view token) {
    if (current_ != kNone) ++functions_[current_].tokens;
    countOperators(token);
    if (token == "(" || token == "[") {
      if (++brackets_ > kDeepestBrackets) refuse(place(), "brackets are nested too deeply", kDeepestBrackets);
    } else if (token == ")" || token == "]") {
      brackets_ -= std::min<std::size_t>(brackets_, 1);
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
  }

  void closeBlock() {
    if (blocks_.empty()) return;
    depth_ -= openStatements_;
    openStatements_ = blocks_.back();
    blocks_.pop_back();
    brackets_ = 0;
    endStatement();
    if (blocks_.empty()) current_ = named_ = kNone;
  }

  /// In front of a bracket: of a function that is declared, or called.
  void readName(std::string_view name) {
    const auto [at, isNew] = numbers_.try_emplace(name, functions_.size());
    if (isNew) functions_.emplace_back();
    if (current_ != kNone) {
      functions_[current_].calls.push_back({at->second, depth_, place()});
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

  static void take(Function& function, const Call& call, const Function& called) {
    function.depth = std::max(function.depth, call.depth + called.depth);
    if (function.depth > kDeepestBlocks) refuseBlocks(call.place);
    function.tokens += called.tokens;
    if (function.tokens > kMostTokens)
      refuse(call.place, "the calls of functions make too much code: so many words", kMostTokens);
  }

  const Place& place() const { return places_[index_]; }
  bool nextIs(std::string_view token) const {
    return index_ + 1 < tokens_.size() && tokens_[index_ + 1] == token;
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
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
  std::vector<Function> functions_;
  std::unordered_map<std::string_view, std::size_t> numbers_;
};

}  // namespace

void refuseTooDeep(std::string_view shader) {
  const TokenLines lines = onTokenLines(shader);
  DepthReader(lines).read();
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/lints/assignment_flow.h"

#include <algorithm>
#include <array>
#include <optional>

#include "host/lints/declarations.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::size_t kMostOutputs = 32;

using Parts = std::uint64_t;

/// What is assigned at one point of the function.
struct State {
  bool isReachable = true;
  std::array<Parts, kMostOutputs> assigned{};
};

/// Where two paths meet.
State meet(const State& a, const State& b) {
  if (!a.isReachable) return b;
  if (!b.isReachable) return a;
  State both = a;
  for (std::size_t i = 0; i < kMostOutputs; ++i) both.assigned[i] &= b.assigned[i];
  return both;
}

/// A statement that is not finished yet.
struct Frame {
  enum class Kind { block, thenPart, elsePart, loop, doLoop, switchBlock };
  Kind kind = Kind::block;
  State before;
  State other;             ///< of an `else` the end of the other part; else where the `break`s meet
  bool mayNotRun = false;  ///< a loop
  bool isEndless = false;  ///< a loop that only a `break` leaves
  bool hasDefault = false;
};

class Flow {
public:
  Flow(const PlainCode& code, std::size_t begin, std::size_t end, const std::vector<FlowOutput>& outputs,
       const IFlowNames& names)
      : code_(code), begin_(begin), end_(std::min(end, code.tokens.size())), names_(names), next_(begin) {
    count_ = std::min(outputs.size(), kMostOutputs);
    for (std::size_t i = 0; i < count_; ++i) outputs_.push_back(&outputs[i]);
    leaks_.resize(count_);
    findings_.resize(count_);
  }

  std::vector<FlowFinding> run() {
    if (!code_.isCertain || hasStatementMacros()) return {};
    if (hasConditions(code_)) {
      // Which of the lines are there is not known: all of them count.
      readWrites(begin_, end_);
      return report(false);
    }
    while (isSound_ && next_ < end_) readStatement();
    const bool isComplete = isSound_ && frames_.empty();
    if (isComplete) checkExit(FlowFinding::kNowhere);
    if (!isComplete) readWrites(begin_, end_);
    return report(isComplete);
  }

private:
  bool hasStatementMacros() const {
    for (std::size_t i = begin_; i < end_; ++i)
      if (code_.isFreeName(i) && names_.isStatementMacro(code_.word(i))) return true;
    return false;
  }

  bool isWord(std::size_t token, std::wstring_view word) const {
    return token < end_ && code_.word(token) == word;
  }

  // Statements

  void readStatement() {
    if (code_.is(next_, L'{')) return push(Frame::Kind::block, next_ + 1);
    if (code_.is(next_, L'}')) return readBlockEnd();
    if (code_.is(next_, L';')) {
      ++next_;
      return finishStatement();
    }
    if (code_.is(next_, L'[')) {
      next_ = std::min(behindBrackets(code_.text, code_.tokens, next_), end_);
      return;
    }
    const std::wstring_view word = code_.word(next_);
    if (word == L"if") return readIf();
    if (word == L"while" || word == L"for") return readLoop(word == L"for");
    if (word == L"do") return push(Frame::Kind::doLoop, next_ + 1);
    if (word == L"switch") return readSwitch();
    if (word == L"case" || word == L"default") return readLabel(word == L"default");
    if (word == L"else") return giveUp();
    if (word == L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN" || word == L"TOLM_VESSOR_LIGHT_AND_SHADOW_END") {
      ++next_;
      return;
    }
    readSimple(word);
  }

  /// An expression, a declaration or a jump, up to its semicolon.
  void readSimple(std::wstring_view word) {
    const std::size_t start = next_;
    while (next_ < end_ && !code_.is(next_, L';') && !code_.is(next_, L'}')) {
      const bool opens = code_.is(next_, L'(') || code_.is(next_, L'[') || code_.is(next_, L'{');
      next_ = opens ? std::min(behindBrackets(code_.text, code_.tokens, next_), end_) : next_ + 1;
    }
    readWrites(start, next_);
    if (code_.is(next_, L';')) ++next_;
    if (word == L"return") checkExit(start);
    if (word == L"discard") mayLeave_ = true;
    if (word == L"break") takeBreak();
    if (word == L"return" || word == L"discard" || word == L"break" || word == L"continue")
      state_.isReachable = false;
    finishStatement();
  }

  void push(Frame::Kind kind, std::size_t next) {
    Frame frame;
    frame.kind = kind;
    frame.before = state_;
    if (kind == Frame::Kind::loop || kind == Frame::Kind::doLoop || kind == Frame::Kind::switchBlock)
      breakable_.push_back(frames_.size());
    frames_.push_back(frame);
    next_ = next;
  }

  void pop() {
    if (!breakable_.empty() && breakable_.back() + 1 == frames_.size()) breakable_.pop_back();
    frames_.pop_back();
  }

  void giveUp() { isSound_ = false; }

  /// The tokens between the parentheses that must stand here; behind them it goes on.
  std::optional<std::pair<std::size_t, std::size_t>> readParentheses() {
    if (!code_.is(next_, L'(') || next_ >= end_) {
      giveUp();
      return std::nullopt;
    }
    const std::size_t open = next_;
    next_ = behindBrackets(code_.text, code_.tokens, open);
    if (next_ > end_ || next_ < open + 2 || !code_.is(next_ - 1, L')')) {
      giveUp();
      return std::nullopt;
    }
    return std::pair(open + 1, next_ - 1);
  }

  void readIf() {
    ++next_;
    const auto condition = readParentheses();
    if (!condition) return;
    readWrites(condition->first, condition->second);
    push(Frame::Kind::thenPart, next_);
  }

  void readLoop(bool isFor) {
    ++next_;
    const auto head = readParentheses();
    if (!head) return;
    std::size_t conditionBegin = head->first;
    std::size_t conditionEnd = head->second;
    if (isFor) {
      while (conditionBegin < head->second && !code_.is(conditionBegin, L';')) ++conditionBegin;
      readWrites(head->first, conditionBegin);
      if (conditionBegin < head->second) ++conditionBegin;
      conditionEnd = conditionBegin;
      while (conditionEnd < head->second && !code_.is(conditionEnd, L';')) ++conditionEnd;
    }
    readWrites(conditionBegin, conditionEnd);
    push(Frame::Kind::loop, next_);
    frames_.back().isEndless =
        conditionBegin == conditionEnd || (conditionEnd == conditionBegin + 1 &&
                                           (isWord(conditionBegin, L"true") || isWord(conditionBegin, L"1")));
    frames_.back().other.isReachable = false;
    for (std::size_t i = conditionBegin; i < conditionEnd; ++i) {
      if (code_.isFreeName(i) && names_.isUnknownValue(code_.word(i))) frames_.back().mayNotRun = true;
    }
  }

  void readSwitch() {
    ++next_;
    const auto value = readParentheses();
    if (!value) return;
    readWrites(value->first, value->second);
    if (!code_.is(next_, L'{')) return giveUp();
    push(Frame::Kind::switchBlock, next_ + 1);
    frames_.back().other.isReachable = false;
    state_.isReachable = false;
  }

  void readLabel(bool isDefault) {
    if (frames_.empty() || frames_.back().kind != Frame::Kind::switchBlock) return giveUp();
    while (next_ < end_ && !code_.is(next_, L':')) ++next_;
    ++next_;
    Frame& frame = frames_.back();
    frame.hasDefault = frame.hasDefault || isDefault;
    state_ = meet(state_, frame.before);
  }

  void takeBreak() {
    if (breakable_.empty()) return giveUp();
    Frame& frame = frames_[breakable_.back()];
    if (frame.kind == Frame::Kind::switchBlock || frame.isEndless) frame.other = meet(frame.other, state_);
  }

  void readBlockEnd() {
    if (frames_.empty()) return giveUp();
    const Frame& frame = frames_.back();
    if (frame.kind == Frame::Kind::switchBlock) {
      state_ = meet(state_, frame.other);
      if (!frame.hasDefault) {
        noteLeaks(frame.before);
        state_ = meet(state_, frame.before);
      }
    } else if (frame.kind != Frame::Kind::block) {
      return giveUp();
    }
    pop();
    ++next_;
    finishStatement();
  }

  /// Ends the statements of which the last one was the last part.
  void finishStatement() {
    while (isSound_ && !frames_.empty()) {
      Frame& frame = frames_.back();
      switch (frame.kind) {
      case Frame::Kind::block:
      case Frame::Kind::switchBlock: return;
      case Frame::Kind::thenPart:
        if (isWord(next_, L"else")) {
          ++next_;
          frame.kind = Frame::Kind::elsePart;
          frame.other = state_;
          state_ = frame.before;
          return;
        }
        noteLeaks(frame.before);
        state_ = meet(state_, frame.before);
        break;
      case Frame::Kind::elsePart: state_ = meet(state_, frame.other); break;
      case Frame::Kind::loop:
        if (frame.isEndless) {
          state_ = frame.other;
          break;
        }
        state_.isReachable = frame.before.isReachable;
        if (frame.mayNotRun) state_ = meet(frame.before, state_);
        break;
      case Frame::Kind::doLoop:
        if (!isWord(next_, L"while")) return giveUp();
        ++next_;
        if (const auto condition = readParentheses()) readWrites(condition->first, condition->second);
        if (code_.is(next_, L';')) ++next_;
        state_.isReachable = frame.before.isReachable;
        break;
      }
      pop();
    }
  }

  /// Outputs that one branch without another assigns: two such branches may exclude each other.
  void noteLeaks(const State& before) {
    if (!before.isReachable) return;
    for (std::size_t i = 0; i < count_; ++i)
      if ((state_.assigned[i] & ~before.assigned[i]) != 0) ++leaks_[i];
  }

  void checkExit(std::size_t token) {
    if (!state_.isReachable) return;
    for (std::size_t i = 0; i < count_; ++i) {
      if (findings_[i] || state_.assigned[i] == outputs_[i]->all()) continue;
      const bool isLate = leaks_[i] > 1 || (mayLeave_ && leaks_[i] > 0);
      if (isLate) continue;
      findings_[i] = FlowFinding{FlowFinding::Kind::somewhere, i, token, 0};
    }
  }

  std::vector<FlowFinding> report(bool isComplete) {
    std::vector<FlowFinding> all;
    for (std::size_t i = 0; i < count_; ++i) {
      const Parts missing = outputs_[i]->all() & ~ever_[i];
      if (ever_[i] == 0) {
        all.push_back({FlowFinding::Kind::never, i, FlowFinding::kNowhere, missing});
      } else if (missing != 0) {
        all.push_back({FlowFinding::Kind::parts, i, FlowFinding::kNowhere, missing});
      } else if (isComplete && findings_[i]) {
        all.push_back(*findings_[i]);
      }
    }
    return all;
  }

  // Expressions

  /// An open bracket: what is called, and which argument comes.
  struct Call {
    std::wstring_view name;  ///< empty for no call
    bool isMethod = false;
    std::size_t argument = 0;
  };

  void readWrites(std::size_t begin, std::size_t end) {
    std::vector<Call> calls;
    for (std::size_t i = begin; i < end; ++i) {
      if (code_.is(i, L'(') || code_.is(i, L'[') || code_.is(i, L'{')) {
        Call call;
        if (code_.is(i, L'(') && i > begin && code_.isName(i - 1)) {
          call.name = code_.word(i - 1);
          call.isMethod = !code_.isFreeName(i - 1);
        }
        calls.push_back(call);
      } else if (code_.is(i, L')') || code_.is(i, L']') || code_.is(i, L'}')) {
        if (!calls.empty()) calls.pop_back();
      } else if (code_.is(i, L',') && !calls.empty()) {
        ++calls.back().argument;
      } else if (code_.isFreeName(i)) {
        const std::size_t output = findOutput(code_.word(i));
        if (output != kNotFound) readUse(output, i, calls);
      }
    }
  }

  std::size_t findOutput(std::wstring_view name) const {
    for (std::size_t i = 0; i < count_; ++i)
      if (outputs_[i]->name == name) return i;
    return kNotFound;
  }

  void readUse(std::size_t output, std::size_t token, const std::vector<Call>& calls) {
    // A variable of the same name: nothing about it is certain any more.
    if (token > begin_ && code_.isName(token - 1) && !isWord(token - 1, L"return") &&
        !isWord(token - 1, L"else") && !isWord(token - 1, L"do")) {
      return write(output, outputs_[output]->all());
    }
    std::size_t behind = token + 1;
    const Parts parts = readPath(*outputs_[output], behind);
    if (isAssigned(token, behind) || isPassed(token, behind, calls)) write(output, parts);
  }

  void write(std::size_t output, Parts parts) {
    state_.assigned[output] |= parts;
    ever_[output] |= parts;
  }

  /// The parts that `.xy`, `.member` or `[1]` means; `next` moves behind all of the path.
  Parts readPath(const FlowOutput& output, std::size_t& next) const {
    Parts parts = output.all();
    for (bool isFirst = true; next < end_; isFirst = false) {
      if (code_.is(next, L'.') && code_.isName(next + 1)) {
        if (isFirst) parts = partsOf(output, code_.word(next + 1));
        next += 2;
      } else if (code_.is(next, L'[')) {
        const std::size_t close = behindBrackets(code_.text, code_.tokens, next);
        if (isFirst && output.isVector && close == next + 3) parts = elementOf(output, code_.word(next + 1));
        next = close;
      } else {
        break;
      }
    }
    return parts;
  }

  static Parts partsOf(const FlowOutput& output, std::wstring_view member) {
    if (output.parts.size() < 2) return output.all();
    if (!output.isVector) {
      const auto found = std::find(output.parts.begin(), output.parts.end(), member);
      return found == output.parts.end() ? output.all() : Parts{1} << (found - output.parts.begin());
    }
    Parts parts = 0;
    for (const wchar_t c : member) {
      const std::size_t position = std::wstring_view(L"xyzwrgba").find(c);
      if (position == std::wstring_view::npos) return output.all();
      parts |= Parts{1} << position % 4;
    }
    return parts & output.all();
  }

  static Parts elementOf(const FlowOutput& output, std::wstring_view index) {
    const bool isDigit = index.size() == 1 && index[0] >= L'0' && index[0] <= L'9';
    if (!isDigit || output.parts.size() < 2) return output.all();
    return (Parts{1} << (index[0] - L'0')) & output.all();
  }

  bool isNear(std::size_t token) const {
    return token + 1 < end_ && code_.tokens[token].end == code_.tokens[token + 1].begin;
  }

  /// `=`, `+=` and the like, `++` and `--` on either side.
  bool isAssigned(std::size_t token, std::size_t behind) const {
    const auto isDouble = [&](std::size_t at) {
      return at + 1 < end_ && isNear(at) &&
             ((code_.is(at, L'+') && code_.is(at + 1, L'+')) ||
              (code_.is(at, L'-') && code_.is(at + 1, L'-')));
    };
    if (isDouble(behind) || (token >= begin_ + 2 && isDouble(token - 2))) return true;
    if (code_.is(behind, L'=')) return !(isNear(behind) && code_.is(behind + 1, L'='));
    constexpr std::wstring_view kSigns = L"+-*/%&|^";
    if (behind >= end_ || code_.tokens[behind].size() != 1) return false;
    const wchar_t sign = code_.text[code_.tokens[behind].begin];
    if (kSigns.find(sign) != kSigns.npos) return isNear(behind) && code_.is(behind + 1, L'=');
    // Shifts; one sign alone compares.
    return (sign == L'<' || sign == L'>') && isNear(behind) && code_.is(behind + 1, sign) &&
           isNear(behind + 1) && code_.is(behind + 2, L'=');
  }

  /// A whole argument of a call that may write it.
  bool isPassed(std::size_t token, std::size_t behind, const std::vector<Call>& calls) const {
    if (calls.empty() || calls.back().name.empty() || token == begin_) return false;
    const bool isWhole = (code_.is(token - 1, L'(') || code_.is(token - 1, L',')) &&
                         (code_.is(behind, L',') || code_.is(behind, L')'));
    const Call& call = calls.back();
    return isWhole && (call.isMethod || names_.mayWrite(call.name, call.argument));
  }

  const PlainCode& code_;
  std::size_t begin_;
  std::size_t end_;
  const IFlowNames& names_;
  std::vector<const FlowOutput*> outputs_;
  std::size_t count_ = 0;
  std::size_t next_;
  bool isSound_ = true;
  bool mayLeave_ = false;  ///< a `discard` was met
  State state_;
  std::array<Parts, kMostOutputs> ever_{};
  std::vector<Frame> frames_;
  std::vector<std::size_t> breakable_;  ///< frames that a `break` leaves
  std::vector<std::size_t> leaks_;
  std::vector<std::optional<FlowFinding>> findings_;
};

}  // namespace

std::vector<FlowFinding> findUnassigned(const PlainCode& code, std::size_t begin, std::size_t end,
                                        const std::vector<FlowOutput>& outputs, const IFlowNames& names) {
  return Flow(code, begin, end, outputs, names).run();
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/diagnostics/shader_arguments.h"

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/origins/fragment_code.h"
#include "sfg/builtin_function.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Tokens from `begin` up to `end`.
struct Argument {
  std::size_t begin = 0;
  std::size_t end = 0;
};

class ArgumentCheck {
public:
  ArgumentCheck(const CollapseJob& job, Severity severity)
      : job_(job), severity_(severity), codes_(job.libraries()) {}

  std::vector<Diagnostic> run() {
    const GraphDocument& document = job_.document();
    for (std::size_t i = 0; i < document.getNumNodes(); ++i) {
      check(job_.libraries().language().findFragment(document.node(i).fragmentName()));
    }
    for (const auto* const chain : {&document.preprocess(), &document.postprocess()}) {
      for (const GraphDocument::ChainFragment& link : *chain) check(link.fragment.get());
    }
    for (const ShadingEnvironment::Light& light : job_.environment().lights()) check(light.fragment.get());
    check(job_.environment().getOutputFragment());
    return std::move(found_);
  }

private:
  void check(const IShaderFragment* fragment) {
    if (fragment == nullptr || !checked_.insert(fragment->key()).second) return;
    fragment_ = fragment;
    for (std::size_t i = 0; i < fragment->getNumProfiles(); ++i) {
      const IShaderFragmentProfile* const profile = fragment->getProfile(i);
      profile_ = profile;
      if (calls(profile->predefines())) checkCode(codes_.find(fragment->key(), i, CodePart::predefine));
      if (calls(profile->getFunctionBody()))
        checkCode(codes_.find(fragment->key(), i, CodePart::implementation));
    }
  }

  static bool calls(const WString& text) { return text.find(sfg_shader.view()) != text.npos; }

  void checkCode(const FragmentCode* code) {
    if (code == nullptr) return;
    code_ = code;
    for (std::size_t i = 0; i + 1 < code->tokens.size(); ++i) {
      if (word(i) != sfg_shader.view() || word(i + 1) != L"(") continue;
      const std::size_t end = behindBrackets(code->text, code->tokens, i + 1);
      checkCall(i + 2, end == 0 ? 0 : end - 1);
    }
  }

  /// Pairs of names and values follow the first argument.
  void checkCall(std::size_t begin, std::size_t end) {
    const std::vector<Argument> arguments = split(begin, end);
    for (std::size_t i = 2; i < arguments.size(); i += 2) checkValue(arguments[i]);
  }

  /// At the commas outside of brackets.
  std::vector<Argument> split(std::size_t begin, std::size_t end) const {
    std::vector<Argument> arguments{{begin, begin}};
    std::size_t depth = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const std::wstring_view text = word(i);
      if (text == L"(" || text == L"[") ++depth;
      if ((text == L")" || text == L"]") && depth != 0) --depth;
      if (text == L"," && depth == 0) {
        arguments.push_back({i + 1, i + 1});
      } else {
        arguments.back().end = i + 1;
      }
    }
    return arguments;
  }

  void checkValue(const Argument& argument) {
    if (argument.begin == argument.end) return;
    const std::size_t start = code_->tokens[argument.begin].begin;
    const std::wstring_view text =
        std::wstring_view(code_->text).substr(start, code_->tokens[argument.end - 1].end - start);
    if (text.find_first_of(L" \t\n,") != text.npos) {
      return tell(start,
                  "the argument " + inTicks(text) +
                      " of `sfg_shader` is cut at its blanks and commas; it must be one name or number");
    }
    for (std::size_t i = argument.begin; i < argument.end; ++i) {
      const bool isMember = i != argument.begin && word(i - 1) == L".";
      if (isMember || !code_->tokens[i].isName) continue;
      if (isUniform(word(i))) return tellUnknown("uniform", i);
      if (isUndeclaredState(word(i))) return tellUnknown("state variable", i);
    }
  }

  void tellUnknown(const std::string& what, std::size_t token) {
    tell(code_->tokens[token].begin,
         "the " + what + " " + inTicks(word(token)) + " is not known among the arguments of `sfg_shader`");
  }

  void tell(std::size_t offset, const std::string& text) {
    found_.push_back(diagnose(Finding::shaderArgument, severity_, *code_->file, code_->placeOf(offset),
                              "fragment " + inTicks(fragment_->key()) + ": " + text +
                                  "; assign it to a variable in front of the call"));
  }

  bool isUniform(std::wstring_view name) const {
    for (std::size_t i = 0; i < fragment_->getNumUniforms(); ++i) {
      if (fragment_->getUniform(i)->getName() == name) return true;
    }
    return false;
  }

  bool isUndeclaredState(std::wstring_view name) const {
    for (const StateVariableInfo& state : allStateVariables()) {
      if (state.name.view() == name) return !profile_->stateVariables().contains(state.name);
    }
    return false;
  }

  std::wstring_view word(std::size_t token) const { return code_->tokens[token].in(code_->text); }

  const CollapseJob& job_;
  Severity severity_;
  FragmentCodes codes_;
  Set<WString> checked_;
  const IShaderFragment* fragment_ = nullptr;  ///< that is being checked, its profile and code
  const IShaderFragmentProfile* profile_ = nullptr;
  const FragmentCode* code_ = nullptr;
  std::vector<Diagnostic> found_;
};

}  // namespace

std::vector<Diagnostic> findShaderArguments(const CollapseJob& job, Severity severity) {
  return ArgumentCheck(job, severity).run();
}

}  // namespace TolmSDK::Graphics::sfg::host

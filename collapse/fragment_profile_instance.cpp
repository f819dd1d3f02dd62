#include "sfg/fragment_profile_instance.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "fragments/ports.h"
#include "profiles/shader_temporaries.h"
#include "sfg/shader_collapse_context.h"
#include "sfg/shader_fragment_graph.h"
#include "sfg/shader_fragment_profile_function.h"
#include "sfg/shader_fragment_profile_inline.h"
#include "sfg/size_limit.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {

namespace {

using namespace std::string_view_literals;

/// A lasting text that says the same, for what short names are as a rule: the profile's number. Null for
/// others.
const WString* findDigit(const WString& text) {
  static const std::array<WString, 9> digits = {L"1", L"2", L"3", L"4", L"5", L"6", L"7", L"8", L"9"};
  const bool isDigit = text.size() == 1 && text[0] >= L'1' && text[0] <= L'9';
  return isDigit ? &digits[static_cast<std::size_t>(text[0] - L'1')] : nullptr;
}

/// Whether it is an expression. Only what is no plain function, as most are, has to be asked for its bases.
bool isInline(const AShaderFragmentProfile& profile) {
  return typeid(profile) != typeid(AShaderFragmentProfileFunction) &&
         dynamic_cast<const AShaderFragmentProfileInline*>(&profile) != nullptr;
}

/// Nearly always one digit.
void appendIndex(WString& out, std::size_t index) {
  if (index < 10) {
    out += static_cast<wchar_t>(L'0' + index);
  } else {
    appendDecimal(out, index);
  }
}

void appendDeclaration(WString& out, const WString& type, const FragmentProfileInstance& instance,
                       std::size_t output) {
  out += L"    "sv;
  out += type;
  out += L' ';
  instance.appendOutputName(out, output);
  out += L";\n"sv;
  checkTextLength(out.size());
}

/// Adds rules from the whole text of every call to its value. A call without an argument list stays as it is
/// written.
void addCalls(KeywordReplacePattern& pattern, const Array<BuiltinFunction>& uses,
              const Array<WString>& values) {
  for (std::size_t i = 0; i < uses.size() && i < values.size(); ++i) {
    if (!uses[i].range.empty()) pattern.addReplacePattern(WString(uses[i].range.view()), values[i]);
  }
}

/// Whether nothing of it is raw text, which is written every time.
bool hasOnlySymbols(const CodeSnippetInstance& code) {
  for (std::size_t i = 0; i < code.getNumSymbols(); ++i) {
    if (!code.getSymbol(i).hasInstanceKey()) return false;
  }
  return true;
}

/// From the first symbol to behind the last; places of written symbols are counted in it.
std::wstring_view codeOf(const CodeSnippetInstance& code) {
  if (code.getNumSymbols() == 0) return {};
  const ScopedText first = code.getSymbol(0).getText();
  const ScopedText last = code.getSymbol(code.getNumSymbols() - 1).getText();
  return {first.text, static_cast<std::size_t>(last.text - first.text) + last.length};
}

/// Parameters of a profile by name: looked through for the first questions, then sorted once.
class ParameterFinder {
public:
  using GetName = const WString& (ITextParameterList::*)(std::size_t) const;

  ParameterFinder(const ITextParameterList& list, std::size_t count, GetName getName)
      : list_(list), count_(count), getName_(getName) {}

  /// The first of exactly that name, or the not-found value.
  std::size_t find(std::wstring_view name) {
    constexpr std::size_t kFewQuestions = 8;
    if (questions_++ < kFewQuestions) return findUnsorted(name);
    if (sorted_.empty()) sort();
    const auto found =
        std::lower_bound(sorted_.begin(), sorted_.end(), name,
                         [&](std::size_t at, std::wstring_view sought) { return nameOf(at) < sought; });
    return found != sorted_.end() && nameOf(*found) == name ? *found : kNotFound;
  }

private:
  const WString& nameOf(std::size_t at) const { return (list_.*getName_)(at); }

  std::size_t findUnsorted(std::wstring_view name) const {
    for (std::size_t i = 0; i < count_; ++i)
      if (nameOf(i) == name) return i;
    return kNotFound;
  }

  void sort() {
    for (std::size_t i = 0; i < count_; ++i) sorted_.push_back(i);
    std::stable_sort(sorted_.begin(), sorted_.end(),
                     [&](std::size_t a, std::size_t b) { return nameOf(a) < nameOf(b); });
  }

  const ITextParameterList& list_;
  std::size_t count_;
  GetName getName_;
  std::size_t questions_ = 0;
  Array<std::size_t> sorted_;
};

WString boolText(bool value) { return value ? L"true" : L"false"; }

/// Values of the built-in calls in the code of one profile.
class BuiltinValues {
public:
  BuiltinValues(const AShaderFragment& fragment, const ITextParameterList& parameters)
      : fragment_(fragment),
        inputs_(parameters, parameters.getNumInputs(), &ITextParameterList::getInputName),
        outputs_(parameters, parameters.getNumOutputs(), &ITextParameterList::getOutputName) {}

  Array<WString> of(const Array<BuiltinFunction>& uses) {
    Array<WString> values;
    values.reserve(uses.size());
    for (const BuiltinFunction& use : uses) values.push_back(of(use));
    return values;
  }

private:
  WString of(const BuiltinFunction& use) {
    const std::wstring_view argument = use.arguments.empty() ? std::wstring_view() : use.arguments[0].view();
    switch (use.id) {
    case eBuiltinFunctionIsConnected: return boolText(isInputFed(fragment_, inputs_.find(argument)));
    case eBuiltinFunctionIsNotConnected: {
      // An unknown input is neither connected nor not connected.
      const std::size_t input = inputs_.find(argument);
      return boolText(input != kNotFound && !isInputFed(fragment_, input));
    }
    case eBuiltinFunctionIsFinalOutput: return boolText(isFinal(outputs_.find(argument)));
    default: return WString();
    }
  }

  bool isFinal(std::size_t output) const {
    const auto* const graph = dynamic_cast<const AShaderFragmentGraph*>(fragment_.getOwnerGraph());
    return output != kNotFound && graph != nullptr && graph->isFinalOutput(&fragment_, output);
  }

  const AShaderFragment& fragment_;
  ParameterFinder inputs_;
  ParameterFinder outputs_;
};

constexpr std::size_t kLightsOfAWord = 64;

std::uint64_t bitOf(std::size_t light) { return std::uint64_t{1} << (light % kLightsOfAWord); }

}  // namespace

FragmentProfileInstance::FragmentProfileInstance() = default;
FragmentProfileInstance::~FragmentProfileInstance() = default;

bool FragmentProfileInstance::create(const ILanguageTraits* language, const AShaderFragment* fragment,
                                     const AShaderFragmentProfile* profile, const WString& shortname) {
  if (initialized_) {
    const AShaderFragment* named = fragment != nullptr ? fragment : fragment_;
    throw Exception(L"Cannot initialize fragment (%s) profile twice!",
                    named != nullptr ? named->key() : WString());
  }
  initialized_ = true;
  if (language == nullptr || fragment == nullptr || profile == nullptr) return false;

  // Nothing remains of names that were asked for or set before.
  hasFunctionName_ = false;
  hasOutputNames_ = false;
  if (extras_) {
    extras_->functionName.clear();
    extras_->outputNames.clear();
    extras_->outputTypes.clear();
    extras_->outputKeys.clear();
    extras_->outputIsUnset.clear();
  }
  isInlineProfile_ = isInline(*profile);
  profileShortname_ = shortname.empty() ? &profile->getProfilename() : findDigit(shortname);
  if (profileShortname_ == nullptr) {
    extras().profileShortname = shortname;
    profileShortname_ = &extras().profileShortname;
  }
  language_ = language;
  fragment_ = fragment;
  profile_ = profile;
  requiresCurrentLight_ = profile->stateVariables().contains(StateVariable_currentLight);
  const ITextParameterList* parameters = profile->getFunctionParameters();
  numOutputs_ = parameters != nullptr ? static_cast<std::uint32_t>(parameters->getNumOutputs()) : 0;
  if (!profile->getBodyBuiltinFunctions().empty() || !profile->getPredefineBuiltinFunctions().empty()) {
    static const RefPtr<ATextParameterList const> kNone = makeRef<ATextParameterList>();
    BuiltinValues values(*fragment, parameters != nullptr ? *parameters : *kNone);
    extras().builtinFunctionValuesInBody = values.of(profile->getBodyBuiltinFunctions());
    extras().builtinFunctionValuesInPredefine = values.of(profile->getPredefineBuiltinFunctions());
  }
  return true;
}

const WString& FragmentProfileInstance::getProfilename() const {
  static const WString none;
  return profile_ ? profile_->getProfilename() : none;
}

const WString& FragmentProfileInstance::getProfileShortname() const noexcept {
  static const WString none;
  return profileShortname_ != nullptr ? *profileShortname_ : none;
}

FragmentProfileInstance::Extras& FragmentProfileInstance::extras() const {
  if (!extras_) extras_ = std::make_unique<Extras>();
  return *extras_;
}

const Array<WString>& FragmentProfileInstance::none() noexcept {
  static const Array<WString> texts;
  return texts;
}

// Names.

void FragmentProfileInstance::appendFunctionName(WString& out) const {
  if (hasFunctionName_) {
    out += extras_->functionName;
  } else if (profile_) {
    if (out.empty()) out.reserve(profile_->getFunctionName().size() + profileShortname_->size());
    out += profile_->getFunctionName();
    out += *profileShortname_;
  }
}

const WString& FragmentProfileInstance::getFunctionName() const {
  WString& name = extras().functionName;
  if (!hasFunctionName_) {
    appendFunctionName(name);
    hasFunctionName_ = true;
  }
  return name;
}

void FragmentProfileInstance::setFunctionName(const WString& name) {
  extras().functionName = name;
  hasFunctionName_ = true;
}

void FragmentProfileInstance::appendOutputName(WString& out, std::size_t index) const {
  if (hasOutputNames_) {
    out += extras_->outputNames[index];
    return;
  }
  out += L"result_"sv;
  out += fragment_->instanceName();
  out += L'_';
  appendIndex(out, index);
  out += *profileShortname_;
}

const Array<WString>& FragmentProfileInstance::getOutputNames() const { return outputNames(); }

Array<WString>& FragmentProfileInstance::outputNames() const {
  Array<WString>& names = extras().outputNames;
  if (hasOutputNames_) return names;
  names.resize(numOutputs_);
  for (std::size_t i = 0; i < numOutputs_; ++i) appendOutputName(names[i], i);
  hasOutputNames_ = true;
  return names;
}

// Outputs.

void FragmentProfileInstance::setNumOutputs(std::size_t count) {
  if (count == numOutputs_) return;
  outputNames().resize(count);
  if (!extras_->outputTypes.empty()) extras_->outputTypes.resize(count);
  if (count > numOutputs_ || !extras_->outputIsUnset.empty()) {
    extras_->outputIsUnset.resize(numOutputs_, false);
    extras_->outputIsUnset.resize(count, true);
  }
  extras_->outputKeys.clear();
  numOutputs_ = static_cast<std::uint32_t>(count);
}

const WString& FragmentProfileInstance::getOutputType(std::size_t index) const {
  static const WString none;
  if (isOutputUnset(index)) return none;
  if (extras_ && !extras_->outputTypes.empty()) return extras_->outputTypes[index];
  const ITextParameterList* parameters = profile_ ? profile_->getFunctionParameters() : nullptr;
  return parameters != nullptr && index < parameters->getNumOutputs() ? parameters->getOutputType(index)
                                                                      : none;
}

void FragmentProfileInstance::setOutput(std::size_t index, WString type, WString name) {
  outputNames()[index] = std::move(name);
  if (isOutputUnset(index)) extras_->outputIsUnset[index] = false;
  if (type != getOutputType(index)) {
    Array<WString> types;
    for (std::size_t i = 0; i < numOutputs_; ++i) types.push_back(getOutputType(i));
    types[index] = std::move(type);
    extras_->outputTypes = std::move(types);
  }
  extras_->outputKeys.clear();
}

const WString& FragmentProfileInstance::getOutputKey(std::size_t index) const {
  Array<WString>& keys = extras().outputKeys;
  if (keys.empty()) {
    keys.resize(numOutputs_);
    for (std::size_t i = 0; i < numOutputs_; ++i) {
      if (isOutputUnset(i)) continue;
      keys[i] = getOutputType(i) + L" ";
      appendOutputName(keys[i], i);
    }
  }
  return keys[index];
}

bool FragmentProfileInstance::declareOutputs(WString& out) {
  if (outputsDeclared_) return true;
  outputsDeclared_ = true;
  for (std::size_t i = 0; i < numOutputs_; ++i) {
    if (const WString& type = getOutputType(i); !type.empty()) appendDeclaration(out, type, *this, i);
  }
  return true;
}

bool FragmentProfileInstance::declareUnspecifiedOutputs(WString& out, Array<WString>& outputValues) {
  outputValues.resize(numOutputs_);
  if (outputsDeclared_) return true;
  outputsDeclared_ = true;
  for (std::size_t i = 0; i < numOutputs_; ++i) {
    const WString& type = getOutputType(i);
    if (type.empty()) return false;
    if (!outputValues[i].empty()) continue;
    appendDeclaration(out, type, *this, i);
    appendOutputName(outputValues[i], i);
  }
  return true;
}

// Patterns.

FragmentProfileInstance::Patterns::Patterns() = default;
FragmentProfileInstance::Patterns::~Patterns() = default;

FragmentProfileInstance::Patterns& FragmentProfileInstance::patterns() {
  if (!patterns_) patterns_ = std::make_unique<Patterns>();
  return *patterns_;
}

KeywordReplacePattern& FragmentProfileInstance::getUniformReplacePattern() {
  KeywordReplacePattern& pattern = patterns().uniform;
  if (pattern.empty() && hasUniforms())
    pattern.addReplacePattern(extras_->uniformOriginal, extras_->uniformNew);
  return pattern;
}

KeywordReplacePattern& FragmentProfileInstance::getShaderReplacePattern() {
  KeywordReplacePattern& pattern = patterns().shader;
  if (pattern.empty() && profile_) pattern = profile_->GetDefaultShaderRepalcePattern();
  return pattern;
}

void FragmentProfileInstance::replaceShaderUse(const WString& use, ShaderCallText call) {
  getShaderReplacePattern().overrideReplacePattern(use, call.text);
  std::unique_ptr<ShaderTemporaries>& temporaries = patterns().temporaries;
  if (!temporaries) temporaries = std::make_unique<ShaderTemporaries>();
  temporaries->record(use, std::move(call));
}

const ShaderTemporaries* FragmentProfileInstance::findShaderTemporaries() const {
  const ShaderTemporaries* temporaries = patterns_ ? patterns_->temporaries.get() : nullptr;
  return temporaries != nullptr && !temporaries->empty() ? temporaries : nullptr;
}

bool FragmentProfileInstance::hasReplacements() const {
  if (hasUniforms() || (patterns_ && !(patterns_->uniform.empty() && patterns_->shader.empty()))) return true;
  return profile_ && !profile_->GetDefaultShaderRepalcePattern().empty();
}

void FragmentProfileInstance::addReplacements(KeywordReplacer& replacer) const {
  if (patterns_ && !patterns_->uniform.empty()) {
    replacer.addReplacePattern(patterns_->uniform);
  } else if (hasUniforms()) {
    replacer.addReplacePattern(extras_->uniformOriginal, extras_->uniformNew);
  }
  if (patterns_ && !patterns_->shader.empty()) {
    replacer.addReplacePattern(patterns_->shader);
  } else if (profile_) {
    replacer.addReplacePattern(profile_->GetDefaultShaderRepalcePattern());
  }
}

// Parameters of the profile.

std::size_t FragmentProfileInstance::GetInputTextParameterIndex(const WString& name) const {
  const ITextParameterList* parameters = profile_ ? profile_->getFunctionParameters() : nullptr;
  if (parameters == nullptr) return kNotFound;
  for (std::size_t i = 0; i < parameters->getNumInputs(); ++i) {
    if (parameters->getInputName(i) == name) return i;
  }
  return kNotFound;
}

std::size_t FragmentProfileInstance::GetOutputTextParameterIndex(const WString& name) const {
  const ITextParameterList* parameters = profile_ ? profile_->getFunctionParameters() : nullptr;
  if (parameters == nullptr) return kNotFound;
  for (std::size_t i = 0; i < parameters->getNumOutputs(); ++i) {
    if (parameters->getOutputName(i) == name) return i;
  }
  return kNotFound;
}

bool FragmentProfileInstance::GetShaderFunctions(std::size_t inputIndex, Array<BuiltinFunction>& out) const {
  const ITextParameterList* parameters = profile_ ? profile_->getFunctionParameters() : nullptr;
  if (parameters == nullptr || inputIndex >= parameters->getNumInputs()) return false;
  return profile_->GetShaderFunctions(parameters->getInputName(inputIndex), out);
}

bool FragmentProfileInstance::IsShaderInput(std::size_t inputIndex) const {
  if (!profile_ || !profile_->hasShaderFunctions()) return false;
  const ITextParameterList* parameters = profile_->getFunctionParameters();
  if (parameters == nullptr || inputIndex >= parameters->getNumInputs()) return false;
  return profile_->hasShaderFunctions(parameters->getInputName(inputIndex));
}

// Writers.

bool FragmentProfileInstance::writeRequirements(AShaderFragmentProfile* target,
                                                AShaderCollapseContext& context) {
  if (requirementsWritten_) return true;
  requirementsWritten_ = true;
  if (!profile_) return true;

  if (patterns_) patterns_->keyword.clearReplacePattern();
  CodeSnippetInstance predefines;
  profile_->writePredefines(predefines, context, *this);
  if (predefines.getNumSymbols() != 0) {
    KeywordReplacePattern calls;
    addCalls(calls, profile_->getPredefineBuiltinFunctions(), getBuiltinFunctionValueInPredefine());
    KeywordReplacePattern renames;
    KeywordReplacePattern* const own = findKeywordReplacePattern();
    context.writePredefine(predefines, calls, own != nullptr ? *own : renames);
    if (!renames.empty()) getKeywordReplacePattern() = std::move(renames);
    if (ICollapseObserver* const observer = context.observer())
      observer->onPredefines(*this, codeOf(predefines), context.writtenSymbols());
  }

  if (target != nullptr) {
    target->includes().insert(profile_->includes().begin(), profile_->includes().end());
    target->stateVariables().insert(profile_->stateVariables().begin(), profile_->stateVariables().end());
    target->customStateVariables().insert(profile_->customStateVariables().begin(),
                                          profile_->customStateVariables().end());
  }
  return true;
}

bool FragmentProfileInstance::writeDefinition(AShaderCollapseContext& context) {
  if (definitionWritten_) return true;
  definitionWritten_ = true;
  if (!profile_) return true;

  // A definition that another instance wrote in the same words is there already.
  const bool isShared = hasSharedDefinition();
  if (isShared && context.takeWrittenDefinition(*this)) return true;

  CodeSnippetInstance definition;
  if (!profile_->writeDefinition(definition, context, *this)) return false;
  KeywordReplacePattern calls;
  addCalls(calls, profile_->getBodyBuiltinFunctions(), getBuiltinFunctionValueInBody());
  context.writeDefinition(definition, calls, *this);
  if (ICollapseObserver* const observer = context.observer())
    observer->onDefinition(*this, codeOf(definition), context.writtenSymbols());
  if (isShared && hasOnlySymbols(definition)) context.rememberWrittenDefinition(*this);
  return true;
}

/// Whether the definition follows from the profile, the function's name and the values of the built-in calls
/// alone.
bool FragmentProfileInstance::hasSharedDefinition() const {
  const AShaderFragmentProfile& profile = *profile_;
  return typeid(profile) == typeid(AShaderFragmentProfileFunction) && !requiresCurrentLight_ &&
         profile_->customStateVariables().empty() && !hasReplacements() &&
         (!patterns_ || patterns_->keyword.empty());
}

void FragmentProfileInstance::appendDefinitionKey(WString& key) const {
  appendFunctionName(key);
  for (const WString& value : getBuiltinFunctionValueInBody()) {
    key += L' ';
    key += value;
  }
}

bool FragmentProfileInstance::isCallWritten(std::size_t light) const {
  if (!extras_) return false;
  const auto word = extras_->callWrittenForLights.find(light / kLightsOfAWord);
  return word != extras_->callWrittenForLights.end() && (word->second & bitOf(light)) != 0;
}

bool FragmentProfileInstance::mustWriteCall(const AShaderCollapseContext& context) {
  // Inside a shader-function call everything is written, and counts for nothing outside.
  if (inShaderFunctionCall_) return true;
  if (requiresCurrentLight_) {
    const std::size_t light = context.getActiveLightIndex();
    checkTextLength(light);  // so many lights cannot be written
    std::uint64_t& written = extras().callWrittenForLights[light / kLightsOfAWord];
    if ((written & bitOf(light)) != 0) return false;
    written |= bitOf(light);
  } else if (callWritten_ && !isInlineProfile_) {
    return false;
  }
  callWritten_ = true;
  return true;
}

bool FragmentProfileInstance::writeFunctionCall(WString& out, AShaderCollapseContext& context,
                                                const Array<WString>& inputValues,
                                                const Array<WString>& outputValues) {
  if (!mustWriteCall(context)) return true;
  if (!profile_) return true;
  const std::size_t begin = out.size();
  if (!profile_->writeFunctionCall(out, context, *this, inputValues, outputValues)) return false;
  if (ICollapseObserver* const observer = context.observer()) {
    const WString& body = std::as_const(*context.getResultProfile()).getFunctionBody();
    observer->onCall(*this, inputValues, std::wstring_view(out).substr(begin), body.size());
  }
  return true;
}

}  // namespace TolmSDK::Graphics::sfg

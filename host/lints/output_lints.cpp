#include "host/lints/output_lints.h"

#include <algorithm>

#include "host/lints/assignment_flow.h"
#include "host/lints/declarations.h"
#include "tolmsdk/type_id.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Built-in functions that only give a value.
bool isPure(std::wstring_view name) {
  static const Set<std::wstring_view> kPure = {L"abs",
                                               L"acos",
                                               L"all",
                                               L"any",
                                               L"asfloat",
                                               L"asin",
                                               L"asint",
                                               L"atan",
                                               L"atan2",
                                               L"ceil",
                                               L"clamp",
                                               L"clip",
                                               L"cos",
                                               L"cosh",
                                               L"cross",
                                               L"ddx",
                                               L"ddy",
                                               L"degrees",
                                               L"determinant",
                                               L"distance",
                                               L"dot",
                                               L"exp",
                                               L"exp2",
                                               L"faceforward",
                                               L"floor",
                                               L"fma",
                                               L"fmod",
                                               L"frac",
                                               L"fwidth",
                                               L"isfinite",
                                               L"isinf",
                                               L"isnan",
                                               L"ldexp",
                                               L"length",
                                               L"lerp",
                                               L"lit",
                                               L"log",
                                               L"log10",
                                               L"log2",
                                               L"mad",
                                               L"max",
                                               L"min",
                                               L"mul",
                                               L"normalize",
                                               L"pow",
                                               L"radians",
                                               L"rcp",
                                               L"reflect",
                                               L"refract",
                                               L"round",
                                               L"rsqrt",
                                               L"saturate",
                                               L"sign",
                                               L"sin",
                                               L"sinh",
                                               L"smoothstep",
                                               L"sqrt",
                                               L"step",
                                               L"tan",
                                               L"tanh",
                                               L"transpose",
                                               L"trunc",
                                               L"sfg_isConnected",
                                               L"sfg_isFinalOutput",
                                               L"if",
                                               L"while",
                                               L"for",
                                               L"switch",
                                               L"return"};
  return kPure.contains(name);
}

/// The components of a vector's type text; none for anything else.
std::size_t vectorSize(std::wstring_view type) {
  constexpr std::wstring_view kScalars[] = {L"float",    L"int",      L"uint",       L"bool",
                                            L"half",     L"double",   L"min16float", L"min10float",
                                            L"min16int", L"min12int", L"min16uint"};
  for (const std::wstring_view scalar : kScalars) {
    if (type.size() != scalar.size() + 1 || !type.starts_with(scalar)) continue;
    const wchar_t digit = type.back();
    if (digit >= L'1' && digit <= L'4') return static_cast<std::size_t>(digit - L'0');
  }
  return 0;
}

/// The world around the function of one profile.
class ProfileNames : public IFlowNames {
public:
  ProfileNames(const LintedFragment& fragment, const LintedProfile& profile, const IncludeIndex& includes)
      : includes_(includes), own_(declarationsOf(profile.predefine.plain)),
        inBody_(declarationsOf(PlainCode{
            profile.implementation.plain.text, {}, profile.implementation.plain.directives, true})) {
    for (const CodeParameter& parameter : profile.parameters)
      if (!parameter.isOutput) given_.insert(parameter.name);
    const IObjectDataNode* const uniforms = fragment.object->member(L"uniforms");
    for (std::size_t i = 0; uniforms != nullptr && i < uniforms->size(); ++i) {
      if (const IObjectDataNode* const name = uniforms->elementOrNull(i)->member(L"name"))
        given_.insert(name->asString());
    }
  }

  bool isCertain() const { return own_.isCertain; }

  bool mayWrite(std::wstring_view function, std::size_t argument) const override {
    if (findMacro(function) != nullptr) return true;
    const auto own = own_.functions.find(function);
    const std::vector<bool>* const shared = includes_.findFunction(function);
    const auto writes = [&](const std::vector<bool>& list) {
      return argument < list.size() && list[argument];
    };
    if (own != own_.functions.end() || shared != nullptr)
      return (own != own_.functions.end() && writes(own->second)) || (shared != nullptr && writes(*shared));
    return !isPure(function) && ITypeTraits::findType(function) == TypeID_nil && vectorSize(function) == 0;
  }

  bool isStatementMacro(std::wstring_view name) const override {
    const Declarations::Macro* const macro = findMacro(name);
    return macro != nullptr && !macro->isExpression;
  }

  bool isUnknownValue(std::wstring_view name) const override { return given_.contains(name); }

  const Declarations::Structure* findStructure(std::wstring_view name) const {
    const auto own = own_.structures.find(name);
    return own != own_.structures.end() ? &own->second : includes_.findStructure(name);
  }

  const Declarations::Macro* findMacro(std::wstring_view name) const {
    for (const Declarations* const declared : {&own_, &inBody_}) {
      const auto found = declared->macros.find(name);
      if (found != declared->macros.end()) return &found->second;
    }
    return includes_.findMacro(name);
  }

private:
  const IncludeIndex& includes_;
  Declarations own_;
  Declarations inBody_;  ///< macros
  Set<std::wstring_view> given_;
};

FlowOutput outputOf(const CodeParameter& parameter, const ProfileNames& names) {
  constexpr std::size_t kMostParts = 64;
  FlowOutput output;
  output.name = parameter.name;
  const std::size_t components = vectorSize(parameter.type);
  if (parameter.isArray) return output;
  if (components > 1) {
    constexpr std::wstring_view kComponents[] = {L"x", L"y", L"z", L"w"};
    output.isVector = true;
    output.parts.assign(kComponents, kComponents + components);
  } else if (const Declarations::Structure* const structure = names.findStructure(parameter.type)) {
    if (structure->isPlain && structure->members.size() <= kMostParts) output.parts = structure->members;
  }
  return output;
}

/// "`x`, `y`"
std::string missingParts(const FlowOutput& output, std::uint64_t missing) {
  std::string text;
  for (std::size_t i = 0; i < output.parts.size(); ++i) {
    if ((missing >> i & 1) == 0) continue;
    if (!text.empty()) text += ", ";
    text += inTicks(WString(output.parts[i]));
  }
  return text;
}

bool knowsIncludes(const LintedProfile& profile, const IncludeIndex& includes) {
  const IObjectDataNode* const named = profile.object->member(L"includes");
  for (std::size_t i = 0; named != nullptr && i < named->size(); ++i)
    if (!includes.isComplete(named->elementOrNull(i)->asString())) return false;
  constexpr std::wstring_view kMetaSl = L"sfg_msl_common.h";
  return profile.mode != EShaderFragmentProfileMode::MetaSL || includes.isComplete(kMetaSl);
}

}  // namespace

void lintOutputs(const LintedFile& file, const LintedFragment& fragment, const IncludeIndex& includes,
                 LintList& lints) {
  for (const LintedProfile& profile : fragment.profiles) {
    if (profile.isInline() || profile.implementation.spelled == nullptr) continue;
    // What is not known may assign anything.
    const ProfileNames names(fragment, profile, includes);
    if (!names.isCertain() || !knowsIncludes(profile, includes)) continue;

    std::vector<FlowOutput> outputs;
    std::vector<const CodeParameter*> parameters;
    for (const CodeParameter& parameter : profile.parameters) {
      if (!parameter.isOutput || parameter.name.empty()) continue;
      outputs.push_back(outputOf(parameter, names));
      parameters.push_back(&parameter);
    }
    const PlainCode& code = profile.implementation.plain;
    if (std::none_of(code.tokens.begin(), code.tokens.end(),
                     [&](const CodeToken& token) { return token.in(code.text) == L"}"; }))
      continue;  // a body that is missing or not closed is told elsewhere
    for (const FlowFinding& finding :
         findUnassigned(code, profile.bodyBegin, profile.bodyEnd, outputs, names)) {
      const FlowOutput& output = outputs[finding.output];
      const std::string name = "its output " + inTicks(WString(output.name));
      std::size_t token = parameters[finding.output]->token;
      std::string text;
      if (finding.kind == FlowFinding::Kind::never) {
        text = named(fragment) + " never assigns " + name;
      } else if (finding.kind == FlowFinding::Kind::parts) {
        text = named(fragment) + " never assigns " + missingParts(output, finding.missing) + " of " + name;
      } else if (finding.token != FlowFinding::kNowhere) {
        token = finding.token;
        text = named(fragment) + " may return here before " + name + " is assigned";
      } else {
        text = named(fragment) + " does not assign " + name +
               " on every path; assign it in front of the branches";
      }
      lints.at(Finding::unassignedOutput, file.name, profile.implementation.placeOf(code.tokens[token]),
               text);
    }
  }
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "host/lints/use_lints.h"

#include <algorithm>
#include <utility>

#include "host/documents/near_name.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using Names = Set<std::wstring_view>;

void addDirectiveNames(const PlainCode& code, Names& names) {
  for (const PlainCode::Directive& directive : code.directives) {
    for (const CodeToken& token : directive.tokens)
      if (token.isName) names.insert(token.in(code.text));
  }
}

/// `name = ..;` as a statement of its own.
bool isOverwritten(const PlainCode& code, std::size_t token, std::size_t begin) {
  const bool startsStatement =
      token == begin || code.is(token - 1, L';') || code.is(token - 1, L'{') || code.is(token - 1, L'}');
  return startsStatement && code.is(token + 1, L'=') && !code.is(token + 2, L'=');
}

/// What the function of a profile reads, or may read through a macro.
Names readNames(const LintedProfile& profile, const IncludeIndex& includes) {
  const PlainCode& code = profile.implementation.plain;
  Names names;
  for (std::size_t i = profile.bodyBegin; i < profile.bodyEnd; ++i) {
    if (!code.isFreeName(i) || isOverwritten(code, i, profile.bodyBegin)) continue;
    names.insert(code.word(i));
    if (const Declarations::Macro* const macro = includes.findMacro(code.word(i)))
      names.insert(macro->names.begin(), macro->names.end());
  }
  addDirectiveNames(code, names);
  addDirectiveNames(profile.predefine.plain, names);
  return names;
}

/// What the code of a profile names.
void addNames(const PlainCode& code, Names& names) {
  for (std::size_t i = 0; i < code.tokens.size(); ++i)
    if (code.isFreeName(i)) names.insert(code.word(i));
  addDirectiveNames(code, names);
}

bool isCertain(const LintedFragment& fragment) {
  return std::all_of(fragment.profiles.begin(), fragment.profiles.end(), [](const LintedProfile& profile) {
    return profile.implementation.plain.isCertain && profile.predefine.plain.isCertain;
  });
}

/// Functions of this profile have the parameters that all lights have.
bool hasGivenParameters(const LintedProfile& profile) { return profile.name == "msl_light"; }

}  // namespace

void lintInputs(const LintedFile& file, const LintedFragment& fragment, const IncludeIndex& includes,
                LintList& lints) {
  if (!isCertain(fragment)) return;
  // A cheaper profile may do without an input that another reads.
  Names done;
  for (const LintedProfile& profile : fragment.profiles) {
    const Names read = readNames(profile, includes);
    for (const CodeParameter& parameter : profile.parameters)
      if (hasGivenParameters(profile) || read.contains(parameter.name)) done.insert(parameter.name);
  }
  for (const LintedProfile& profile : fragment.profiles) {
    for (const CodeParameter& parameter : profile.parameters) {
      if (parameter.isOutput || parameter.name.empty() || !done.insert(parameter.name).second) continue;
      const CodeToken& token = profile.implementation.plain.tokens[parameter.token];
      lints.at(Finding::unreadInput, file.name, profile.implementation.placeOf(token),
               named(fragment) + " never reads its input " + inTicks(WString(parameter.name)));
    }
  }
}

void lintBuiltinUses(const LintedFile& file, const LintedFragment& fragment, LintList& lints) {
  std::vector<std::string> inputs;
  for (const LintedProfile& profile : fragment.profiles)
    for (const CodeParameter& parameter : profile.parameters)
      if (!parameter.isOutput) inputs.push_back(toUtf8(parameter.name));
  for (const LintedProfile& profile : fragment.profiles) {
    const PlainCode& code = profile.implementation.plain;
    if (profile.isInline() || hasGivenParameters(profile)) continue;
    for (std::size_t i = profile.bodyBegin; i + 2 < profile.bodyEnd; ++i) {
      const bool isUse = code.isFreeName(i) &&
                         (code.word(i) == L"sfg_isConnected" || code.word(i) == L"sfg_shader") &&
                         code.is(i + 1, L'(') && code.isName(i + 2);
      if (!isUse) continue;
      const std::string name = toUtf8(code.word(i + 2));
      if (std::find(inputs.begin(), inputs.end(), name) != inputs.end()) continue;
      Diagnostic lint = diagnose(Finding::unknownPort, Severity::warning, file.name,
                                 profile.implementation.placeOf(code.tokens[i + 2]),
                                 named(fragment) + ": " + inTicks(code.word(i)) +
                                     " names an input, and there is none of the name " +
                                     inTicks(std::string_view(name)) + didYouMean(nearestName(name, inputs)));
      lint.suggestion = nearestName(name, inputs);
      lints.add(std::move(lint));
    }
  }
}

void lintUniforms(const LintedFile& file, const LintedFragment& fragment, LintList& lints) {
  const IObjectDataNode* const uniforms = fragment.object->member(L"uniforms");
  if (uniforms == nullptr || !isCertain(fragment)) return;
  Names used;
  for (const LintedProfile& profile : fragment.profiles) {
    addNames(profile.predefine.plain, used);
    addNames(profile.implementation.plain, used);
  }
  for (std::size_t i = 0; i < uniforms->size(); ++i) {
    const IObjectDataNode* const name = uniforms->elementOrNull(i)->member(L"name");
    if (name == nullptr || used.contains(name->asString())) continue;
    lints.at(Finding::unusedUniform, file.name, name->position(),
             "no code of " + named(fragment) + " uses the uniform " + inTicks(name->asString()));
  }
}

}  // namespace TolmSDK::Graphics::sfg::host

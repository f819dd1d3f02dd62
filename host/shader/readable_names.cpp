#include "host/shader/readable_names.h"

#include <algorithm>

#include "host/shader/identifiers.h"
#include "host/shader/reserved_words.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// The text as part of an identifier: other characters become underscores, of which none stand in a row or at
/// the ends.
WString asIdentifier(std::wstring_view text) {
  WString name;
  for (const wchar_t c : text) {
    const wchar_t part = isIdentifierPart(c) ? c : L'_';
    if (part != L'_' || (!name.empty() && name.back() != L'_')) name += part;
  }
  while (!name.empty() && name.back() == L'_') name.pop_back();
  if (name.empty() || !isIdentifierStart(name[0])) name.insert(0, L"n");
  return name;
}

class Namer {
public:
  explicit Namer(const std::unordered_set<std::wstring_view>& taken) : taken_(taken) {}

  WString name(const ValueOrigin& origin) {
    const bool isOwned = !origin.owner.empty();
    const WString wanted = asIdentifier(isOwned ? origin.owner + L"_" + origin.name : origin.name);
    WString candidate = wanted;
    for (std::size_t number = 2; !take(candidate); ++number) {
      candidate = isReservedPrefix(wanted) ? L"n_" + wanted : wanted;
      candidate += L'_';
      appendDecimal(candidate, number);
    }
    return candidate;
  }

private:
  /// No number helps these.
  static bool isReservedPrefix(const WString& name) { return isReservedWord(name + L"_2"); }

  bool take(const WString& name) {
    return !isReservedWord(name) && !taken_.contains(std::wstring_view(name)) && given_.insert(name).second;
  }

  const std::unordered_set<std::wstring_view>& taken_;
  Set<WString> given_;
};

bool changes(const NamedUniform& uniform) {
  switch (uniform.origin.kind) {
  case ValueOrigin::Kind::unknown: return false;
  case ValueOrigin::Kind::graphUniform: return isReservedWord(uniform.name);
  default: return true;
  }
}

}  // namespace

std::unordered_map<std::wstring_view, WString>
readableNames(const std::vector<NamedUniform>& uniforms, const std::unordered_set<std::wstring_view>& taken) {
  Namer namer(taken);
  std::unordered_map<std::wstring_view, WString> names;
  for (const bool wantsNodes : {true, false}) {
    for (const NamedUniform& uniform : uniforms) {
      if ((uniform.origin.kind == ValueOrigin::Kind::node) != wantsNodes || !changes(uniform)) continue;
      names.emplace(uniform.name, namer.name(uniform.origin));
    }
  }
  return names;
}

WString withNames(std::wstring_view text, const std::unordered_map<std::wstring_view, WString>& names) {
  WString out;
  out.reserve(text.size());
  std::size_t copied = 0;
  forEachIdentifier(text, [&](std::wstring_view identifier) {
    const auto found = names.find(identifier);
    if (found == names.end()) return;
    const auto start = static_cast<std::size_t>(identifier.data() - text.data());
    out += text.substr(copied, start - copied);
    out += found->second;
    copied = start + identifier.size();
  });
  out += text.substr(copied);
  return out;
}

}  // namespace TolmSDK::Graphics::sfg::host

#include "tools/watch/troubles.h"

#include <algorithm>

namespace TolmSDK::Graphics::sfg::tools {

namespace {

const std::vector<host::Diagnostic>& of(const Troubles& troubles, const std::string& thing) {
  static const std::vector<host::Diagnostic> none;
  const auto found = troubles.find(thing);
  return found != troubles.end() ? found->second : none;
}

bool contains(const std::vector<host::Diagnostic>& diagnostics, const host::Diagnostic& wanted) {
  return std::find(diagnostics.begin(), diagnostics.end(), wanted) != diagnostics.end();
}

}  // namespace

bool hasErrors(const std::vector<host::Diagnostic>& diagnostics) {
  return std::any_of(diagnostics.begin(), diagnostics.end(), [](const host::Diagnostic& diagnostic) {
    return diagnostic.severity == host::Severity::error || diagnostic.severity == host::Severity::message;
  });
}

TroubleNews compareTroubles(const Troubles& before, const Troubles& now) {
  TroubleNews news;
  for (const auto& [thing, diagnostics] : now) {
    const std::vector<host::Diagnostic>& former = of(before, thing);
    // Notes belong to what stands in front of them, so all is told again when something is new.
    if (!std::all_of(diagnostics.begin(), diagnostics.end(),
                     [&](const host::Diagnostic& diagnostic) { return contains(former, diagnostic); })) {
      news.come.insert(news.come.end(), diagnostics.begin(), diagnostics.end());
    }
  }
  for (const auto& [thing, diagnostics] : before) {
    if (hasErrors(diagnostics) && !hasErrors(of(now, thing))) news.gone.push_back(thing);
  }
  return news;
}

}  // namespace TolmSDK::Graphics::sfg::tools

#include "host/check/finding_list.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "host/documents/diagnostic_kinds.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

auto placeOf(const FindingGroup& group) {
  const Diagnostic& finding = group.finding;
  return std::tie(finding.file, finding.line, finding.column);
}

/// What tells findings at one place apart: of what compilers refuse there the first is the cause, and a
/// statement that a fragment repeats is the same whether a graph shows it or the fragment alone.
std::pair<std::string, std::string> matterOf(const Diagnostic& finding) {
  const bool isOne = finding.identifier == identifierOf(Finding::compileError) ||
                     finding.identifier == identifierOf(Finding::repeatedStatement);
  return {finding.identifier, isOne ? std::string() : finding.text};
}

}  // namespace

std::vector<FindingGroup> groupsOf(std::span<const Diagnostic> diagnostics) {
  std::vector<FindingGroup> groups;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (diagnostic.severity == Severity::note && !groups.empty()) {
      groups.back().notes.push_back(diagnostic);
    } else {
      groups.push_back({diagnostic, {}});
    }
  }
  return groups;
}

void append(std::vector<FindingGroup>& groups, std::vector<FindingGroup> more) {
  std::move(more.begin(), more.end(), std::back_inserter(groups));
}

void raiseForCheck(std::vector<FindingGroup>& groups) {
  for (FindingGroup& group : groups) {
    if (group.finding.identifier == identifierOf(Finding::unknownKey))
      group.finding.severity = Severity::error;
  }
}

std::vector<Diagnostic> sortedFindings(std::vector<FindingGroup> groups) {
  // Of one thing that is told as an error and as a warning the error counts.
  std::stable_sort(groups.begin(), groups.end(), [](const FindingGroup& a, const FindingGroup& b) {
    return placeOf(a) != placeOf(b) ? placeOf(a) < placeOf(b) : a.finding.severity < b.finding.severity;
  });
  std::vector<Diagnostic> sorted;
  std::set<std::pair<std::string, std::string>> told;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (i > 0 && placeOf(groups[i - 1]) != placeOf(groups[i])) told.clear();
    if (!told.insert(matterOf(groups[i].finding)).second) continue;
    sorted.push_back(groups[i].finding);
    sorted.insert(sorted.end(), groups[i].notes.begin(), groups[i].notes.end());
  }
  return sorted;
}

}  // namespace TolmSDK::Graphics::sfg::host

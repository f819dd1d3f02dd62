#pragma once

// Findings of a check, each with the notes that belong to it.

#include <span>
#include <string>
#include <vector>

#include "sfg/host/diagnostic.h"

namespace TolmSDK::Graphics::sfg::host {

/// A finding, and notes about it.
struct FindingGroup {
  Diagnostic finding;
  std::vector<Diagnostic> notes;
};

/// Groups of a list in which notes follow what they belong to. A note in front of all others is a finding of
/// its own.
std::vector<FindingGroup> groupsOf(std::span<const Diagnostic> diagnostics);

void append(std::vector<FindingGroup>& groups, std::vector<FindingGroup> more);

/// Errors of a check where a job only warns: keys that no reader knows.
void raiseForCheck(std::vector<FindingGroup>& groups);

/// In the order of files, lines and columns, each once; of what compilers refuse at one place the first.
std::vector<Diagnostic> sortedFindings(std::vector<FindingGroup> groups);

}  // namespace TolmSDK::Graphics::sfg::host

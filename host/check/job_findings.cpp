#include "host/check/job_findings.h"

#include <algorithm>

#include "host/documents/diagnose.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr const char* kGenerated = "generated";

/// What the generator says has no place, and the note behind it tells place and cause: the note becomes the
/// error, and what the generator says its note; or, where the note knows the place only, the other way round.
std::vector<FindingGroup> refusalOf(const CollapseError& refusal) {
  std::vector<FindingGroup> groups = groupsOf(refusal.diagnostics());
  for (FindingGroup& group : groups) {
    Diagnostic& finding = group.finding;
    finding.severity = Severity::error;
    if (!finding.file.empty() || group.notes.empty()) continue;
    Diagnostic& place = group.notes.front();
    finding.file = place.file;
    finding.line = place.line;
    finding.column = place.column;
    if (place.identifier == identifierOf(Finding::collapsePlace)) continue;
    std::swap(finding, place);
    std::swap(finding.severity, place.severity);
  }
  return groups;
}

/// What a compiler said of a line that nobody sees is told at the mistake.
void moveFromText(std::vector<FindingGroup>& groups, const std::string& document) {
  for (FindingGroup& group : groups) {
    Diagnostic& finding = group.finding;
    if (finding.file == kGenerated || finding.file.empty()) {
      finding.file = document;
      finding.line = finding.column = 0;
    }
    for (Diagnostic& note : group.notes) {
      if (note.file != kGenerated) continue;
      note.file = finding.file;
      note.line = finding.line;
      note.column = finding.column;
    }
  }
}

bool isMissingInclude(const Diagnostic& finding) {
  for (const Finding kind : {Finding::missingInclude, Finding::emptyInclude, Finding::unreadableInclude})
    if (finding.identifier == identifierOf(kind)) return true;
  return false;
}

/// An include file that is not there is why code does not compile.
bool raiseMissingIncludes(std::vector<FindingGroup>& groups) {
  bool isRaised = false;
  for (FindingGroup& group : groups) {
    if (!isMissingInclude(group.finding)) continue;
    group.finding.severity = Severity::error;
    isRaised = true;
  }
  return isRaised;
}

class JobCheck {
public:
  JobCheck(const CheckTools& tools, const Document& graph) : tools_(tools), graph_(graph) {}

  std::vector<FindingGroup> run(const CollapseOptions& options, const std::optional<Document>& environment) {
    try {
      Job job(tools_.libraries, graph_, options, environment);
      append(groups_, groupsOf(job.problems()));
      collapse(job);
    } catch (const InputError& error) {
      append(groups_, groupsOf(error.related()));
      append(groups_, groupsOf(std::vector<Diagnostic>{error.diagnostic()}));
    }
    return std::move(groups_);
  }

private:
  void collapse(Job& job) {
    if (const std::vector<Diagnostic> errors = job.errors(); !errors.empty()) {
      append(groups_, groupsOf(errors));
      return;
    }
    try {
      job.collapse();
    } catch (const CollapseError& refusal) {
      append(groups_, refusalOf(refusal));
      return;
    }
    append(groups_, groupsOf(job.warnings()));
    compile(job);
  }

  void compile(const Job& job) {
    try {
      const Shader shader = job.assemble();
      if (tools_.cache == nullptr) return;
      const std::shared_ptr<const CompileError> error = tools_.cache->compile(shader);
      if (!error || raiseMissingIncludes(groups_)) return;
      std::vector<FindingGroup> told = groupsOf(job.explain(shader, *error));
      moveFromText(told, graph_.name());
      append(groups_, std::move(told));
    } catch (const AssemblyError& error) {
      append(groups_, groupsOf(std::vector<Diagnostic>{diagnose(Finding::incompleteShader, Severity::error,
                                                                graph_.name(), {}, error.what())}));
    }
  }

  const CheckTools& tools_;
  const Document& graph_;
  std::vector<FindingGroup> groups_;
};

}  // namespace

std::vector<FindingGroup> findInJob(const CheckTools& tools, const Document& graph,
                                    const CollapseOptions& options,
                                    const std::optional<Document>& environment) {
  return JobCheck(tools, graph).run(options, environment);
}

bool hasErrors(const std::vector<FindingGroup>& groups) {
  return std::any_of(groups.begin(), groups.end(),
                     [](const FindingGroup& group) { return group.finding.severity == Severity::error; });
}

}  // namespace TolmSDK::Graphics::sfg::host

// Results of a check for other programs.

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "host/check/diagnostic_json.h"
#include "host/check/finding_list.h"
#include "sfg/host/check.h"
#include "sfg/host/version.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Members in the order in which they are added.
using Json = nlohmann::ordered_json;

/// Ill-formed UTF-8 becomes U+FFFD, as in files.
std::string textOf(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::size_t countOf(const CheckResult& result, Severity severity) {
  return static_cast<std::size_t>(
      std::count_if(result.diagnostics.begin(), result.diagnostics.end(),
                    [&](const Diagnostic& diagnostic) { return diagnostic.severity == severity; }));
}

/// The path as a URI reference: what may not stand in one is escaped, byte by byte.
std::string uriOf(const std::string& file) {
  constexpr std::string_view kPlain = "/-._~!$&'()*+,;=@";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  const bool isAbsolute = file.starts_with('/');
  std::string uri = isAbsolute ? "file://" : "";
  for (const char c : file) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (isLetter || kPlain.find(c) != kPlain.npos) {
      uri += c;
    } else {
      uri += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return uri;
}

/// A place as SARIF has it; null for none.
Json locationOf(const Diagnostic& diagnostic) {
  if (diagnostic.file.empty()) return Json();
  Json physical;
  physical["artifactLocation"]["uri"] = uriOf(diagnostic.file);
  if (diagnostic.line != 0) {
    physical["region"]["startLine"] = diagnostic.line;
    if (diagnostic.column != 0) physical["region"]["startColumn"] = diagnostic.column;
  }
  Json location;
  location["physicalLocation"] = std::move(physical);
  return location;
}

class SarifWriter {
public:
  SarifWriter() {
    for (const DiagnosticKind& kind : diagnosticKinds()) {
      ruleIndexes_.emplace(kind.identifier, rules_.size());
      Json rule;
      rule["id"] = kind.identifier;
      rule["shortDescription"]["text"] = kind.meaning;
      rules_.push_back(std::move(rule));
    }
  }

  std::string write(const CheckResult& result) const {
    Json results = Json::array();
    for (const FindingGroup& group : groupsOf(result.diagnostics)) results.push_back(resultOf(group));
    Json run;
    run["tool"]["driver"] = {{"name", "sfg"}, {"version", hostVersion()}, {"rules", rules_}};
    run["columnKind"] = "unicodeCodePoints";
    run["results"] = std::move(results);
    Json log;
    log["$schema"] = "https://json.schemastore.org/sarif-2.1.0.json";
    log["version"] = "2.1.0";
    log["runs"] = Json::array({std::move(run)});
    return textOf(log);
  }

private:
  Json resultOf(const FindingGroup& group) const {
    const Diagnostic& finding = group.finding;
    Json result;
    result["ruleId"] = finding.identifier;
    if (const auto rule = ruleIndexes_.find(finding.identifier); rule != ruleIndexes_.end())
      result["ruleIndex"] = rule->second;
    result["level"] = nameOf(finding.severity);
    result["message"]["text"] = finding.text;
    if (Json location = locationOf(finding); !location.is_null())
      result["locations"] = Json::array({std::move(location)});
    Json related = Json::array();
    for (const Diagnostic& note : group.notes) {
      Json location = locationOf(note);
      location["message"]["text"] = note.text;
      related.push_back(std::move(location));
    }
    if (!related.empty()) result["relatedLocations"] = std::move(related);
    return result;
  }

  Json rules_ = Json::array();
  std::map<std::string, std::size_t, std::less<>> ruleIndexes_;
};

}  // namespace

std::string toJson(const CheckResult& result) {
  Json findings = Json::array();
  for (const FindingGroup& group : groupsOf(result.diagnostics)) {
    Json finding = jsonOf(group.finding);
    finding["notes"] = Json::array();
    for (const Diagnostic& note : group.notes) finding["notes"].push_back(jsonOf(note));
    findings.push_back(std::move(finding));
  }
  return textOf({{"version", 1},
                 {"findings", std::move(findings)},
                 {"errors", countOf(result, Severity::error)},
                 {"warnings", countOf(result, Severity::warning)},
                 {"fragments", result.counts.fragments},
                 {"profiles", result.counts.profiles},
                 {"graphs", result.counts.graphs},
                 {"environments", result.counts.environments}});
}

std::string toSarif(const CheckResult& result) { return SarifWriter().write(result); }

}  // namespace TolmSDK::Graphics::sfg::host

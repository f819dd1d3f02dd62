// What becomes of a build, for other programs.

#include <nlohmann/json.hpp>

#include "host/check/diagnostic_json.h"
#include "sfg/host/build.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Members in the order in which they are added.
using Json = nlohmann::ordered_json;

/// In one line; ill-formed UTF-8 becomes U+FFFD, as in files.
std::string lineOf(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace

std::string eventJson(const BuildPlan& plan, const BuildResult& result, std::size_t done, std::size_t all) {
  const BuildTask& task = plan.tasks[result.task];
  Json diagnostics = Json::array();
  for (const Diagnostic& diagnostic : result.diagnostics) diagnostics.push_back(jsonOf(diagnostic));
  Json event = {{"event", "shader"},
                {"output", task.output},
                {"graph", task.graph},
                {"outcome", nameOf(result.outcome)},
                {"seconds", result.seconds},
                {"done", done},
                {"all", all}};
  event["files"] = result.files;
  event["diagnostics"] = std::move(diagnostics);
  return lineOf(event);
}

std::string reportJson(const BuildPlan& plan, const BuildReport& report) {
  Json steps = Json::object();
  for (const BuildReport::Step& step : report.steps) steps[step.name] = step.seconds;
  Json slowest = Json::array();
  for (const BuildReport::Slow& slow : report.slowest)
    slowest.push_back({{"output", plan.tasks[slow.task].output}, {"seconds", slow.seconds}});
  Json event = {{"event", "end"},
                {"version", 1},
                {"shaders", report.tasks},
                {"built", report.built},
                {"reused", report.reused},
                {"unchanged", report.unchanged},
                {"failed", report.failed},
                {"stopped", report.isStopped},
                {"seconds", report.seconds},
                {"collapses", report.collapses},
                {"compiledTexts", report.compiledTexts}};
  event["steps"] = std::move(steps);
  event["slowest"] = std::move(slowest);
  return lineOf(event);
}

}  // namespace TolmSDK::Graphics::sfg::host

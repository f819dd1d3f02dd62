#include "tools/watch/watch_events.h"

#include <nlohmann/json.hpp>

#include "host/check/diagnostic_json.h"

namespace TolmSDK::Graphics::sfg::tools {

std::string roundJson(const WatchRound& round, const TroubleNews& news) {
  using Json = nlohmann::ordered_json;
  Json event = {{"event", "round"}, {"version", 1}};
  event["changed"] = round.changed;
  event["made"] = round.made;
  if (round.report) {
    event["built"] = round.report->built;
    event["reused"] = round.report->reused;
    event["unchanged"] = round.report->unchanged;
    event["failed"] = round.report->failed;
    event["seconds"] = round.report->seconds;
  }
  Json diagnostics = Json::array();
  for (const host::Diagnostic& diagnostic : news.come) diagnostics.push_back(host::jsonOf(diagnostic));
  event["diagnostics"] = std::move(diagnostics);
  event["mended"] = news.gone;
  // Ill-formed UTF-8 becomes U+FFFD, as in files.
  return event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace TolmSDK::Graphics::sfg::tools

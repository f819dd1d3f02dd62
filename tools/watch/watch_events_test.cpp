#include "tools/watch/watch_events.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools {
namespace {

TEST(WatchEvents, RoundIsAnObjectInALine) {
  WatchRound round{{"a.json"}, {"out/a.spv"}, host::BuildReport()};
  round.report->built = 1;
  round.report->failed = 2;
  round.report->seconds = 0.5;
  const TroubleNews news{{{host::Severity::error, "b.json", 3, 4, "say \"why\"", "unknown-node"}},
                         {"out/a.spv"}};
  EXPECT_EQ(roundJson(round, news),
            R"({"event":"round","version":1,"changed":["a.json"],"made":["out/a.spv"],"built":1,"reused":0,)"
            R"("unchanged":0,"failed":2,"seconds":0.5,"diagnostics":[{"file":"b.json","line":3,"column":4,)"
            R"("severity":"error","identifier":"unknown-node","text":"say \"why\""}],"mended":["out/a.spv"]})"
            "\n");
}

TEST(WatchEvents, WhatCouldNotBeTriedHasNoCounts) {
  EXPECT_EQ(roundJson({{"manifest.json"}, {}, std::nullopt}, {}),
            R"({"event":"round","version":1,"changed":["manifest.json"],"made":[],"diagnostics":[],)"
            R"("mended":[]})"
            "\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools

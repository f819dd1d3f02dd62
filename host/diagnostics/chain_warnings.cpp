#include "host/diagnostics/chain_warnings.h"

#include "host/documents/document_reader.h"
#include "host/job/color_steps.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::string_view kEncoded = "srgb";

void warnOfIdleFragments(const CollapseFacts& facts, WarningList& warnings) {
  if (facts.isLightLoop()) return;
  for (const GraphDocument::ChainFragment& link : facts.document().postprocess()) {
    warnings.atGraph(Finding::idlePostprocess, link.position,
                     "post-process fragment " + inTicks(link.name) +
                         " does nothing: only the light loop (`--tool lightloop`) evaluates it");
  }
}

std::string named(const ColorStep& step) {
  switch (step.kind) {
  case ColorStep::Kind::node: return "node " + inTicks(step.name);
  case ColorStep::Kind::postprocess: return "post-process fragment " + inTicks(step.name);
  case ColorStep::Kind::output: break;
  }
  return "output fragment " + inTicks(step.name);
}

void warnOfSecondEncoding(const CollapseFacts& facts, WarningList& warnings) {
  const std::vector<ColorStep> steps = colorSteps(facts.job());
  const ColorStep* encoder = nullptr;
  for (const ColorStep& step : steps) {
    const bool takesEncoded = step.taken == kEncoded;
    if (encoder != nullptr && step.given == kEncoded && !takesEncoded) {
      const std::string text = named(step) + " encodes colours as sRGB that " + named(*encoder) +
                               " gives as sRGB already; leave out one of the two";
      if (step.kind == ColorStep::Kind::output) {
        warnings.atEnvironment(Finding::encodedTwice, step.position, text);
      } else {
        warnings.atGraph(Finding::encodedTwice, step.position, text);
      }
    }
    if (step.given == kEncoded && !takesEncoded) encoder = &step;
    if (takesEncoded && !step.given.empty() && step.given != kEncoded) encoder = nullptr;
  }
}

}  // namespace

void warnOfChains(const CollapseFacts& facts, WarningList& warnings) {
  warnOfIdleFragments(facts, warnings);
  warnOfSecondEncoding(facts, warnings);
}

}  // namespace TolmSDK::Graphics::sfg::host

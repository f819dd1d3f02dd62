#include "host/diagnostics/light_blocks.h"

#include <vector>

#include "host/diagnostics/collapse_facts.h"
#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/origins/fragment_code.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kStem = L"TOLM_VESSOR_LIGHT_AND_SHADOW_";
constexpr std::wstring_view kBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
constexpr std::wstring_view kEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";

/// The blocks in the code of fragments.
class BlockSearch {
public:
  explicit BlockSearch(const CollapseJob& job) : job_(job), codes_(job.libraries()) {}

  std::optional<Diagnostic> run() {
    EvaluatedSurface surface(job_);
    for (const std::size_t index : reachableNodes(job_.document())) {
      const WString& name = job_.document().node(index).fragmentName();
      const IShaderFragment* const fragment = job_.libraries().language().findFragment(name);
      if (fragment == nullptr) continue;
      for (const Profile profile : surface.profilesOf(*fragment).taken) {
        if (std::optional<Diagnostic> found = findIn(*fragment, profile)) return found;
      }
    }
    for (const auto* chain : {&job_.document().preprocess(), &job_.document().postprocess()}) {
      for (const GraphDocument::ChainFragment& link : *chain) {
        if (std::optional<Diagnostic> found = findInAll(*link.fragment)) return found;
      }
    }
    for (const ShadingEnvironment::Light& light : job_.environment().lights()) {
      if (std::optional<Diagnostic> found = findInAll(*light.fragment)) return found;
    }
    const IShaderFragment* const output = job_.environment().getOutputFragment();
    return output != nullptr ? findInAll(*output) : std::nullopt;
  }

private:
  std::optional<Diagnostic> findInAll(const IShaderFragment& fragment) {
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
      if (std::optional<Diagnostic> found = findIn(fragment, fragment.getProfile(i))) return found;
    }
    return std::nullopt;
  }

  std::optional<Diagnostic> findIn(const IShaderFragment& fragment, Profile profile) {
    if (profile->getMode() != EShaderFragmentProfileMode::MetaSL) return std::nullopt;
    for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
      if (fragment.getProfile(i) != profile) continue;
      for (const CodePart part : {CodePart::predefine, CodePart::implementation}) {
        const FragmentCode* const code = codes_.find(fragment.key(), i, part);
        if (code == nullptr) continue;
        const std::optional<OpenLightBlock> open =
            findOpenLightBlock(code->text, job_.environment().getNumLights());
        if (open) return tell(fragment, *code, *open);
      }
    }
    return std::nullopt;
  }

  static Diagnostic tell(const IShaderFragment& fragment, const FragmentCode& code,
                         const OpenLightBlock& open) {
    return diagnose(Finding::compileError, Severity::error, *code.file, code.placeOf(open.place),
                    "fragment " + inTicks(fragment.key()) + ": " + open.text);
  }

  const CollapseJob& job_;
  FragmentCodes codes_;
};

}  // namespace

std::optional<OpenLightBlock> findOpenLightBlock(std::wstring_view code, std::size_t numLights) {
  std::vector<std::size_t> open;
  std::optional<std::size_t> earlyEnd;
  for (std::size_t at = code.find(kStem); at != code.npos; at = code.find(kStem, at + kStem.size())) {
    const std::wstring_view rest = code.substr(at);
    if (rest.starts_with(kBegin)) {
      if (earlyEnd) return OpenLightBlock{*earlyEnd, inTicks(kEnd) + " closes no light and shadow block"};
      // Without lights a block is left out up to its first end.
      if (numLights == 0 && !open.empty()) continue;
      if (numLights > 1 && !open.empty()) {
        return OpenLightBlock{at, inTicks(kBegin) +
                                      " stands inside another light and shadow block, which only "
                                      "one light allows"};
      }
      open.push_back(at);
    } else if (rest.starts_with(kEnd)) {
      if (!open.empty()) {
        open.pop_back();
      } else if (!earlyEnd) {
        earlyEnd = at;
      }
    }
  }
  if (open.empty()) return std::nullopt;
  return OpenLightBlock{open.back(), inTicks(kBegin) + " has no " + inTicks(kEnd) + " behind it"};
}

std::optional<Diagnostic> findOpenLightBlock(const CollapseJob& job) { return BlockSearch(job).run(); }

}  // namespace TolmSDK::Graphics::sfg::host

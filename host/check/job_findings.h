#pragma once

// Everything that one job tells, from reading its documents to compiling its shader.

#include <memory>
#include <optional>
#include <vector>

#include "host/check/compile_cache.h"
#include "host/check/finding_list.h"
#include "sfg/host/document.h"
#include "sfg/host/job.h"
#include "sfg/host/library_set.h"

namespace TolmSDK::Graphics::sfg::host {

/// What documents are called that no file holds: those that a check makes up.
inline constexpr const char* kMadeUpGraph = "the check's graph";
inline constexpr const char* kMadeUpLights = "the check's lights";

/// What jobs are checked with. `cache` is null where nothing is compiled.
struct CheckTools {
  std::shared_ptr<const LibrarySet> libraries;
  CheckCache::Impl* cache = nullptr;
};

/// The findings of a job, those behind a mistake that nothing can follow left out. Places in the shader's
/// text are not told: nobody sees it.
std::vector<FindingGroup> findInJob(const CheckTools& tools, const Document& graph,
                                    const CollapseOptions& options,
                                    const std::optional<Document>& environment);

bool hasErrors(const std::vector<FindingGroup>& groups);

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

#include "host/documents/graph_document.h"
#include "sfg/host/host_graph.h"

namespace TolmSDK::Graphics::sfg::host {

/// The graph as a document without places, of which the builder is shown the host's own accessors.
/// Diagnostics call it "graph". Throws InputError for a null graph, node or parameter, a name or node used
/// twice, a wire to a node, output or graph input that is not there, an input that is fed twice, and an
/// unknown pre-process or post-process fragment.
RefPtr<GraphDocument> readHostGraph(const RefPtr<IHostGraph const>& graph, const ILanguageTraits& language,
                                    const WhyUnknown& whyUnknown = {});

/// Reads the graph again. Throws InputError when it is not as it was when `before` was read of it, and as
/// readHostGraph() does: the builder would find what nobody has checked.
void requireUnchanged(const GraphDocument& before, const RefPtr<IHostGraph const>& graph,
                      const ILanguageTraits& language, const WhyUnknown& whyUnknown = {});

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Which part of a graph or scene a value of a shader stands for.

#include <unordered_map>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

struct ValueOrigin {
  enum class Kind {
    unknown,
    node,           ///< an input or a uniform of a node's fragment
    light,          ///< of a light's
    preprocess,     ///< of a fragment of the pre-process chain
    postprocess,    ///< of a fragment of the post-process chain
    output,         ///< of the environment's output fragment
    graphUniform,   ///< a uniform of the graph itself
    graphInput,     ///< an input of the graph
    stateVariable,  ///< what the renderer knows
  };
  Kind kind = Kind::unknown;
  WString owner;     ///< the node's, light's or instance's name; empty for the graph and state variables
  WString fragment;  ///< the owner's
  WString name;      ///< of the input, uniform or state variable
  /// What the owner's library says of it; null when it says nothing. Lives as long as the libraries.
  const PortMetadata* port = nullptr;

  /// "owner.name", or the name alone where there is no owner.
  WString path() const { return owner.empty() ? name : owner + L"." + name; }
};

/// Finds what the uniforms of a job's result stand for. The job has run and outlives this.
class ValueOrigins {
public:
  explicit ValueOrigins(const CollapseJob& job);

  ValueOrigin find(const AParameter& uniform) const;

private:
  /// What the views point into belongs to the job.
  struct Candidate {
    const AParameter* parameter = nullptr;
    ValueOrigin::Kind kind = ValueOrigin::Kind::unknown;
    std::wstring_view owner;
    std::wstring_view fragment;
    bool isUniform = false;  ///< of the owner's fragment, not an input
  };
  struct Hash {
    std::size_t operator()(const WString& text) const noexcept {
      return std::hash<std::wstring_view>()(text);
    }
  };
  void add(const IShaderFragment& fragment, ValueOrigin::Kind kind, const WString& owner);

  const LibraryPorts& libraryPorts_;
  /// By the name that a uniform has in the result.
  std::unordered_multimap<WString, Candidate, Hash> candidates_;
};

}  // namespace TolmSDK::Graphics::sfg::host

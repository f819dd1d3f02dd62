#pragma once

// Wires from inline expressions to inputs that code calls as shader functions.

#include <stdexcept>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a graph with wires is refused with whose source would have to be a function, but is an expression.
class CalledExpressionError : public std::runtime_error {
public:
  /// At least one wire.
  explicit CalledExpressionError(std::vector<Diagnostic> wires);

  /// Each at its node input.
  const std::vector<Diagnostic>& wires() const noexcept { return wires_; }

private:
  std::vector<Diagnostic> wires_;
};

/// Errors at the wires of the job's document between nodes that a graph output reaches, where under one of
/// the profile names of the collapse the consumer calls the input through `sfg_shader` and the source is
/// inline. Each once, in the order of nodes and their inputs. Nodes of unknown fragments or without a profile
/// and ports beyond the code's parameters are passed over; a loop is followed once.
std::vector<Diagnostic> findCalledExpressions(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host

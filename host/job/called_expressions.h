#pragma once

// Wires from inline expressions to inputs that code calls as shader functions.

#include <stdexcept>
#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// A wire whose source would have to be a function, but is an expression.
struct CalledExpression {
  std::string place;  ///< "graph.json:3:5": the node input
  std::string text;
};

/// What a graph with such wires is refused with.
class CalledExpressionError : public std::runtime_error {
public:
  /// At least one wire.
  explicit CalledExpressionError(std::vector<CalledExpression> wires);

  const std::vector<CalledExpression>& wires() const noexcept { return wires_; }

private:
  std::vector<CalledExpression> wires_;
};

/// The wires of the job's document between nodes that a graph output reaches, where under one of the profile
/// names of the collapse the consumer calls the input through `sfg_shader` and the source is inline. Each
/// once, in the order of nodes and their inputs. Nodes of unknown fragments or without a profile and ports
/// beyond the code's parameters are passed over; a loop is followed once.
std::vector<CalledExpression> findCalledExpressions(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host

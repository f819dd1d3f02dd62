#pragma once

// Types at both ends of wires.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// What a type becomes when it is given to another.
enum class Fit {
  fits,   ///< equal, numbers of one shape, or a scalar that becomes every component of a vector
  drops,  ///< a vector becomes a shorter one
  not_    ///< anything else
};

/// `isWritten`: the taker may change what it is given, so that both must be equal.
Fit fitOf(const AParameter& source, const AParameter& taker, bool isWritten);

/// The wires of the job's document that lead from one type to another that does not take it, with fragments
/// that convert, and the types in the code of its fragments that nothing declares: `severity` at each, in the
/// order of nodes and their inputs, then graph outputs.
std::vector<Diagnostic> findTypeErrors(const CollapseJob& job, Severity severity);

/// Warnings of wires that drop components.
std::vector<Diagnostic> findDroppedComponents(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host

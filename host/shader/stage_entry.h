#pragma once

// Entry points: what is particular to a stage when a complete shader is printed.

#include <memory>

#include "host/shader/shader_plan.h"
#include "host/shader/shader_text.h"

namespace TolmSDK::Graphics::sfg::host {

/// Belongs to the printing of one plan, which it refers to. The entry point's parameters and results are
/// `sfg_in` and `sfg_out` in every stage.
class StageEntry {
public:
  explicit StageEntry(const ShaderPlan& plan) : plan_(plan) {}
  virtual ~StageEntry() = default;

  /// What stands in front of everything else.
  virtual void writeHeader(ShaderText&) const {}
  /// The interface, and the entry point up to the declaration of `sfg_out`.
  virtual void writeStart(ShaderText& out) const = 0;
  /// Hands `sfg_out` over.
  virtual void writeEnd(ShaderText& out) const = 0;

  /// A varying as the function takes it.
  virtual WString varyingValue(const Varying& varying) const = 0;
  /// Whether the function cannot write to `sfg_out` itself.
  virtual bool needsLocal(const Port& output) const = 0;
  /// What `sfg_out` takes of a row (of the type rowType()) that the function wrote to a local.
  virtual WString resultValue(const Port& output, const WString& row) const = 0;

protected:
  const ShaderPlan& plan() const noexcept { return plan_; }

private:
  const ShaderPlan& plan_;
};

std::unique_ptr<StageEntry> makePixelEntry(const ShaderPlan& plan);
std::unique_ptr<StageEntry> makeComputeEntry(const ShaderPlan& plan);

}  // namespace TolmSDK::Graphics::sfg::host

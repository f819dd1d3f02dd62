#pragma once

// How large the result of a collapse will be, so that it need not grow.

#include <cstddef>

#include "fragments/pointer_set.h"
#include "sfg/fragment_instance.h"

namespace TolmSDK::Graphics::sfg {

/// Adds up what the instances of a collapse write with the profiles that are active. A text that grows is
/// copied, and for a while there twice; one with room for everything is neither. Room is all that follows
/// from it: expressions, lights and shader functions are not foreseen.
class ExpectedResult {
public:
  void add(const FragmentInstance& instance);
  std::size_t bodyLength() const noexcept { return withReserve(body_); }
  std::size_t definitionsLength() const noexcept { return withReserve(definitions_); }
  std::size_t numUniforms() const noexcept { return uniforms_; }

private:
  static std::size_t withReserve(std::size_t length) noexcept;
  bool isFirstUse(const AShaderFragmentProfile& profile);
  void addDefinition(const AShaderFragmentProfile& profile);

  std::size_t body_ = 0;
  std::size_t definitions_ = 0;
  std::size_t uniforms_ = 0;
  const AShaderFragmentProfile* last_ = nullptr;
  PointerSet profiles_;
};

}  // namespace TolmSDK::Graphics::sfg

#pragma once

// Which outputs of a function are assigned on which paths.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "host/lints/plain_code.h"

namespace TolmSDK::Graphics::sfg::host {

/// What the flow asks of the world around a function.
class IFlowNames {
public:
  virtual ~IFlowNames() = default;
  /// Whether a function, macro or built-in of that name may write its argument at that position.
  virtual bool mayWrite(std::wstring_view function, std::size_t argument) const = 0;
  /// Whether the name is a macro that may do more than give a value.
  virtual bool isStatementMacro(std::wstring_view name) const = 0;
  /// Whether the name is given from outside and can be anything, so that a loop over it may never run.
  virtual bool isUnknownValue(std::wstring_view name) const = 0;
};

/// An output, of which up to 64 parts are told apart: components of a vector, members of a structure.
struct FlowOutput {
  std::wstring_view name;
  bool isVector = false;
  std::vector<std::wstring_view> parts;  ///< members; of a vector x, y, ..; none for one that is whole

  std::uint64_t all() const noexcept {
    return parts.size() < 2 ? 1 : ~std::uint64_t{0} >> (64 - parts.size());
  }
};

struct FlowFinding {
  enum class Kind {
    never,     ///< nothing is assigned anywhere
    parts,     ///< these parts are assigned nowhere
    somewhere  ///< some path reaches the end of the function without it
  };
  Kind kind = Kind::never;
  std::size_t output = 0;
  std::size_t token = kNowhere;  ///< the `return` that leaves without it; else the end of the function
  std::uint64_t missing = 0;     ///< parts

  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
};

/// At most one finding per output, in their order; of up to 32 outputs. Whatever is not certain is taken for
/// an assignment. Takes time in proportion to the tokens.
std::vector<FlowFinding> findUnassigned(const PlainCode& code, std::size_t begin, std::size_t end,
                                        const std::vector<FlowOutput>& outputs, const IFlowNames& names);

}  // namespace TolmSDK::Graphics::sfg::host

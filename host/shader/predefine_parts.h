#pragma once

// The predefines of a collapsed function, part by part.

#include <string_view>
#include <vector>

#include "sfg/shader_symbol.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// A symbol of the predefines, or text between symbols (without a name).
struct PredefinePart {
  EShaderSymbolType type = EShaderSymbolType::unknown;
  WString name;
  std::wstring_view text;
};

/// The parts of a text, which it outlives, and which of them are placed already.
class PredefineParts {
public:
  /// Nothing is lost: text that is no symbol goes with the symbol behind it.
  explicit PredefineParts(const WString& predefines);
  PredefineParts(const PredefineParts&) = delete;
  PredefineParts& operator=(const PredefineParts&) = delete;

  const std::vector<PredefinePart>& all() const noexcept { return parts_; }

  /// Takes the structures of these names, each behind the structures it is made of; those that are taken
  /// already and names of nothing are passed over. Answers places among all().
  std::vector<std::size_t> takeStructures(const Array<WString>& names);
  /// Takes what is left, in order.
  std::vector<std::size_t> takeRest();

private:
  /// A structure that is being taken: the parts that its identifiers name go in front of it.
  struct OpenStructure {
    std::size_t part;
    std::vector<std::wstring_view> identifiers;
    std::size_t next = 0;
  };
  void open(std::vector<OpenStructure>& stack, std::wstring_view name);

  std::vector<PredefinePart> parts_;
  Map<std::wstring_view, std::size_t> structures_;  ///< the first part of each name
  std::vector<bool> isTaken_;
};

}  // namespace TolmSDK::Graphics::sfg::host

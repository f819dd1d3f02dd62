#pragma once

// How structures of shader text lie in a constant buffer.

#include <optional>
#include <string_view>

#include "sfg/host/reflect.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

struct StructureLayout {
  std::size_t size = 0;  ///< a multiple of 16
  std::vector<InterfaceMember> members;
};

/// The structures that a text declares; the text outlives this.
class StructureLayouts {
public:
  explicit StructureLayouts(std::wstring_view text);

  /// The layout of the first structure of this name. Nothing when there is none, or when it holds what is not
  /// understood: preprocessor lines, types that are neither numbers nor structures of the text, lengths that
  /// are no number, structures within themselves, more than 1024 members at all depths. Takes time in
  /// proportion to the members.
  std::optional<StructureLayout> find(std::wstring_view name) const;

private:
  std::wstring_view text_;
  Map<std::wstring_view, std::size_t> bodies_;  ///< where the members of each structure start
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// How structures of shader text lie in a constant buffer.

#include <optional>
#include <string_view>

#include "host/shader/shader_interface.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

struct StructureLayout {
  std::size_t size = 0;  ///< a multiple of 16
  std::vector<InterfaceMember> members;
};

/// The layout of the structure of this name that the text declares. Nothing when there is none, or when it
/// holds what is not understood: preprocessor lines, types that are neither numbers nor structures of the
/// text, lengths that are no number, structures within themselves, more than 1024 members at all depths.
std::optional<StructureLayout> layOutStructure(std::wstring_view text, std::wstring_view name);

}  // namespace TolmSDK::Graphics::sfg::host

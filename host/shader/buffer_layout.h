#pragma once

// Where the members of a constant buffer lie.

#include <cstddef>
#include <vector>

#include "host/shader/shader_types.h"
#include "host/shader/value_origin.h"
#include "tolmsdk/value.h"

namespace TolmSDK::Graphics::sfg::host {

struct BufferMember {
  Port port;
  ValueOrigin origin;
  AValue value;  ///< what it starts with; none for state variables and graph inputs
  std::size_t offset = 0;
  std::size_t size = 0;  ///< 0 for a structure
};

struct ConstantBuffer {
  WString name;
  std::size_t number = 0;  ///< of its register
  std::vector<BufferMember> members;
};

/// Bytes that a value takes in a constant buffer; 0 for a structure.
std::size_t bufferedSize(const TypeID& type) noexcept;

/// Gives every member its place, by rules on which all shading languages agree: nothing crosses a register of
/// 16 bytes, vectors of two components start at half a register, and each column of a matrix has a register.
void placeMembers(std::vector<BufferMember>& members) noexcept;

/// One buffer for all members but structures, which have a buffer each; none without members.
std::vector<ConstantBuffer> makeBuffers(const WString& name, std::vector<BufferMember> members);

/// The place as HLSL writes it: "c1.z".
WString packOffset(std::size_t offset);

}  // namespace TolmSDK::Graphics::sfg::host

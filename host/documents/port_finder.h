#pragma once

// Ports by name.

#include <cstddef>
#include <string_view>
#include <vector>

#include "tolmsdk/parameter.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::host {

/// Finds ports of many lists by name; a long list is sorted at the first question, so that asking for each
/// port of a list takes little longer than reading it. A list that was asked for stays where it is and keeps
/// its names and their order.
class PortFinder {
public:
  using Ports = Array<RefPtr<AParameter const>>;

  /// Index of the first port of exactly that name, or the not-found value.
  std::size_t find(const Ports& ports, std::wstring_view name);

private:
  /// Indexes of the ports, in order of names; of equal names the first port comes first.
  using Order = std::vector<std::size_t>;

  static Order sorted(const Ports& ports);

  Map<const Ports*, Order> orders_;
};

}  // namespace TolmSDK::Graphics::sfg::host

#pragma once

// Names for the uniforms of a complete shader, after what they stand for.

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/shader/value_origin.h"

namespace TolmSDK::Graphics::sfg::host {

/// A uniform to be named.
struct NamedUniform {
  WString name;
  ValueOrigin origin;
};

/// New names by old ones, of those that change: the owner's name, an underscore and the input's, made an
/// identifier; a number is appended to a name that is reserved, taken, or given already. Nodes come before
/// lights, so that a node's names are the same under every environment unless code of it has them. Graph
/// uniforms change only when their name is a reserved word, uniforms of no known origin never.
std::unordered_map<std::wstring_view, WString>
readableNames(const std::vector<NamedUniform>& uniforms, const std::unordered_set<std::wstring_view>& taken);

/// The text with identifiers replaced; comments stay.
WString withNames(std::wstring_view text, const std::unordered_map<std::wstring_view, WString>& names);

}  // namespace TolmSDK::Graphics::sfg::host

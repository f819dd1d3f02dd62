#pragma once

// Keys that nobody reads.

#include <string>
#include <string_view>
#include <vector>

#include "host/documents/keys.h"
#include "sfg/host/diagnostic.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

/// An unknown key of an object.
struct UnknownKey {
  const IObjectDataNode* object = nullptr;
  const KeyTable* table = nullptr;  ///< of the object
  std::string key;
  TextPosition position;   ///< of the key
  std::string_view meant;  ///< the key of the table that is near; empty without one
};

/// The unknown keys of an object and of those that it holds, in the order of the text.
std::vector<UnknownKey> findUnknownKeys(const IObjectDataNode& object, const KeyTable& table);

/// Says what the object knows.
Diagnostic describe(const UnknownKey& found, Severity severity, const std::string& file);
/// Says that the earlier one does not count.
Diagnostic describe(const RepeatedMember& repeated, const std::string& file);

}  // namespace TolmSDK::Graphics::sfg::host

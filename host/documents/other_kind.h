#pragma once

// Documents that are taken for another kind than they are.

#include <string>

#include "host/documents/document_reader.h"
#include "host/documents/keys.h"

namespace TolmSDK::Graphics::sfg::host {

/// Throws InputError for a document whose root object has none of the table's keys, but those of another kind
/// of document; `wanted` as in "a graph".
void refuseOtherKind(const DocumentReader& reader, const KeyTable& table, const std::string& wanted);

}  // namespace TolmSDK::Graphics::sfg::host

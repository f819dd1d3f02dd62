#pragma once

// What the keys and texts of a document stand for.

#include <string>

#include "sfg/host/schema.h"
#include "tools/lsp/json_place.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

enum class Role {
  nothing,
  // Keys.
  key,          ///< one of the tables'
  input,        ///< of a node
  newFragment,  ///< of a library
  port,         ///< of a fragment, in its "ports"
  // Texts.
  fragment,
  node,
  newNode,
  output,  ///< of the node that is named beside it
  graphInput,
  newGraphInput,
  include,
  language,
  profile
};

/// Of a key or value with that path.
Role roleOf(host::DocumentKind kind, bool isKey, const JsonPath& path);

/// What a place is about.
struct Subject {
  Role role = Role::nothing;
  JsonPlace place;
  JsonPath path;     ///< of the key or value
  std::string name;  ///< the text
};
Subject findSubject(host::DocumentKind kind, const JsonScan& scan, std::size_t offset);

/// The insides of a literal.
Span insideOf(const JsonScan& scan, Span literal);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp

#pragma once

// JSON documents from texts in tests.

#include <gtest/gtest.h>

#include <string_view>

#include "tolmsdk/object_data_node.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::test {

/// The document; an empty one, and a test failure, for malformed text.
inline RefPtr<IObjectDataNode> parseJson(std::wstring_view text) {
  RefPtr<IObjectDataNode> node(createJsonNode());
  EXPECT_TRUE(node->loadFromText(text)) << toUtf8(node->getLoadError());
  return node;
}

}  // namespace TolmSDK::test

#pragma once

// What is wrong with a text that is no JSON.

#include <string_view>

#include "platform/json_builder.h"

namespace TolmSDK::json {

/// Parses the text into the builder, made for it, by the parser whose errors are precise. Answers whether it
/// is JSON.
bool parseWithErrors(std::string_view text, Builder& builder);

}  // namespace TolmSDK::json

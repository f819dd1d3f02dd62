#pragma once

// What people do wrong in JSON: told as what is missing, at the place where it belongs.

#include <cstddef>
#include <optional>
#include <string_view>

#include "tolmsdk/unicode.h"

namespace TolmSDK::json {

/// What a parser expects where it stops.
enum class Wanted { end, name, colon, value, moreOfObject, moreOfArray };

struct JsonMistake {
  std::size_t at = 0;  ///< in bytes
  WString text;
};

/// The mistake behind the token at `stop`, which a parser does not take there; the text in front of it is
/// sound. Nothing where no more can be said than what was expected and found.
std::optional<JsonMistake> findMistake(std::string_view text, std::size_t stop, Wanted wanted);

/// What to write instead of what stands at the start of the text, as an end of a sentence; empty where
/// unknown.
WString whatToWrite(std::string_view found, Wanted wanted);

}  // namespace TolmSDK::json

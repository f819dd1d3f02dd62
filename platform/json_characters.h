#pragma once

// What the characters of JSON text are to those who read it and those who say what is wrong with it.

namespace TolmSDK::json {

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

inline bool isAlphanumeric(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

/// Of numbers, literals and what people write in their place.
inline bool isWordCharacter(char c) { return isAlphanumeric(c) || c == '+' || c == '-' || c == '.'; }

}  // namespace TolmSDK::json

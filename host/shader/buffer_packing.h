#pragma once

// Contents of constant buffers from values: a value is changed without compiling anything.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/shader/shader_interface.h"

namespace TolmSDK::Graphics::sfg::host {

/// A value cannot be set.
class PackError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// What a value of a shader shall be: as many numbers as it has components, rows of a matrix behind one
/// another, elements of an array too; booleans as 0 and 1.
struct ValueSetting {
  std::string name;  ///< "node.input", or the name that the member has in the shader; ".part" for structures
  std::vector<double> numbers;
};

/// The bytes of a constant buffer, little-endian as every graphics API has them: what each value starts with,
/// zero where nothing is known, and then the settings in order. Throws PackError for a name that no value of
/// the buffer has or two have, a wrong count of numbers, a number that its type cannot hold, and a buffer
/// that is no constant buffer or not complete.
std::vector<std::uint8_t> packBuffer(const InterfaceBuffer& buffer,
                                     const std::vector<ValueSetting>& settings);

/// Reads "name=1,2,3", "name=true": the name ends at the last equals sign. Throws PackError.
ValueSetting parseSetting(const std::string& text);

/// Of a name that is not among the known ones: the nearest of them if it is near, and all of them, a dozen at
/// most.
std::string knownNamesHint(const std::string& name, const std::vector<std::string>& known);

}  // namespace TolmSDK::Graphics::sfg::host

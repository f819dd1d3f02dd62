#pragma once

// Where a command's result goes.

#include <span>
#include <string>
#include <string_view>

namespace TolmSDK::Graphics::sfg::tools {

/// Writes the bytes to the file, or to the standard output stream when `file` is empty. A regular file is
/// replaced as a whole: readers see the old or the new contents, and a failure leaves the old. Throws
/// InputError when it cannot be written.
void writeOutput(const std::string& file, std::string_view bytes);

/// Throws InputError when an output is one of the inputs, or is named twice. Empty names are none; a device
/// or pipe may be named any number of times.
void checkOutputs(std::span<const std::string> outputs, std::span<const std::string> inputs);

/// Throws InputError when the folder of a file is not there: for results that take long to make.
void checkFolder(const std::string& file);

}  // namespace TolmSDK::Graphics::sfg::tools

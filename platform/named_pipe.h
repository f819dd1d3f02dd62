#pragma once

// Named pipes, whose opening may wait for ever.

#include <filesystem>
#include <string>

namespace TolmSDK {

enum class PipeEnd { read, failed, noWriter };

/// Whether the path is a pipe's name; one that the shell or another process handed over has none.
bool isNamedPipe(const std::filesystem::path& path);

/// Reads what is written into a named pipe until its writer goes, at most one byte more than may be read. A
/// writer may come within five seconds; one that is there may take its time.
PipeEnd readNamedPipe(const std::filesystem::path& path, std::string& bytes);

}  // namespace TolmSDK

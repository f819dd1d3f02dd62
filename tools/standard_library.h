#pragma once

// The standard fragments that are installed with the command.

#include <filesystem>
#include <optional>

#include "sfg/host/library_set.h"

namespace TolmSDK::Graphics::sfg::tools {

/// The installed folder of the standard fragments and their include files: where it lies as seen from the
/// program, so that an installation may be moved. Nothing for a program that is not installed.
std::optional<std::filesystem::path> findStandardLibrary();
/// The same for a program at `program`.
std::optional<std::filesystem::path> findStandardLibrary(const std::filesystem::path& program);

/// Puts the standard folder in front, so that what was named overrides its fragments, of which nobody is
/// told. Include files of equal names would be joined to one text, so its own are left out where a named
/// folder has one of the same name.
void addStandardLibrary(host::LibraryFolders& folders, const std::optional<std::filesystem::path>& standard);

}  // namespace TolmSDK::Graphics::sfg::tools

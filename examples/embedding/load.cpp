#include "embedding.h"

// Fragments and include files, read once. All jobs share them; reading them anew gives another set.
std::shared_ptr<const host::LibrarySet> load(const std::filesystem::path& library) {
  host::LibraryFolders folders;
  folders.libraries = {library};
  folders.includes = {library};
  return host::LibrarySet::load(folders);
}

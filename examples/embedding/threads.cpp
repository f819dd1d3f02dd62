#include <thread>

#include "embedding.h"

// Two threads with a job each over one set, while the folders are read anew: both go on with the set they
// have.
std::vector<host::Shader> shadeInThreads(std::shared_ptr<const host::LibrarySet> libraries) {
  std::vector<host::Shader> shaders(3);
  std::thread first([&shaders, libraries] { shaders[0] = shade(libraries); });
  std::thread second([&shaders, libraries] { shaders[1] = shade(libraries); });
  libraries = libraries->reload();
  first.join();
  second.join();
  shaders[2] = shade(libraries);
  return shaders;
}

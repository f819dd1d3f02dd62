// Carries its shaders with it.

#include <iostream>

#include "materials.h"

int main() {
  for (const materials::Shader& shader : materials::all) {
    std::cout << shader.file << ": " << shader.bytes.size() << " bytes, " << shader.hash << "\n";
  }
  // Each one has a namespace of its own.
  std::cout << materials::brick_pixel_spv::reflection.substr(0, 22) << "\n";
}
